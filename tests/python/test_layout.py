"""The package's view of every record, against the C compilers of this machine and of the router."""
from __future__ import annotations

import re
import subprocess
from pathlib import Path
from typing import Any

import cffi
import pytest

from conftest import BUILD, ROOT
from rsvp_mor import library, raw
from rsvp_mor.record import Record

RECORDS = [name for name in Record.kinds if name.startswith("RSVP_MOR_")]
DECLARATIONS = (BUILD / "python/tools/declarations.h").read_text()


def fields_of(ffi: Any, record: str) -> list[tuple[str, int]]:
    """Every field with its offset, those of unions and structures without a name among them."""
    found = []
    for name, field in ffi.typeof(record).fields:
        if name:
            found.append((name, field.offset))
        else:
            found += [(inner, ffi.offsetof(record, inner)) for inner in named_inside(field.type)]
    return found


def named_inside(kind: Any) -> list[str]:
    return [one for name, field in kind.fields for one in ([name] if name else named_inside(field.type))]


# A pointer is all that differs between the two machines, and of both the interface of cffi lays records out by itself.
# What it will do on the router is therefore what it does here with a word of 32 bits for each pointer.
def router() -> cffi.FFI:
    ffi = cffi.FFI()
    ffi.cdef(re.sub(r"^(\s+)(?:struct )?\w+ \*(\w+);", r"\1uint32_t \2;", DECLARATIONS, flags=re.MULTILINE))
    return ffi


@pytest.mark.parametrize("compiler, ffi", [("cc", library.ffi), ("arm-linux-gnueabihf-gcc", router())],
                         ids=["host", "router"])
def test_every_size_and_offset_is_the_compilers(compiler: str, ffi: Any, tmp_path: Path) -> None:
    lines = ["#include <stddef.h>", "#include <rsvp_mor.h>"]
    for record in RECORDS:
        lines.append(f'_Static_assert(sizeof({record}) == {ffi.sizeof(record)}, "{record}");')
        lines += [f'_Static_assert(offsetof({record}, {name}) == {offset}, "{record}.{name}");'
                  for name, offset in fields_of(ffi, record)]
    assert len(lines) > 500
    source = tmp_path / "layout.c"
    source.write_text("\n".join(lines))
    subprocess.run([compiler, "-std=c11", "-fsyntax-only", f"-I{ROOT}/include", source], check=True)


def test_raw_has_every_function_and_constant() -> None:
    exports = (ROOT / "abi/exports.txt").read_text().split()
    assert len(exports) == 94
    assert set(exports) == {name for name in raw.__all__ if "_" in name and callable(getattr(raw, name))}
    defined = set()
    for header in (ROOT / "include/rsvp_mor").glob("*.h"):
        defined |= set(re.findall(r"#define (RSVP_MOR_\w+) \d", header.read_text()))
    assert defined == {name for name in raw.__all__ if isinstance(getattr(raw, name), int)}


@pytest.mark.parametrize("function, arguments, error", [
    (raw.RSVP_MOR_SetHelloInterval, {"interval": 256}, "interval must be 0 to 255, not 256"),
    (raw.RSVP_MOR_SetHelloInterval, {"interval": -1}, "interval must be 0 to 255, not -1"),
    (raw.RSVP_MOR_SetRefreshInterval, {"interval": "30"}, "interval must be a number, not str"),
    (raw.RSVP_MOR_LIPCClose, {"fd": 1 << 31}, "fd must be -2147483648 to 2147483647"),
    (raw.RSVP_GetTunnel, {"key": 1, "out": None}, "key must be a RSVP_MOR_TunnelKey \\*|key must be a struct"),
    (raw.RSVP_GetFirstTunnel, {"out": raw.new("RSVP_MOR_ReplyCHop *")}, "out must be a .*ReplyTunnel .*ReplyCHop"),
    (raw.RSVP_MOR_SetAuthKey, {"op": 0, "authKey": b"short"}, "authKey must have at least 68 bytes, not 5"),
    (raw.RSVP_MOR_SetReduction, {"op": 0, "ifIndex": 1, "pair": raw.new("uint32_t *")}, "pair must be a uint16_t"),
])
def test_arguments_are_checked_by_name(function: Any, arguments: dict[str, Any], error: str) -> None:
    with pytest.raises((TypeError, OverflowError, ValueError), match=error):
        function(**arguments)
