"""Simulated daemons for tests, each on a device of its own: a directory that is removed with the daemon."""
from __future__ import annotations

import contextlib
import json
import os
import shutil
import signal
import socket
import subprocess
import tempfile
import time
from collections.abc import Iterable, Mapping
from pathlib import Path
from types import TracebackType
from typing import Any, Self

from rsvp_mor.library import path as library
from rsvp_mor.session import Session, set_directory

_SOCKET = "lipc-0ae18000"
_PATIENCE = 5.0  # seconds that a daemon has to end before it is killed


def program() -> str:
    """The daemon: RSVP_SIMD, else the one of the library's build or installation, else that on the PATH."""
    if chosen := os.environ.get("RSVP_SIMD"):
        return chosen
    # A library that the system found has no path here.
    for folder in Path(library).resolve().parents if "/" in library else ():
        if (beside := folder / "bin" / "rsvpsimd").exists():
            return str(beside)
    if found := shutil.which("rsvpsimd"):
        return found
    raise FileNotFoundError("no program rsvpsimd can be found; set RSVP_SIMD to its path")


class Device:
    """A device with a simulated daemon, for a `with`. In it the device is also that of this process: settings, other
    sessions and programs that are started go to it.

    `rows` makes rows by number (`{"psb": 5}`), `scenario` is a file or a mapping with what such a file says, `faults`
    are told in the words of `rsvpsimd --fault`."""

    def __init__(self, rows: Mapping[str, int] | None = None, faults: Iterable[str] = (),
                 scenario: Mapping[str, Any] | str | os.PathLike[str] | None = None) -> None:
        self.directory = ""
        self._rows = dict(rows or {})
        self._faults = [faults] if isinstance(faults, str) else list(faults)
        self._scenario = scenario
        self._process: subprocess.Popen[bytes] | None = None
        self._before: str | None = None

    def __enter__(self) -> Self:
        self.directory = tempfile.mkdtemp(prefix="rsvp-")
        try:
            self.start()
        except BaseException:
            self._remove()
            raise
        self._before = set_directory(self.directory)
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 traceback: TracebackType | None) -> None:
        set_directory(self._before)
        self._remove()

    def _remove(self) -> None:
        try:
            self.stop()
        finally:
            shutil.rmtree(self.directory)

    @property
    def log(self) -> str:
        """What the daemon has said so far."""
        return Path(self.directory, "rsvpsimd.log").read_text()

    @property
    def pid(self) -> int | None:
        """The daemon's process; None if it does not run."""
        return self._process.pid if self._process is not None and self._process.poll() is None else None

    def session(self, **arguments: Any) -> Session:
        """A session to this device, whichever is that of the process."""
        return Session(directory=self.directory, **arguments)

    def start(self) -> None:
        """Starts the daemon; returns once it takes sessions. What it held before is forgotten."""
        if self.pid is not None:
            raise RuntimeError("the daemon runs already")
        words = [program(), "--host-dir", self.directory]
        if self._scenario is not None:
            words += ["--scenario", self._scenario_file()]
        words += [f"--rows={kind}={number}" for kind, number in self._rows.items()]
        words += [f"--fault={fault}" for fault in self._faults]
        with open(Path(self.directory, "rsvpsimd.log"), "ab") as log:
            self._process = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        while not self._answers():
            if self._process.poll() is not None:
                raise RuntimeError(f"rsvpsimd ended with exit status {self._process.returncode}: {self.log.strip()}")
            time.sleep(0.01)

    def stop(self) -> None:
        """Ends the daemon, and returns when it has ended; one that does not run is left alone."""
        if self._process is None:
            return
        if self._process.poll() is None:
            self._process.send_signal(signal.SIGCONT)
            self._process.terminate()
            try:
                self._process.wait(_PATIENCE)
            except subprocess.TimeoutExpired:
                self._process.kill()
        self._process.wait()
        self._process = None

    def _answers(self) -> bool:
        with contextlib.suppress(FileNotFoundError, ConnectionRefusedError):
            with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as client:
                client.connect(f"{self.directory}/{_SOCKET}")
                return True
        return False

    def _scenario_file(self) -> str:
        if not isinstance(self._scenario, Mapping):
            return os.path.abspath(os.fspath(self._scenario or ""))
        file = Path(self.directory, "scenario.toml")
        file.write_text(scenario_text(self._scenario))
        return str(file)


def scenario_text(scenario: Mapping[str, Any]) -> str:
    """A scenario as a file has it. Inside a row everything is written in one line, as TOML allows."""
    plain = {name: value for name, value in scenario.items() if not _is_rows(value) and not isinstance(value, Mapping)}
    lines = [f"{_key(name)} = {_value(value)}" for name, value in plain.items()]
    for name, value in scenario.items():
        if name in plain:
            continue
        rows, brackets = ([value], "[{}]") if isinstance(value, Mapping) else (value, "[[{}]]")
        for row in rows:
            lines.append(brackets.format(_key(name)))
            lines += [f"{_key(field)} = {_value(one)}" for field, one in row.items()]
    return "\n".join(lines) + "\n"


def _is_rows(value: Any) -> bool:
    return isinstance(value, (list, tuple)) and all(isinstance(one, Mapping) for one in value)


def _key(name: str) -> str:
    return name if name.replace("-", "").replace("_", "").isalnum() else json.dumps(name)


def _value(value: Any) -> str:
    if isinstance(value, Mapping):
        return "{ " + ", ".join(f"{_key(name)} = {_value(one)}" for name, one in value.items()) + " }"
    if isinstance(value, (list, tuple)):
        return "[" + ", ".join(map(_value, value)) + "]"
    if isinstance(value, bool) or isinstance(value, str):
        return json.dumps(value)
    if isinstance(value, bytes):
        return json.dumps(value.hex())
    return repr(value) if isinstance(value, (int, float)) else json.dumps(str(value))
