"""The examples do what they say; that of a fail-over is a test itself."""
from __future__ import annotations

import sys
from pathlib import Path

import pytest

from conftest import ROOT
from rsvp_mor import settings
from rsvp_mor.simulator import Device

sys.path.insert(0, str(ROOT / "examples/python"))

import snapshots
import walk


def test_walk(scenario: Path, capsys: pytest.CaptureFixture[str]) -> None:
    with Device(scenario=scenario, faults=["close,op=5,once"]):
        assert walk.main() == 0
    assert capsys.readouterr().out.splitlines()[0].startswith("10.0.0.1 tunnel 300 LSP 1 by 10.1.24.4, ")
    assert walk.main() == 1


def test_snapshots(scenario: Path, tmp_path: Path, capsys: pytest.CaptureFixture[str]) -> None:
    file = str(tmp_path / "before.json")
    with Device(scenario=scenario):
        assert snapshots.main(["save", file]) == 0
        settings.set_hello_interval(interval=3)
        assert snapshots.main(["compare", file]) == 0
    with Device(scenario=ROOT / "host/scenarios/p2mp.toml"):
        assert snapshots.main(["compare", file]) == 1
    assert "path states: 4 rows gone or changed, 0 new or changed" in capsys.readouterr().out
