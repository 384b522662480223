"""Statuses as exceptions. The library gives one number; what it means, and what probably caused it, is told by the
same texts as `rsvpctl` has."""
from __future__ import annotations

import errno
import os
import select
import socket
from typing import TYPE_CHECKING, Any

from rsvp_mor.library import OK, description, ffi, status_codes

if TYPE_CHECKING:
    from rsvp_mor.record import Record


class Error(Exception):
    """A call of the library that gave another status than 0.

    `status` is the number and `name` what it is called; `cause` is what probably lies behind it; `function` is that of
    the library. `stage` says how far the call came: "open", "send", "receive", "reply" (one that is out of format) or
    "refused"; "local" if nothing was sent, and "exchange" where the library does not let more be known."""

    def __init__(self, status: int, function: str, stage: str) -> None:
        said = _STATUSES.get(status, _FOREIGN)
        if stage == "refused" and status != status_codes["RSVP_MOR_ERR_NOT_EXIST"]:
            said = _FOREIGN
        self.status = status
        self.function = function
        self.stage = stage
        self.name: str = said["name"]
        self.cause: str = said["causes"].get(stage, said["causes"][""])
        super().__init__(status, function, stage)

    def __str__(self) -> str:
        return f"{self.function}: {self.status:#010x} {self.name} ({self.stage}): {self.cause}"


class Refused(Error):
    """The daemon answered with this status."""


class NoSession(Error):
    """No session to the daemon could be opened, or this one is closed."""


class NotEnabled(Error):
    """The service runs on no node, so nothing was sent."""


class ExchangeFailed(Error):
    """No answer came, or one that is out of format. The daemon may have done what it was asked."""


class WalkBroken(Error):
    """A walk that did not come to the end of its table.

    `rows` is how many it gave; `last` is the last of them, whose key goes on with the walk: `s.path_states(after=
    broken.last)`. `last` and `key` are None before the first row. `__cause__` is the call that failed; it is None
    for a walk whose keys do not advance, or that has no key to go on with."""

    def __init__(self, status: int, function: str, stage: str, table: str, rows: int, last: Record | None,
                 key: Record | None, cause: str | None = None) -> None:
        super().__init__(status, function, stage)
        self.table = table
        self.rows = rows
        self.last = last
        self.key = key
        if cause is not None:
            self.cause = cause
        self.args = (status, function, stage, table, rows, last, key, cause)

    def __str__(self) -> str:
        return f"{self.table}: broken after {self.rows} rows: {super().__str__()}"


_STATUSES: dict[int, dict[str, Any]] = {one["status"]: one for one in description["statuses"]}
_FOREIGN: dict[str, Any] = description["foreignStatus"]

# The functions that ask the service manager first have its answer among their own: they take an `op`, or reset.
_GATED = {name for name, given in description["parameters"].items() if "op" in given} | {"RSVP_MOR_ResetAuth"}


def _stage_on(fd: int) -> str:
    """How far an exchange came on a session that is still open."""
    reason = ffi.errno
    poll = select.poll()
    poll.register(fd, select.POLLOUT)
    if reason == errno.EAGAIN:
        return "receive" if any(events & select.POLLOUT for _, events in poll.poll(0)) else "send"
    if reason in (errno.EPIPE, errno.ECONNRESET, errno.ENOTCONN, errno.EBADF):
        return "send"
    with socket.socket(fileno=os.dup(fd)) as session:
        try:
            return "reply" if session.recv(1, socket.MSG_PEEK | socket.MSG_DONTWAIT) else "receive"
        except BlockingIOError:
            return "reply"
        except OSError:
            return "receive"


def failure(status: int, function: str, fd: int | None = None) -> Error:
    """The exception for the status of a call that was just made; `fd` is the session that it held."""
    own = fd is None
    if status == status_codes["RSVP_MOR_ERR_FAIL"]:
        return ExchangeFailed(status, function, "exchange" if fd is None else _stage_on(fd))
    if own and status == status_codes["RSVP_MOR_ERR_LIPC"]:
        return NoSession(status, function, "open")
    if own and status == status_codes["RSVP_MOR_ERR_NOT_ENABLED"] and function in _GATED:
        return NotEnabled(status, function, "local")
    return Refused(status, function, "refused")


def check(status: int, function: str) -> None:
    """Raises what a status of a function with a session of its own means."""
    if status != OK:
        raise failure(status, function)
