"""Compares what a daemon held before and after: a test of a change, or of an upgrade.

    python3 snapshots.py save FILE      # all tables, as they are now
    python3 snapshots.py compare FILE   # what has changed since then; exit status 1 if something has
"""
from __future__ import annotations

import json
import sys
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import rsvp_mor

Snapshot = dict[str, list[dict[str, Any]]]


def snapshot(session: rsvp_mor.Session) -> Snapshot:
    """The tables that a change of configuration must not touch, each with its rows as documents."""
    walks = session.tunnels(), session.path_states(), session.reservation_states(), session.cr_lsps()
    names = "tunnels", "path states", "reservation states", "CR-LSPs"
    return {name: [row.to_dict() for row in walk] for name, walk in zip(names, walks)}


def differences(before: Snapshot, after: Snapshot) -> Iterator[str]:
    for table in before:
        gone = [row for row in before[table] if row not in after[table]]
        new = [row for row in after[table] if row not in before[table]]
        if gone or new:
            yield f"{table}: {len(gone)} rows gone or changed, {len(new)} new or changed"


def main(words: list[str]) -> int:
    if len(words) != 2 or words[0] not in ("save", "compare"):
        sys.exit(__doc__)
    file = Path(words[1])
    with rsvp_mor.Session() as session:
        now = snapshot(session)
    if words[0] == "save":
        file.write_text(json.dumps(now))
        return 0
    found = list(differences(json.loads(file.read_text()), now))
    print("\n".join(found) or "nothing has changed")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
