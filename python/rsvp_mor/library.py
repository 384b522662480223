"""The shared library: where it is, and calls of its functions with arguments that are checked by their names. A call
releases the interpreter's lock, so that other threads run while it waits for the daemon."""
from __future__ import annotations

import json
import os
from pathlib import Path
from typing import Any, TypeAlias

from rsvp_mor import declarations

Pointer: TypeAlias = Any
"""Memory as cffi has it: what `new` gives, bytes for a `const uint8_t *`, or None for a null pointer."""

ffi: Any = declarations.ffi
NAME = "librsvp_mor.so.1"


def _path() -> str:
    """RSVP_MOR_LIBRARY, else the library of the build that this package is a part of, else the system's."""
    if chosen := os.environ.get("RSVP_MOR_LIBRARY"):
        return chosen
    build = Path(__file__).resolve().parents[2]
    return next((str(path) for path in build.glob(f"lib*/**/{NAME}") if (build / "CMakeCache.txt").exists()), NAME)


path = _path()
lib: Any = ffi.dlopen(path)
description: dict[str, Any] = json.loads(Path(__file__).with_name("description.json").read_text())
"""What the C++ side knows of records, tables, settings and statuses."""

status_codes: dict[str, int] = description["constants"]
OK = status_codes["RSVP_MOR_OK"]
_AUTH_KEY_SIZE = status_codes["RSVP_MOR_AUTH_KEY_SIZE"]


def new(kind: str, value: Any = None) -> Pointer:
    """Zeroed memory of a C type, such as `RSVP_MOR_ReplyTunnel *`, which lives as long as what is returned."""
    return ffi.new(kind, value)


def _number(name: str, value: object, kind: Any) -> int:
    if not isinstance(value, int):
        raise TypeError(f"{name} must be a number, not {type(value).__name__}")
    bits = 8 * ffi.sizeof(kind)
    least, most = (0, 2**bits - 1) if kind.cname.startswith("u") else (-(2 ** (bits - 1)), 2 ** (bits - 1) - 1)
    if not least <= value <= most:
        raise OverflowError(f"{name} must be {least} to {most}, not {value}")
    return value


def _pointer(name: str, value: object, kind: Any) -> Pointer:
    if value is None:
        return ffi.NULL
    if isinstance(value, bytes) and kind.item.cname == "uint8_t":
        if len(value) < _AUTH_KEY_SIZE:
            raise ValueError(f"{name} must have at least {_AUTH_KEY_SIZE} bytes, not {len(value)}")
        return value
    given = ffi.typeof(value) if isinstance(value, ffi.CData) else None
    if given is None or given.kind not in ("pointer", "array") or (
            given.item is not kind.item and kind.item.kind != "void"):
        raise TypeError(f"{name} must be a {kind.cname}, not {type(value).__name__ if given is None else given.cname}")
    return value


def call(function: str, **arguments: Any) -> Any:
    """Calls a function of the library with all its arguments, in their order."""
    called = getattr(lib, function)
    given = [(_number if kind.kind == "primitive" else _pointer)(name, value, kind)
             for (name, value), kind in zip(arguments.items(), ffi.typeof(called).args, strict=True)]
    # A call that fails leaves its reason here; one that has none must not find that of an earlier call.
    ffi.errno = 0
    return called(*given)


def status_of(function: str, **arguments: Any) -> int:
    """The same, for a function that gives a number."""
    status: int = call(function, **arguments)
    return status
