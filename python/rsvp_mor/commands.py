"""Commands: they change the daemon. Each uses a session of its own, with the library's limit of 10 seconds a stage.
The settings, one function each, are in `rsvp_mor.settings`."""
from __future__ import annotations

from ipaddress import IPv4Address
from typing import Any, TypeAlias

from rsvp_mor.errors import check
from rsvp_mor.library import description, ffi, status_codes, status_of

Address: TypeAlias = "IPv4Address | str | int"

_KEY_SIZE = status_codes["RSVP_MOR_AUTH_KEY_SIZE"]
_SETTINGS: dict[tuple[str, str], dict[str, Any]] = {
    (row["name"], row["level"]): row for row in description["settings"]}
_PARAMETERS: dict[str, list[str]] = description["parameters"]


def setting(name: str, undo: bool, *, interface: int | None = None, peer: Address | None = None,
            key: bytes | None = None, second: int | None = None, **number: int) -> None:
    """Sets or undoes a setting at the level of its arguments."""
    level = "peer" if peer is not None else "interface" if interface is not None else "global"
    row = _SETTINGS.get((name, level))
    if row is None or (interface is not None and peer is not None):
        raise TypeError(f"{name} takes one of interface and peer")
    if undo and row["undo"] == "none":
        raise TypeError(f"{name} ({level}) has no undo: set another number")
    for argument, value in number.items() if second is None else [*number.items(), ("second", second)]:
        if isinstance(value, int) and not 0 <= value <= row["most"]:
            raise ValueError(f"{argument} must be 0 to {row['most']}, not {value}")
    values = [*number.values()]
    given: dict[str, Any] = {"op": int(undo), "ifIndex": interface, "peer": peer and int(IPv4Address(peer))}
    if key is not None:
        if not 0 < len(key) <= _KEY_SIZE:
            raise ValueError(f"key must have 1 to {_KEY_SIZE} bytes, not {len(key)}")
        given["authKey"] = key.ljust(_KEY_SIZE, b"\0")
    if second is not None:
        given["pair"] = ffi.new("uint16_t[2]", [*values, second])
    arguments = {one: given[one] if one in given else values[0] for one in _PARAMETERS[row["function"]]}
    check(status_of(row["function"], **arguments), row["function"])


def enable() -> None:
    """Starts the service, on the master and then on the standby nodes, and returns once the daemon answers."""
    check(status_of("RSVP_MOR_SetMplsRsvp", op=0), "RSVP_MOR_SetMplsRsvp")


def disable() -> None:
    """Tells the daemon, then stops the service on all nodes."""
    check(status_of("RSVP_MOR_SetMplsRsvp", op=1), "RSVP_MOR_SetMplsRsvp")


def is_enabled() -> bool:
    """Whether the service runs on any node."""
    return bool(status_of("RSVP_IsGlobalEnabled"))


def reset_auth(authId1: int, authId2: int, authId3: int = 0, authId4: int = 0) -> None:
    """Resets one authentication entry."""
    key = ffi.new("RSVP_MOR_AuthEntryKey *", [authId1, authId2, authId3, authId4])
    check(status_of("RSVP_MOR_ResetAuth", key=key), "RSVP_MOR_ResetAuth")


def set_debug(debug_type: int, undo: bool = False) -> None:
    """Sets a debug switch, or clears it. Those that are bound to a session take `raw.RSVP_MOR_SetDebug`."""
    switch = ffi.new("RSVP_MOR_DebugSwitch *", {"debugType": debug_type})
    check(status_of("RSVP_MOR_SetDebug", op=int(undo), debug=switch), "RSVP_MOR_SetDebug")
