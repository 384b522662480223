#!/bin/bash
# The main job, as a person would do it by hand: switch RSVP on, configure it, look at it, switch it off. It runs in a
# private folder with a device of its own, and checks that nothing is left behind.
#
#     demo.sh BUILD_DIRECTORY
set -uo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:?usage: demo.sh BUILD_DIRECTORY}" && pwd) || exit 2
work=$(mktemp -d)
device=$work/device
elsewhere=$work/elsewhere
mkdir "$elsewhere"
mkdir -m 700 "$device"

leave() {
  [ -z "${enabled-}" ] || "$build/bin/rsvpctl" disable >/dev/null 2>&1
  rm -rf "$work"
}
trap leave EXIT

fail() {
  printf '\ndemo: %s\n' "$*" >&2
  exit 1
}

say() {
  printf '\n# %s\n' "$*"
}

run() {
  printf '\n$ %s\n' "$*"
  (cd "$elsewhere" && "$@") 2>&1 || fail "\"$*\" ended with exit status $?"
}

# Like run, for a command that must be refused.
run_refused() {
  local wanted=$1 status=0
  shift
  printf '\n$ %s\n' "$*"
  (cd "$elsewhere" && "$@") 2>&1 || status=$?
  [ $status -eq "$wanted" ] || fail "\"$*\" ended with exit status $status, not $wanted"
  printf '(exit status %s)\n' "$status"
}

# Anything that the programs write outside their device ends up in this folder, where the end of the demo finds it.
export PATH=$build/bin:$PATH RSVP_HOST_DIR=$device
export HOME=$elsewhere TMPDIR=$elsewhere XDG_RUNTIME_DIR=$elsewhere XDG_CACHE_HOME=$elsewhere
cat "$source/host/scenarios/demo.toml" "$source/host/scenarios/p2mp.toml" >"$device/scenario.toml" ||
  fail "the scenario files cannot be read"

say "A device of plain files stands in for the router, and a simulated daemon for the real one."
printf '\n$ export RSVP_HOST_DIR=%s\n' "$device"

say "Nothing is running yet, and the tool says so."
run_refused 5 rsvpctl set interface 4

say "Start the service: first on the master, then on the two standby nodes."
enabled=yes
run rsvpctl enable
run rsvpctl status
run rsvpctl show counters

say "The service manager keeps a file for each standby node: 1 means running."
run grep . "$device/service/2" "$device/service/3"

say "Switch RSVP on for an interface and configure a peer. Each is one request and one confirmation."
run rsvpctl set interface 4
run rsvpctl set peer 10.0.0.9

say "Both show up in the tables, under the names that the dictionary of the simulated daemon gives."
run rsvpctl show interface-config
run rsvpctl show neighbours

say "Some settings of the daemon, and of the interface."
run rsvpctl set refresh-interval 45
run rsvpctl set hello-interval 5
run rsvpctl set hello --interface 4
run rsvpctl show interface-config 4

say "What is signalled: tunnels, their LSPs, and the path state behind them."
run rsvpctl show tunnels
run rsvpctl show lsp
run rsvpctl show psb

say "One LSP on one screen, joined from all that the daemon keeps of it."
run rsvpctl show lsp tunnel-200

say "Fast reroute: what tunnel 100 asks for, and the bypass that it has found."
run rsvpctl show frr general
run rsvpctl show frr facility
run rsvpctl show hops extended

say "A point-to-multipoint LSP with its leaves."
run rsvpctl tree video-to-eight-leaves

say "For programs: the counters again, as one JSON document."
run rsvpctl show counters --json

say "Switch it off: the daemon is told, the standby nodes stop, the master last."
run rsvpctl disable
enabled=
run_refused 5 rsvpctl status

say "Nothing is left behind."
for process in /proc/[0-9]*; do
  # A process may end while this looks at it.
  if tr '\0' ' ' 2>/dev/null <"$process/cmdline" | grep -qF -- "--host-dir $device"; then
    fail "process ${process#/proc/} is left"
  fi
done
left=$(find "$elsewhere" -mindepth 1)
[ -z "$left" ] || fail "these files are left outside the device: $left"
sockets=$(find "$device" -type s)
[ -z "$sockets" ] || fail "a socket is left: $sockets"
printf '\nNo process, no socket, and no file outside of %s.\n' "$device"
