#!/usr/bin/env python3
# How fast a table of rsvp-agentx is walked, beside the same rows in a plain table of Net-SNMP: through the same master,
# in the same run, in turns. It fails if the agent comes to less than half of the plain table's rate.
#
#     agentx.py BIN_FOLDER SNMPD
import pathlib
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
    device.agent("--interval", "1h", "--max-age", "1h")
    until(lambda: device.caches()["mplsTunnelTable"][3] == str(ROWS))
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
    print(f"rsvp-agentx comes to {ratio:.2f} of the rate of the plain table")
finally:
    device.end()
sys.exit(0 if ratio >= 0.5 else 1)
