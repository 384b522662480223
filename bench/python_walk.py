"""How fast the Python package walks 10,000 path states, against a pipe of the tool's JSON into Python's reader of it. Both
take turns, and the fastest of the rounds counts. Exit status 1 if the walk has less than half the rate.

    python_walk.py RSVPCTL
"""
from __future__ import annotations

import subprocess
import sys
import time
from collections.abc import Callable

import rsvp_mor
from rsvp_mor.simulator import Device

ROWS = 10_000
ROUNDS = 5
BOUND = 0.5


def pipe() -> None:
    with subprocess.Popen([sys.argv[1], "show", "psb", "--json"], stdout=subprocess.PIPE) as tool:
        subprocess.run([sys.executable, "-c", "import json, sys; json.load(sys.stdin)"], stdin=tool.stdout, check=True)


def walk(look: Callable[[rsvp_mor.records.ReplyPsb], object]) -> None:
    with rsvp_mor.Session() as session:
        if sum(1 for row in session.path_states() if look(row) is not None) != ROWS:
            sys.exit("a row is missing")


def main() -> None:
    ways: dict[str, Callable[[], None]] = {
        "rows alone": lambda: walk(lambda row: row),
        "with three fields of each": lambda: walk(
            lambda row: (row.session.tunnelEndpoint, row.session.tunnelId, row.sender.lspId)),
        "with `to_dict` of each": lambda: walk(lambda row: row.to_dict()),
        "pipe": pipe,
    }
    best = dict.fromkeys(ways, float("inf"))
    with Device(rows={"psb": ROWS}):
        for _ in range(ROUNDS):
            for name, way in ways.items():
                begin = time.perf_counter()
                way()
                best[name] = min(best[name], time.perf_counter() - begin)
    for name, seconds in best.items():
        print(f"| Python, 10,000 path states, {name}, rows/s | {ROWS / seconds:,.0f} | {best['pipe'] / seconds:.2f} |")
    sys.exit(best["pipe"] / best["with three fields of each"] < BOUND)


main()
