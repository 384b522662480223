"""Walks a table, and goes on where the walk broke.

    python3 walk.py
"""
from __future__ import annotations

import sys

import rsvp_mor


def show_paths(session: rsvp_mor.Session) -> int:
    """Prints a line for each LSP; gives back how many there are."""
    count = 0
    for psb in session.path_states():
        print(f"{psb.session.tunnelEndpoint} tunnel {psb.session.tunnelId} LSP {psb.sender.lspId}"
              f" by {', '.join(str(hop.named.address) for hop in psb.hopList if 'address' in hop.named) or 'no route'}")
        count += 1
    return count


def main() -> int:
    try:
        with rsvp_mor.Session() as session:
            show_paths(session)
    except rsvp_mor.WalkBroken as broken:
        print(f"{broken}; {broken.rows} rows are shown", file=sys.stderr)
        # The session has closed itself if no answer came, so that another one goes on.
        with rsvp_mor.Session() as session:
            for psb in session.path_states(after=broken.key):
                print(psb.session.tunnelEndpoint)
    except rsvp_mor.NoSession as error:
        print(error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
