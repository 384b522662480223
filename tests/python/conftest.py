"""Where the tests find what they are about: the tree, and the build whose package they import."""
from __future__ import annotations

import json
import os
import subprocess
from pathlib import Path
from typing import Any

import pytest
import rsvp_mor

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(rsvp_mor.__file__).resolve().parents[2]
RSVPCTL = BUILD / "bin" / "rsvpctl"


@pytest.fixture(autouse=True)
def nowhere(monkeypatch: pytest.MonkeyPatch, tmp_path: Path) -> None:
    """Without a device of its own, a test must not find one that this machine happens to have."""
    monkeypatch.setenv("RSVP_HOST_DIR", str(tmp_path / "device"))
    monkeypatch.delenv("RSVP_DICTIONARY", raising=False)


@pytest.fixture(scope="session")
def scenario(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """The whole of the demo's device."""
    file = tmp_path_factory.mktemp("scenario") / "all.toml"
    file.write_text("".join((ROOT / "host/scenarios" / name).read_text() for name in ("demo.toml", "p2mp.toml")))
    return file


def rsvpctl(*words: str) -> Any:
    """The document of a command on the device of this process."""
    return json.loads(subprocess.run([RSVPCTL, *words, "--json"], stdout=subprocess.PIPE, env=os.environ).stdout)
