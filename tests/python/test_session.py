"""Sessions, walks and records, against a simulated daemon and against what rsvpctl shows of it."""
from __future__ import annotations

import os
import pickle
import threading
from ipaddress import IPv4Address
from pathlib import Path
from typing import Any

import pytest

import rsvp_mor
from conftest import rsvpctl
from rsvp_mor import records, settings
from rsvp_mor.call import tables
from rsvp_mor.simulator import Device

SHOWS = {"ingress tunnels": ["show", "tunnels", "--ingress"], "debug": ["debug", "show"]}
COUNTED = {"counters1", "statWord1", "statWord2", "statWord3", "statWord4", "counters2", "named"}


@pytest.mark.parametrize("dictionary", ["", "none"])
def test_every_table_is_what_rsvpctl_shows(scenario: Path, dictionary: str, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setenv("RSVP_DICTIONARY", dictionary)
    with Device(scenario=scenario) as device, device.session() as session:
        for name, table in tables.items():
            shown = rsvpctl(*SHOWS.get(name, ["show", *name.split()]))
            if table.next is None:
                mine = session.read(name).to_dict()
                # The daemon counts requests, and these are two.
                counted = COUNTED if name == "global" else set()
                assert mine.keys() == shown["record"].keys()
                assert [mine[key] for key in mine.keys() - counted] == [
                    shown["record"][key] for key in mine.keys() - counted]
                continue
            try:
                rows = [row.to_dict() for row in session.walk(name)]
            except rsvp_mor.WalkBroken as broken:
                rows = [] if broken.last is None else [broken.last.to_dict()]
                assert not dictionary == ""
            assert rows == shown["rows"], name
            assert rows or dictionary, name


def test_records_are_python_values(scenario: Path) -> None:
    with Device(scenario=scenario) as device, device.session() as session:
        tunnel = session.tunnel({"index": 100, "instance": 1, "ingress": "10.0.0.1", "egressLsrId": 0x0A000004})
        assert tunnel == session.tunnel((100, 1, "10.0.0.1", IPv4Address("10.0.0.4")))
        assert (tunnel.named.role, tunnel.named["egress"]) == ("head", IPv4Address("10.0.0.4"))
        with pytest.raises(AttributeError, match="nothing here is named 'rank'; there are: index, "):
            tunnel.named.rank
        with pytest.raises(AttributeError):
            tunnel.tunnelRole = 3
        psb = next(session.path_states())
        assert isinstance(psb.hopList, tuple) and isinstance(psb.hopList[0], records.HopEntry)
        assert psb.sessionAttr.affinityForm is None or psb.sessionAttr.shortForm is None
        assert len({psb, next(session.path_states()), pickle.loads(pickle.dumps(psb))}) == 1
        assert session.interface(1).authKey == b"demo-key".ljust(68, b"\0")
        assert "demo" not in repr(session.interface(1))
        # The key of a row, of a key record and of a row's next read are the same.
        keyed = next(session.cr_lsps())
        assert list(session.cr_lsps(after=keyed)) == list(session.cr_lsps(after=keyed.key))


@pytest.mark.parametrize("table, key, error", [
    ("tunnels", (1, 2), "has 4 values, not 2: tunnelIndex, tunnelInstance, ingressLsrId, egressLsrId"),
    ("tunnels", {"index": 1}, "lacks tunnelInstance, ingressLsrId, egressLsrId"),
    ("tunnels", {"colour": 1}, "has no colour"),
    ("interfaces", -1, "ifIndex must be 0 to 4294967295, not -1"),
    ("interfaces", 1.5, "ifIndex must be a number or an address, not float"),
    ("interfaces", None, "takes a key: ifIndex"),
    ("psb", 1, "walk it"),
])
def test_a_key_that_does_not_fit(rsvp_session: rsvp_mor.Session, table: str, key: Any, error: str) -> None:
    with pytest.raises((TypeError, ValueError, OverflowError), match=error):
        rsvp_session.read(table, key)


@pytest.mark.rsvp(rows={"psb": 5, "tunnel": 5})
@pytest.mark.parametrize("rsvp_device, held, own", [
    ("status=0x60010099,op=5", (rsvp_mor.Refused, "refused"), (rsvp_mor.Refused, "refused")),
    ("status=0x40010001,op=5", (rsvp_mor.ExchangeFailed, "reply"), (rsvp_mor.ExchangeFailed, "exchange")),
    ("close,op=5", (rsvp_mor.ExchangeFailed, "receive"), (rsvp_mor.ExchangeFailed, "exchange")),
    ("short=4,op=5", (rsvp_mor.ExchangeFailed, "reply"), (rsvp_mor.ExchangeFailed, "exchange")),
    ("exit,op=5", (rsvp_mor.ExchangeFailed, "receive"), (rsvp_mor.NoSession, "open")),
    ("stuck,op=5", (None, "reply"), (None, "reply")),
], indirect=["rsvp_device"])
def test_a_broken_walk_tells_why(rsvp_device: Device, held: Any, own: Any) -> None:
    session = rsvp_device.session()
    for walk, (kind, stage) in ((session.path_states, held), (session.tunnels, own)):
        given = []
        with pytest.raises(rsvp_mor.WalkBroken) as caught:
            for row in walk():
                given.append(row)
        broken = caught.value
        if walk == session.tunnels and kind is rsvp_mor.NoSession:
            assert (broken.rows, broken.key) == (0, None)  # the daemon has gone by then
        elif given:
            assert (broken.rows, broken.last) == (len(given), given[-1])
            assert broken.stage == stage and broken.name in str(broken) and broken.cause in str(broken)
            assert type(broken.__cause__) is (kind or type(None))
            if kind is rsvp_mor.Refused:
                assert broken.status == 0x60010099 and broken.name == "DAEMON_STATUS"
    # A session is closed by an exchange that failed on it, and by nothing else.
    assert session.closed == (held[0] is rsvp_mor.ExchangeFailed)
    if session.closed:
        with pytest.raises(rsvp_mor.NoSession):
            session.global_info()
    session.close()


@pytest.mark.rsvp(rows={"psb": 5}, faults=["status=5,op=5,once"])
def test_a_walk_goes_on_where_it_broke(rsvp_session: rsvp_mor.Session) -> None:
    with pytest.raises(rsvp_mor.WalkBroken) as caught:
        list(rsvp_session.path_states())
    broken = caught.value
    rest = list(rsvp_session.path_states(after=broken.key))
    assert [broken.last, *rest] == list(rsvp_session.path_states())
    assert rest == list(rsvp_session.path_states(after=broken.last))


@pytest.mark.parametrize("rsvp_device", ["silent,op=3"], indirect=True)
def test_a_session_has_a_timeout_of_its_own(rsvp_device: Device) -> None:
    with rsvp_device.session(timeout=0.05) as session:
        with pytest.raises(rsvp_mor.ExchangeFailed) as caught:
            session.global_info()
        assert (caught.value.stage, session.closed) == ("receive", True)


def test_no_daemon_and_no_service(rsvp_device: Device) -> None:
    rsvp_device.stop()
    with pytest.raises(rsvp_mor.NoSession, match="RSVP_MOR_LIPCOpen: 0x2001000e RSVP_MOR_ERR_LIPC"):
        rsvp_device.session()
    with pytest.raises(rsvp_mor.NotEnabled) as caught:
        settings.set_interface(interface=1)
    assert caught.value.stage == "local"
    settings.undo_interface(interface=1)
    assert not rsvp_mor.is_enabled()
    rsvp_mor.enable()
    assert rsvp_mor.is_enabled()
    rsvp_mor.disable()


@pytest.mark.parametrize("rsvp_device", ["silent,op=3"], indirect=True)
def test_other_threads_run_while_one_waits(rsvp_device: Device) -> None:
    failures: list[rsvp_mor.Error] = []

    def wait_in_vain() -> None:
        with rsvp_device.session() as session, pytest.raises(rsvp_mor.ExchangeFailed) as caught:
            session.interface(1)
        failures.append(caught.value)

    thread = threading.Thread(target=wait_in_vain)
    thread.start()
    with rsvp_device.session() as session:
        for _ in range(200):
            assert not list(session.path_states())
    assert thread.is_alive() and not failures
    rsvp_device.stop()  # ends the wait
    thread.join()
    assert failures[0].stage == "receive"


def test_devices_side_by_side() -> None:
    with Device(rows={"tunnel": 2}) as first, Device(rows={"tunnel": 3}) as second:
        sessions = first.session(), second.session()
        assert os.environ["RSVP_HOST_DIR"] == second.directory
        assert [len(list(session.tunnels())) for session in sessions] == [2, 3]
        assert [len(list(session.tunnels())) for session in reversed(sessions)] == [3, 2]
        assert os.environ["RSVP_HOST_DIR"] == second.directory
    for device in (first, second):
        assert device.pid is None and not Path(device.directory).exists()


def test_a_device_of_a_mapping(rsvp_device: Device) -> None:
    scenario = {
        "counters": {"upLspNumber": 7},
        "psb": [{"session": {"tunnelEndpoint": "10.0.0.9", "tunnelId": 1}, "routeList3": [{"value": "10.0.0.2"}],
                 "wordsA": [1, 2, 3], "flagBytes": bytes(range(8)), "tspec": {"tokenRate": 1.5e3}}],
    }
    with Device(scenario=scenario) as device, device.session() as session:
        row, = session.path_states()
        assert (str(row.session.tunnelEndpoint), row.wordsA, row.flagBytes) == ("10.0.0.9", (1, 2, 3), bytes(range(8)))
        assert (row.routeList3[0].value, row.tspec.tokenRate) == (0x0A000002, 1500)
        assert session.counters().upLsps == 7
    with pytest.raises(RuntimeError, match="exit status 2: .*colour"):
        Device(scenario={"colour": 1}).__enter__()


def test_settings_reach_the_daemon(rsvp_session: rsvp_mor.Session) -> None:
    settings.set_hello_interval(interval=7)
    settings.set_graceful_restart()
    info = rsvp_session.global_info().named
    assert (info.helloInterval, info.gracefulRestart) == (7, True)
    settings.undo_graceful_restart()
    assert not rsvp_session.global_info().named.gracefulRestart
    settings.set_reduction(interface=4, first=30, second=50)
    settings.set_auth_key(interface=4, key=b"secret")
    settings.set_auth_lifetime(interface=4, life_time=60)
    settings.set_auth_lifetime(peer="10.0.0.9", life_time=90)
    interface = rsvp_session.interface(4)
    assert (interface.named.summaryRefresh, interface.named.acknowledgeDelay, interface.authLifeTime) == (30, 50, 60)
    assert interface.authKey.startswith(b"secret\0")
    assert next(rsvp_session.auth_entries()).authEntryWord0 == 0x0A000009
    rsvp_session.reset_statistics(0)
    assert rsvp_session.global_info().named.commandsDone == 1  # the reset itself
    rsvp_mor.set_debug(4)
    assert rsvp_session.debug_switches().debugFlags == 4
    with pytest.raises(rsvp_mor.Refused):
        rsvp_mor.reset_auth(1, 2)
    for wrong in (lambda: settings.set_dscp(dscp=64), lambda: settings.set_auth_key(key=b""),
                  lambda: settings.undo_auth_lifetime(peer=1, life_time=1),
                  lambda: settings.set_auth_lifetime(interface=1, peer=2, life_time=1)):
        with pytest.raises((ValueError, TypeError)):
            wrong()
