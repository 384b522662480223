"""Sessions to the daemon, and the walks over its tables."""
from __future__ import annotations

import contextlib
import os
import socket
import struct
import threading
from collections.abc import Callable, Iterator
from types import TracebackType
from typing import Any, NamedTuple, Self

from rsvp_mor.call import Key, Read, Table, copy_key, tables
from rsvp_mor.dictionary import Dictionary
from rsvp_mor.errors import Error, ExchangeFailed, NoSession, WalkBroken, check, failure
from rsvp_mor.library import OK, Pointer, description, ffi, lib, status_codes, status_of
from rsvp_mor.record import Record
from rsvp_mor.tables import Tables

_LIPC = status_codes["RSVP_MOR_ERR_LIPC"]
_FAIL = status_codes["RSVP_MOR_ERR_FAIL"]


class Counters(NamedTuple):
    """The numbers that `rsvpctl show counters` has."""

    frrInterfaces: int
    activeFrrInterfaces: int
    activeBypassTunnels: int
    upLsps: int


class _Directories:
    """The host directory is told to the library by the environment, which all threads share. Calls for the same device
    run side by side; one for another device waits for them."""

    def __init__(self) -> None:
        self._changed = threading.Condition()
        self._users = 0
        self._before: str | None = None
        self._current: str | None = None

    @contextlib.contextmanager
    def use(self, directory: str | None) -> Iterator[None]:
        if directory is None:
            yield
            return
        with self._changed:
            self._changed.wait_for(lambda: self._users == 0 or self._current == directory)
            if self._users == 0:
                self._before = set_directory(directory)
                self._current = directory
            self._users += 1
        try:
            yield
        finally:
            with self._changed:
                self._users -= 1
                if self._users == 0:
                    set_directory(self._before)
                    self._changed.notify_all()


def set_directory(directory: str | None) -> str | None:
    """Makes it the device of this process; gives back which one was."""
    before = os.environ.get("RSVP_HOST_DIR")
    if directory == before:
        return before
    if directory is None:
        del os.environ["RSVP_HOST_DIR"]
    else:
        os.environ["RSVP_HOST_DIR"] = directory
    return before


_directories = _Directories()


class Session(Tables):
    """A session to the daemon, closed at the end of its `with`.

    `timeout` is how many seconds a send or a receive of this session may take; the library's own limit is 10. Calls
    that the library makes on sessions of its own (tunnels, hops, resources, fast reroute, interface configuration, all
    settings) keep that limit, and so does the opening of this one. A session may be used by several threads, which
    take turns; for calls side by side give each thread a session of its own.

    A session on which an exchange failed closes itself: a late answer would be taken for that to the next question."""

    __slots__ = ("dictionary", "_fd", "_directory", "_turn")

    def __init__(self, timeout: float | None = None, dictionary: Dictionary | str | os.PathLike[str] = "",
                 directory: str | None = None) -> None:
        self._fd = -1
        if timeout is not None and not timeout > 0:
            raise ValueError(f"timeout must be more than 0, not {timeout}")
        self._turn = threading.Lock()
        self._directory = directory
        self.dictionary = (dictionary if isinstance(dictionary, Dictionary)
                           else Dictionary.find(dictionary, directory or ""))
        with _directories.use(directory):
            self._fd = lib.RSVP_MOR_LIPCOpen()
        if self._fd < 0:
            raise NoSession(_LIPC, "RSVP_MOR_LIPCOpen", "open")
        try:
            if timeout is not None:
                self._limit(timeout)
        except OSError:
            self._close()
            raise

    def _limit(self, timeout: float) -> None:
        seconds, fraction = divmod(timeout, 1)
        # 0 would be no limit at all.
        time = struct.pack("@ll", int(seconds), max(int(fraction * 1e6), 0 if seconds else 1))
        with socket.socket(fileno=os.dup(self._fd)) as same:
            for option in (socket.SO_SNDTIMEO, socket.SO_RCVTIMEO):
                same.setsockopt(socket.SOL_SOCKET, option, time)

    def __enter__(self) -> Self:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_fd", -1) >= 0:
            self.close()

    @property
    def closed(self) -> bool:
        return self._fd < 0

    def fileno(self) -> int:
        """The descriptor of the session; -1 if it is closed."""
        return self._fd

    def close(self) -> None:
        """Closes the session; one that is closed stays so."""
        with self._turn:
            self._close()

    def _close(self) -> None:
        fd, self._fd = self._fd, -1
        if fd >= 0:
            lib.RSVP_MOR_LIPCClose(fd)

    def _call(self, read: Read, run: Callable[[], int], fd: int) -> None:
        """Makes a call that is bound to a descriptor, which must still be that of this session."""
        if read.held:
            self._call_held(read.name, run, fd)
            return
        with _directories.use(self._directory):
            ffi.errno = 0
            check(run(), read.name)

    def _call_held(self, function: str, run: Callable[[], int], fd: int) -> None:
        with self._turn:
            if self._fd != fd or fd < 0:
                raise NoSession(_LIPC, function, "open")
            ffi.errno = 0
            status = run()
            if status == OK:
                return
            error = failure(status, function, fd)
            if isinstance(error, ExchangeFailed):
                self._close()
        raise error

    def read(self, table: str, key: Key | None = None) -> Any:
        """One row of a table by its key, or a record that stands alone."""
        found = tables[table]
        if found.get is None:
            raise TypeError(f"the daemon has no read of one row of {table}: walk it")
        image = found.key_image(key, self.dictionary) if found.key is not None and key is not None else b""
        if found.key is not None and key is None:
            raise TypeError(f"a read of {table} takes a key: {found.key_shape()}")
        memory = _Memory(found)
        memory.set_key(image)
        fd = self._fd
        self._call(found.get, found.get.bind(fd, memory.key, memory.row), fd)
        return memory.take(self.dictionary)

    def walk(self, table: str, after: Key | None = None) -> Iterator[Any]:
        """The rows of a table from its first one, or from the one after a key. Raises WalkBroken for a walk that does
        not come to the end that the dictionary knows."""
        found = tables[table]
        if found.first is None or found.next is None:
            raise TypeError(f"{table} is one record: read it")
        start = None if after is None else found.key_image(after, self.dictionary)
        return self._walk(found, found.first, found.next, start)

    def _walk(self, table: Table, first: Read, following: Read, start: bytes | None) -> Iterator[Record]:
        parts = table.key_parts(self.dictionary)
        memory = _Memory(table)
        fd = self._fd
        read_next = following.bind(fd, memory.key, memory.row)
        read, run = (first, first.bind(fd, memory.key, memory.row)) if start is None else (following, read_next)
        rows = 0
        last: Record | None = None
        key = bytearray(start or bytes(table.key_size))
        repeats = _RepeatFinder()
        if start is not None:
            memory.set_key(start)
            repeats.repeats(start)
        while True:
            try:
                self._call(read, run, fd)
            except Error as error:
                if error.status in self.dictionary.ends and not isinstance(error, (ExchangeFailed, NoSession)):
                    return
                raise self._broken(table, error.status, error.function, error.stage, rows, last) from error
            row = memory.take(self.dictionary)
            copy_key(parts, row._image, key)
            if parts and repeats.repeats(bytes(key)):
                raise self._broken(table, _FAIL, read.name, "reply", rows, last, description["walks"]["stuck"])
            rows += 1
            last = row
            yield row
            if not parts:
                raise self._broken(table, _FAIL, read.name, "local", rows, last, description["walks"]["noKey"])
            memory.set_key(bytes(key))
            read, run = following, read_next

    def _broken(self, table: Table, status: int, function: str, stage: str, rows: int, last: Record | None,
                cause: str | None = None) -> WalkBroken:
        key = None
        if last is not None and table.key_parts(self.dictionary):
            key = table.required_key(table.key_image(last, self.dictionary))
        return WalkBroken(status, function, stage, table.name, rows, last, key, cause)

    def reset_statistics(self, statsId1: int, statsId2: int = 0) -> None:
        """Clears counters; the daemon says which its numbers mean."""
        fd = self._fd
        key = ffi.new("RSVP_MOR_StatisticsKey *", [statsId1, statsId2])
        name = "RSVP_MOR_ResetStatistics"
        self._call_held(name, lambda: status_of(name, fd=fd, key=key), fd)

    def counters(self) -> Counters:
        """Interfaces with fast reroute and those where it is active, active bypass tunnels, LSPs that are up."""
        numbers = []
        for function in ("RSVP_MOR_GetFrrIfNum", "RSVP_MOR_GetFrrActiveIfNum", "RSVP_MOR_GetActBypassTunnels",
                         "RSVP_GetUpLspNumber"):
            count = ffi.new("uint32_t *")
            with _directories.use(self._directory):
                check(status_of(function, count=count), function)
            numbers.append(count[0])
        return Counters(*numbers)


class _RepeatFinder:
    """Finds a key that comes back, at once or after a round of any length, with two keys for memory: the one before,
    and one that is replaced each time the number of rows has doubled."""

    __slots__ = ("_previous", "_kept", "_rows", "_next_kept")

    def __init__(self) -> None:
        self._previous: bytes | None = None
        self._kept: bytes | None = None
        self._rows = 0
        self._next_kept = 1

    def repeats(self, key: bytes) -> bool:
        if key in (self._previous, self._kept):
            return True
        self._previous = key
        self._rows += 1
        if self._rows == self._next_kept:
            self._kept = key
            self._next_kept *= 2
        return False


class _Memory:
    """The row that the library fills, and the key that it is asked with."""

    __slots__ = ("key", "row", "_table", "_bytes")

    def __init__(self, table: Table) -> None:
        self._table = table
        self.row: Pointer = ffi.new(f"{table.row.c_name} *")
        self.key: Pointer = ffi.new("char[]", table.key_size or 1)
        self._bytes = ffi.buffer(self.row)

    def set_key(self, image: bytes) -> None:
        ffi.memmove(self.key, image, len(image))

    def take(self, dictionary: Dictionary) -> Record:
        """A copy of the row. What the row owns is given back, and it is ready for the next read."""
        table = self._table
        try:
            return table.row.copy(self.row, dictionary.of(table.row))
        finally:
            if table.release is not None:
                table.release(self.row)
            self._bytes[:] = bytes(table.row.size)
