"""A test of what a management program sees when a tunnel fails over: the simulated daemon takes the path through one
neighbour away and signals another, and both states are read as they are.

    python3 -m pytest test_failover.py
"""
from __future__ import annotations

import time
from typing import Any

import rsvp_mor
from rsvp_mor.simulator import Device

SESSION = {"tunnelEndpoint": "10.0.0.4", "tunnelId": 100, "extendedTunnelId": "10.0.0.1"}


def path(lsp: int, next_hop: str = "") -> dict[str, Any]:
    """A path state block; without a hop its key alone."""
    key: dict[str, Any] = {"session": SESSION, "sender": {"senderAddress": "10.0.0.1", "lspId": lsp}}
    return key | {"hop": {"hopAddress": next_hop}} if next_hop else key


FAIL_OVER = {
    "psb": [path(1, "10.1.12.2")],
    "event": [{"at": "300ms", "remove": {"psb": [path(1)]}, "add": {"psb": [path(2, "10.1.13.3")]}}],
}


def paths(session: rsvp_mor.Session) -> dict[int, str]:
    """The next hop of each LSP of the tunnel."""
    return {psb.sender.lspId: str(psb.hop.hopAddress) for psb in session.path_states()}


def test_the_tunnel_is_never_without_a_path() -> None:
    with Device(scenario=FAIL_OVER) as device, device.session() as session:
        seen = [paths(session)]
        while 1 in seen[-1]:  # one walk may see both: rows are read one after another
            time.sleep(0.01)
            seen.append(paths(session))
    assert all(seen)
    assert seen[-1] == {2: "10.1.13.3"}
