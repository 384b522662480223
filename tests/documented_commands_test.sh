#!/bin/bash
# The commands that documents show work as they are shown: each of the manual page's examples prints something and ends
# with status 0, and each command of docs/json.md prints what stands below it.
#
#     documented_commands_test.sh RSVPCTL RSVPSIMD SOURCE
set -euo pipefail
rsvpctl=$1 source=$3
export RSVP_SIMD=$2
work=$(mktemp -d)
export RSVP_HOST_DIR=$work/device
trap '"$rsvpctl" disable >/dev/null 2>&1; rm -rf "$work"' EXIT
mkdir -m 700 "$RSVP_HOST_DIR" "$work/here"
cat "$source/host/scenarios/demo.toml" "$source/host/scenarios/p2mp.toml" >"$RSVP_HOST_DIR/scenario.toml"
"$rsvpctl" enable
cd "$work/here"

rsvpctl() {
  command "$rsvpctl" "$@"
}

fail() {
  echo "documented_commands_test: $*" >&2
  exit 1
}

count=0
while IFS= read -r line; do
  count=$((count + 1))
  printed=$(set -o pipefail && eval "$line") || fail "rsvpctl.1: $line: exit status $?"
  [ -n "$printed" ] || fail "rsvpctl.1: $line prints nothing"
done < <(sed -n '/^\.Sh EXAMPLES/,/^\.Ed/{/^\./d;s/\\-/-/g;s/\\e/\\/g;p}' "$source/docs/man/rsvpctl.1")
[ $count -ge 8 ] || fail "only $count examples are found in rsvpctl.1"

# A command goes to the next prompt or the end of its block.
shown='' command='' count=0
check() {
  [ -n "$command" ] || return 0
  count=$((count + 1))
  printed=$(set -o pipefail && eval "$command") ||
    [[ $command == *"2>/dev/null"* ]] || fail "json.md: $command does not end with status 0" # those are refused
  [ "$printed" = "${shown%$'\n'}" ] || fail "json.md: $command prints
$printed"
}
while IFS= read -r line; do
  case $line in
  '$ '* | '```')
    check
    command='' shown=''
    [ "$line" = '```' ] || command=${line#??}
    ;;
  *) shown+=$line$'\n' ;;
  esac
done < <(sed -n '/^```console/,/^```$/{/^```console/d;p}' "$source/docs/json.md")
[ $count -ge 15 ] || fail "only $count commands are found in json.md"
