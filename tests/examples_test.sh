#!/bin/sh
# Runs the example programs against a simulated daemon: each does its job, tells the three ends of a walk apart, and
# while the daemon is silent the cache answers and a call can be given up.
#
#     examples_test.sh FOLDER_OF_EXAMPLES RSVPSIMD SCENARIO
set -eu
examples=$1 rsvpsimd=$2 scenario=$3
export RSVP_HOST_DIR
RSVP_HOST_DIR=$(mktemp -d)
daemon=
trap 'stop_daemon; rm -rf "$RSVP_HOST_DIR"' EXIT

fail() {
  echo "examples_test: $*" >&2
  exit 1
}

start_daemon() {
  "$rsvpsimd" --scenario "$scenario" "$@" &
  daemon=$!
  until [ -S "$RSVP_HOST_DIR/lipc-0ae18000" ]; do
    kill -0 $daemon || fail "the daemon ended before it was ready"
    sleep 0.1
  done
}

stop_daemon() {
  [ -z "$daemon" ] || {
    kill "$daemon" && wait "$daemon" || true
    daemon=
  }
}

# Exit status and standard output of a program.
expect() {
  wanted=$1 text=$2
  shift 2
  status=0
  output=$("$@" 2>"$RSVP_HOST_DIR/errors") || status=$?
  [ $status = "$wanted" ] || fail "$* ended with $status, not $wanted: $output $(cat "$RSVP_HOST_DIR/errors")"
  [ "$output" = "$text" ] || fail "$* printed: $output"
}

# The agent's loop answers at once, also before there is a table: then it is asked again.
ask_cache() {
  mkfifo "$RSVP_HOST_DIR/questions" "$RSVP_HOST_DIR/answers"
  "$examples/row_cache" 1 <"$RSVP_HOST_DIR/questions" >"$RSVP_HOST_DIR/answers" &
  exec 3>"$RSVP_HOST_DIR/questions" 4<"$RSVP_HOST_DIR/answers"
  while echo "next 0" >&3 && read -r row <&4 && [ "$row" = "no table yet" ]; do
    sleep 0.1
  done
  echo "$row"
  printf 'next 200\nquit\n' >&3
  cat <&4
  exec 3>&- 4<&-
}

rows="tunnel 300 from 10.0.0.4 to 10.0.0.1, LSP 1, came over 10.1.24.4 10.1.12.2
tunnel 900 from 10.0.0.1 to 10.0.0.2, LSP 1, came over 10.1.13.1
tunnel 100 from 10.0.0.1 to 10.0.0.4, LSP 1, came over 10.1.12.1
tunnel 200 from 10.0.0.5 to 10.0.0.4, LSP 1, came over 10.1.15.5 10.1.12.1"
for walk in walk walk_cpp; do
  expect 3 "" "$examples/$walk"
done

start_daemon
for walk in walk walk_cpp; do
  expect 0 "$rows" "$examples/$walk"
done
cached=$(ask_cache)
case $cached in
*"tunnel 100, instance 1, role "*"tunnel 300, instance 1, role "*) ;;
*) fail "row_cache printed: $cached" ;;
esac
stop_daemon

start_daemon --fault stuck,op=5 --fault silent,item=101
for walk in walk walk_cpp; do
  expect 4 "${rows%%
*}" "$examples/$walk"
  grep -q "does not advance" "$RSVP_HOST_DIR/errors" || fail "$walk did not say that the table does not advance"
done
expect 0 "no table yet
say \"next INDEX\" or \"quit\"" sh -c "printf 'next 0\nhello\nquit\n' | timeout 5 '$examples/row_cache'"
stop_daemon

# The library would wait 10 seconds; with a limit of 0 the call ends by the shutdown or never.
expect_given_up() {
  status=0
  printed=$("$examples/give_up" "$1") || status=$?
  case $status:$printed in
  "4:status 0x40010001 after "[0-9]" s") ;;
  *) fail "give_up ended with $status and printed: $printed" ;;
  esac
}
start_daemon --fault silent,item=6
expect_given_up 300 </dev/null
echo | expect_given_up 0
stop_daemon

start_daemon --fault close,op=5
for walk in walk walk_cpp; do
  expect 4 "${rows%%
*}" "$examples/$walk"
  grep -q "0x40010001" "$RSVP_HOST_DIR/errors" || fail "$walk did not name the status that broke it off"
done
stop_daemon

scenario=${scenario%/*}/p2mp.toml
start_daemon
kept=$("$examples/sub_lsps")
[ "$(printf '%s\n' "$kept" | grep -c '^sub-LSP ')" = 8 ] || fail "sub_lsps printed: $kept"
