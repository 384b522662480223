"""Single values, whatever record they belong to."""
from __future__ import annotations

import functools
import math
import struct
from ipaddress import IPv4Address
from typing import Any


class Secret(bytes):
    """Key material: bytes that a log does not show."""

    def __repr__(self) -> str:
        return "Secret('hidden')" if any(self) else "Secret('')"

    __str__ = __repr__


address = functools.lru_cache(maxsize=4096)(IPv4Address)
"""An address of a number. A table has the same few addresses many times, and making one is slow."""


@functools.lru_cache(maxsize=4096)
def dotted(number: int) -> str:
    """The same as text."""
    return str(address(number))


@functools.lru_cache(maxsize=4096)
def single(raw: bytes) -> float:
    """An IEEE single, most significant byte first, as the number with the fewest digits that gives the same single."""
    exact: float = struct.unpack(">f", raw)[0]
    for digits in range(1, 9):
        rounded = float(f"{exact:.{digits}g}")
        try:
            if struct.pack(">f", rounded) == raw:
                return rounded
        except OverflowError:  # rounded up, beyond the largest single
            continue
    return exact if exact != exact else float(f"{exact:.9g}")


def to_json(value: Any) -> Any:
    """A value in the form that it has in a document."""
    if isinstance(value, Secret):
        return "hidden" if any(value) else ""
    if isinstance(value, bytes):
        return value.hex()
    if isinstance(value, IPv4Address):
        return dotted(int(value))
    if isinstance(value, tuple):
        return [to_json(one) for one in value]
    if isinstance(value, float) and not math.isfinite(value):
        return "nan" if math.isnan(value) else "inf" if value > 0 else "-inf"
    if isinstance(value, str):
        return value.encode(errors="surrogateescape").decode(errors="replace")
    return value
