"""The package, its tests' helpers and the examples are typed throughout."""
from __future__ import annotations

import os
import subprocess
import sys
from pathlib import Path

from conftest import BUILD, ROOT


def test_mypy_finds_nothing(tmp_path: Path) -> None:
    examples = sorted((ROOT / "examples/python").glob("*.py"))
    assert examples
    for what in (["-p", "rsvp_mor"], map(str, examples)):
        subprocess.run([sys.executable, "-m", "mypy", "--cache-dir", tmp_path, "--config-file",
                        ROOT / "python/pyproject.toml", *what], check=True,
                       env=os.environ | {"MYPYPATH": str(BUILD / "python")})
