"""10,000 calls and 1,000 broken walks leave nothing: the bytes on the heap, the library's and Python's alike, are as many
afterwards as before. Runs with the address sanitizer's runtime, which counts them and sees misuse.

    LD_PRELOAD=libasan.so PYTHONMALLOC=malloc leaks.py ROOT
"""
from __future__ import annotations

import contextlib
import ctypes
import gc
import sys
import tempfile
from pathlib import Path

import rsvp_mor
from rsvp_mor.simulator import Device

CALLS = 10_000
WALKS = 1_000
# What interpreter and sanitizer keep for themselves now and then. A record of ten bytes for each walk would be more.
SLACK = 8 << 10


def held() -> int:
    gc.collect()
    count = ctypes.CDLL(None).__sanitizer_get_current_allocated_bytes
    count.restype = ctypes.c_size_t
    return int(count())


def calls(session: rsvp_mor.Session, number: int) -> None:
    rows = next(session.path_states()), next(session.reservation_states()), next(session.cr_lsps())
    for i in range(number // 5):
        for walk, row in zip((session.path_states, session.reservation_states, session.cr_lsps), rows):
            next(walk(after=row)).to_dict()
        session.p2mp_cr_lsp((500, "10.0.0.1", "10.0.0.1", 50, 1, 0, 0, 0, 0, 0, 0)).to_dict()
        session.tunnel((100, 1, "10.0.0.1", "10.0.0.4")).to_dict()


def broken_walks(device: Device, number: int) -> None:
    for i in range(number):
        with device.session() as session, contextlib.suppress(rsvp_mor.WalkBroken):
            walk = (session.path_states, session.previous_hop_states, session.cr_lsps, session.tunnels)[i % 4]
            for row in walk():
                repr(row)
            sys.exit("a walk was not broken")


def check(what: str, number: int, before: int) -> None:
    left = held() - before
    print(f"{number} {what}: {left} bytes are left", flush=True)
    if left > SLACK:
        sys.exit(f"{left} bytes are left")


def main() -> None:
    root = Path(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        scenario = Path(folder, "all.toml")
        scenario.write_text("".join((root / "host/scenarios" / name).read_text() for name in ("demo.toml", "p2mp.toml")))
        with Device(scenario=scenario) as device, device.session() as session:
            calls(session, 500)  # caches are filled
            before = held()
            calls(session, CALLS)
            check("calls", CALLS, before)
        # The last item of a reply claims more than there is: the lists in front of it have been read by then.
        with Device(scenario=scenario, faults=["cut-item,op=5"]) as device:
            broken_walks(device, 100)
            before = held()
            broken_walks(device, WALKS)
            check("broken walks", WALKS, before)


main()
