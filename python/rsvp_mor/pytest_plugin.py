"""Fixtures for pytest. A test that takes `rsvp_device` has a simulated daemon of its own:

    def test_walk(rsvp_device): ...

    @pytest.mark.rsvp(rows={"psb": 5})
    @pytest.mark.parametrize("rsvp_device", ["silent,op=5", "close,op=5"], indirect=True)
    def test_faults(rsvp_device): ...

The mark has the arguments of `rsvp_mor.simulator.Device`; the parameter is a fault, or a list of them."""
from __future__ import annotations

from collections.abc import Iterator
from typing import TYPE_CHECKING

import pytest

if TYPE_CHECKING:
    from rsvp_mor.session import Session
    from rsvp_mor.simulator import Device


def pytest_configure(config: pytest.Config) -> None:
    config.addinivalue_line("markers", "rsvp(rows, faults, scenario): what the simulated daemon of rsvp_device holds")


@pytest.fixture
def rsvp_device(request: pytest.FixtureRequest) -> Iterator[Device]:
    """A simulated daemon on a device of its own."""
    from rsvp_mor.simulator import Device  # the library is loaded for those alone who use it

    mark = request.node.get_closest_marker("rsvp")
    arguments = dict(mark.kwargs) if mark else {}
    fault = getattr(request, "param", None)
    if fault is not None:
        arguments["faults"] = [*arguments.get("faults", ()), *([fault] if isinstance(fault, str) else fault)]
    with Device(**arguments) as device:
        yield device


@pytest.fixture
def rsvp_session(rsvp_device: Device) -> Iterator[Session]:
    """A session to the daemon of `rsvp_device`."""
    with rsvp_device.session() as session:
        yield session
