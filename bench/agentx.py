#!/usr/bin/env python3
# How fast a table of rsvp-agentx is walked, beside the same rows in a plain table of Net-SNMP: through the same master,
# in the same run, in turns. And how soon the agent serves after its start, and ends while its workers wait for a daemon that
# hangs. It fails if the agent comes to less than half of the plain table's rate, or is slower than its manual says.
#
#     agentx.py BIN_FOLDER SNMPD
import pathlib
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests"))
from support.snmp_device import Device, until  # noqa: E402

ROWS, TURNS = 10000, 3
TUNNELS, PLAIN = "1.3.6.1.2.1.10.166.3.2.2.1", "1.3.6.1.3.20651.1.1"
binaries, snmpd = (pathlib.Path(word).resolve() for word in sys.argv[1:])


def walk_time(entry):
    begun = time.monotonic()
    device.snmp("snmpbulkwalk", entry, options=["-Cr50"])
    return time.monotonic() - begun


device = Device(binaries, snmpd)
try:
    device.daemon("--rows", f"tunnel={ROWS}")
    device.master()
    begun = time.monotonic()
    device.agent("--interval", "1h", "--max-age", "1h")
    until(lambda: device.served() == {"1"})
    first_tables = time.monotonic() - begun
    cells = []
    for oid, value in device.walk(TUNNELS).items():
        column, index = oid.removeprefix(TUNNELS + ".").split(".", 1)
        cells.append(f"{column} {value.type or 'ticks'} {value.value} {index}\n")
    (device.path / "cells").write_text("".join(cells))
    with open(device.path / "cells", "rb") as lines:
        device.running["plain"] = subprocess.Popen([binaries / "plain_table", device.master_socket, PLAIN, "37"],
                                                   stdin=lines, env=device.environment)
    until(lambda: len(device.walk(PLAIN)) == len(cells))
    turns = [{entry: walk_time(entry) for entry in (TUNNELS, PLAIN)} for _ in range(TURNS)]
    times = {entry: min(turn[entry] for turn in turns) for entry in (TUNNELS, PLAIN)}
    ratio = times[PLAIN] / times[TUNNELS]
    for name, entry in ("rsvp-agentx", TUNNELS), ("plain table", PLAIN):
        print(f"snmpbulkwalk of {ROWS} tunnels, {len(cells)} cells, {name}: {times[entry]:.3f} s, "
              f"{len(cells) / times[entry]:,.0f} cells/s")
    print(f"rsvp-agentx comes to {ratio:.2f} of the rate of the plain table; bound 0.5")

    device.stop("agent")
    device.agent("--interval", "10ms")
    until(lambda: device.served() == {"1"})
    device.running["daemon"].send_signal(signal.SIGSTOP)
    until(lambda: all(int(row[4]) > 100 for row in device.caches().values())) # all workers wait
    begun = time.monotonic()
    device.stop("agent")
    end = time.monotonic() - begun
    print(f"rsvp-agentx serves all tables {first_tables:.2f} s after its start; bound 3")
    print(f"rsvp-agentx ends {end:.3f} s after SIGTERM while its workers wait; bound 1")
finally:
    device.end()
sys.exit(0 if ratio >= 0.5 and first_tables < 3 and end < 1 else 1)
