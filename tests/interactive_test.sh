#!/bin/bash
# rsvpctl where a person sits in front of it: tables that are watched while they change, Ctrl-C and closed pipes in the
# middle of a wait, colours and the pager on a terminal, completion in a shell, a tree that dot takes.
#
#     interactive_test.sh RSVPCTL RSVPSIMD SCENARIO_FOLDER SCHEMA
set -euo pipefail
set -m # each job has a process group of its own, as at a prompt, and can be interrupted
rsvpctl=$1 scenarios=$3 schema=$4
export RSVP_SIMD=$2
work=$(mktemp -d)
watcher=
leave() {
  set +e # whatever has failed, the rest goes too
  [ -z "$watcher" ] || kill "$watcher"
  for device in "$work"/*.device; do RSVP_HOST_DIR=$device "$rsvpctl" disable; done
  rm -rf "$work"
}
trap 'leave >/dev/null 2>&1' EXIT

fail() {
  echo "interactive_test: $*" >&2
  exit 1
}

# A device whose daemon reads the scenario in standard input.
use_device() {
  export RSVP_HOST_DIR=$work/$1.device
  mkdir -m 700 "$RSVP_HOST_DIR"
  cat >"$RSVP_HOST_DIR/scenario.toml"
  "$rsvpctl" enable >"$work/enabled"
}

# Waits until a file has a line with the text, for as long as the watch runs.
await() {
  until grep -qsF -- "$2" "$1"; do
    kill -0 "$watcher" || fail "the watch ended before \"$2\" came: $(cat "$1")"
    sleep 0.1
  done
}

expect() {
  [ "$2" = "$3" ] || fail "$1: \"$3\", not \"$2\""
}

# A watch that ends as it should ends with status 0, however it is told to.
expect_end() {
  local status=0
  wait "$watcher" || status=$?
  watcher=
  expect "$1" "${2:-0}" $status
}

# A file holds nothing but documents of the schema that is kept and of today's, and together they fulfil a condition in
# Python.
"$rsvpctl" schema >"$work/today.json"
expect_documents() {
  python3 - "$1" "$2" "$schema" "$work/today.json" <<'PYTHON'
import json, sys, jsonschema
documents = []
text = open(sys.argv[1]).read()
while text:
    document, end = json.JSONDecoder().raw_decode(text)
    documents.append(document)
    text = text[end:].lstrip()
for name in sys.argv[3:]:
    schema = json.load(open(name))
    validator = jsonschema.validators.validator_for(schema)(schema)
    for document in documents:
        validator.validate(document)
assert eval(sys.argv[2]), (sys.argv[2], documents)
PYTHON
}

echo "-- rows that come, change and go"
use_device changing <<<""
events=$work/events
"$rsvpctl" watch show interface-config --initial --json --interval 100ms >"$events" &
watcher=$!
"$rsvpctl" set interface 3
await "$events" '"event":"added"'
"$rsvpctl" set hello --interface 3
await "$events" '"event":"changed"'
"$rsvpctl" undo interface 3
await "$events" '"event":"removed"'
kill -INT -- -$watcher
expect_end "watch, interrupted between polls"
expect_documents "$events" '[(event["event"], event["key"]) for event in documents] == [
  ("added", {"ifIndex": 3}), ("changed", {"ifIndex": 3}), ("removed", {"ifIndex": 3})
] and documents[1]["changes"] == [
  {"field": "/ifConfig", "before": 1, "after": 3, "perSecond": None},
  {"field": "/named/switches", "before": "rsvp", "after": "rsvp, hello", "perSecond": None}]'

echo "-- in words, what has a name is told by it alone"
"$rsvpctl" set interface 3
"$rsvpctl" set peer 10.0.0.9
"$rsvpctl" watch show interface-config --initial --interval 100ms >"$events" &
watcher=$!
await "$events" " added    ifIndex=3"
"$rsvpctl" set hello --interface 3
await "$events" "switches"
kill -INT -- -$watcher
expect_end "watch in words"
expect "a change in words" "           switches  rsvp -> rsvp, hello" "$(sed -n '/ changed  ifIndex=3$/,$p' "$events" | tail -n +2)"
expect "a key in words" " added    address=10.0.0.9 nbrWord1=0" "$("$rsvpctl" watch show neighbours --initial --count 1 |
  sed 's/^[^ ]*//')"
"$rsvpctl" undo peer 10.0.0.9
"$rsvpctl" undo interface 3

echo "-- the daemon goes, and comes back"
"$rsvpctl" watch show interface-config --json --interval 0.1 >"$events" &
watcher=$!
"$rsvpctl" disable
await "$events" '"event":"failed"'
"$rsvpctl" enable
await "$events" '"event":"recovered"'
kill -TERM $watcher
expect_end "watch, terminated"
expect "the last event" 1 "$(tail -n 1 "$events" | grep -c '"event":"recovered"')"
"$rsvpctl" watch status --initial --json --interval 0.1 >"$events" &
watcher=$!
await "$events" '"event":"added"'
"$rsvpctl" disable
await "$events" '"/service","before":"running","after":"stopped"'
kill -INT -- -$watcher
expect_end "watch status, interrupted"
expect_documents "$events" 'all(event["event"] in ("added", "changed") and not event["key"] for event in documents)'
for end in "--count 5" "--duration 1s"; do
  status=0
  # shellcheck disable=SC2086
  "$rsvpctl" watch show interface-config --json --interval 0.1 $end >"$events" || status=$?
  expect "watch, with no daemon" 3 $status
  expect "failures told of in all polls" 1 "$(grep -c '"event":"failed"' "$events")"
done

echo "-- Ctrl-C and a closed pipe in the middle of a wait"
use_device silent <<'SCENARIO'
trace = true
[[fault]]
kind = "silent"
class = 3
item = 101
[[fault]]
kind = "silent"
op = 5
item = 105
[rows]
chop = 2
SCENARIO
"$rsvpctl" watch show tunnels --json >"$events" &
watcher=$!
await "$RSVP_HOST_DIR/rsvpsimd.log" "< no answer"
kill -INT -- -$watcher
expect_end "watch, interrupted while it waits"
[ ! -s "$events" ] || fail "the wait went on to its end: $(cat "$events")"
status=0
"$rsvpctl" watch show tunnels --duration 500ms >"$events" 2>&1 || status=$?
expect "watch, whose time is over before it knows anything" 4 $status
expect "its message" "rsvpctl: watch show tunnels: no poll came to its end within 500ms" "$(cat "$events")"

# What came is a whole document, whatever was open: nothing, rows, or rows inside a batch.
printf 'show counters\nshow hops computed\nshow global\n' >"$work/lines"
interrupt() {
  : >"$RSVP_HOST_DIR/rsvpsimd.log"
  # shellcheck disable=SC2086
  "$rsvpctl" $1 --json >"$events" &
  watcher=$!
  await "$RSVP_HOST_DIR/rsvpsimd.log" "< no answer"
  kill -INT -- -$watcher
  expect_end "$1, interrupted" 130
  expect_documents "$events" "len(documents) == 1 and documents[0]['exitStatus'] == 130 and $2"
}
interrupt "show tunnels" 'documents[0]["error"] == "interrupted"'
one_row() {
  echo "[(part['count'], len(part['rows']), part['complete'], part['end']) for part in [$1]] == [
    (1, 1, False, 'interrupted')]"
}
interrupt "show hops computed" "$(one_row "documents[0]")"
interrupt "batch $work/lines" "$(one_row "documents[0]['rows'][1]") and documents[0]['count'] == 2"
mkfifo "$work/pipe"
: >"$RSVP_HOST_DIR/rsvpsimd.log"
"$rsvpctl" watch show tunnels --json >"$work/pipe" &
watcher=$!
exec 3<"$work/pipe"
await "$RSVP_HOST_DIR/rsvpsimd.log" "< no answer"
exec 3<&-
# At the end of the wait the failure could not be written, and that would be the exit status.
expect_end "watch, whose reader went away"

echo "-- on a terminal"
use_device demo < <(cat "$scenarios/demo.toml" "$scenarios/p2mp.toml")
bold=$'\e[1m'
on_terminal() {
  script -qec "$*" /dev/null </dev/null
}
looks() {
  local wanted=$1 text
  shift
  text=$("$@" 2>&1)
  case $wanted$text in
  bold*"$bold"* | paged*"page: "*) ;;
  plain*"$bold"* | plain*"page: "* | bold* | paged*) fail "$*: not $wanted: $text" ;;
  esac
}
looks bold on_terminal "$rsvpctl" show psb
looks plain env NO_COLOR=1 script -qec "$rsvpctl show psb" /dev/null
looks plain env TERM=dumb script -qec "$rsvpctl show psb" /dev/null
looks bold env NO_COLOR=1 "$rsvpctl" show psb --color always
looks plain on_terminal "$rsvpctl" show psb --color never
looks plain "$rsvpctl" show psb
export PAGER="sed 's/^/page: /'"
looks paged on_terminal "$rsvpctl" show psb
looks plain on_terminal "$rsvpctl" show psb --no-pager --color never
looks plain "$rsvpctl" show psb
everything=$("$rsvpctl" show psb)
for PAGER in /nowhere/pager "sed '" false; do
  [[ $(COLUMNS=200 on_terminal "$rsvpctl" show psb --color never | tr -d '\r') == *"$everything"* ]] || fail "output lost by $PAGER"
done

unset PAGER

echo "-- in so many columns"
# Each table fits into a terminal of some width, and whatever that is, it tells of what it does not show.
table_in() {
  script -qec "stty cols $1; $rsvpctl show $2 --no-pager --color never" /dev/null </dev/null | tr -d '\r'
}
shows=$("$rsvpctl" help show | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' | grep -vE '^(global|counters|frr|hops|p2mp)$')
for width in 80 132; do
  for show in $shows "frr facility" "frr general" "hops computed" "hops actual" "hops extended"; do
    table=$(table_in $width "$show")
    too_long=$(awk -v width=$width 'length > width' <<<"$table")
    [ -z "$too_long" ] || fail "show $show on $width columns: $too_long"
    [[ $show != interfaces || $table == *"--detail shows "*" more of each"* ]] || fail "interfaces hide without a word: $table"
  done
done
[[ $(table_in 80 psb) == *BANDWIDTH* ]] || fail "80 columns do not suffice for the path state"
expect "lines longer than COLUMNS" 0 "$(COLUMNS=50 table_in 80 psb | head -n -1 | awk 'length > 50' | wc -l)"
[[ $(table_in 80 interfaces) == *$'\n    authKey=hidden\n'* ]] || fail "words without a name are not on a line of their own"
[[ $(COLUMNS=50 "$rsvpctl" show psb) == *"EXTENDED ID"* ]] || fail "a pipe does not get all columns"

use_device slow <<'SCENARIO'
[rows]
tunnel = 2
[[fault]]
kind = "late"
number = 1050
class = 3
op = 5
item = 101
SCENARIO
[[ $(on_terminal "$rsvpctl" show tunnels) == *"2 rows, "*" rows/s"* ]] || fail "a long walk shows no progress"
[[ $("$rsvpctl" show tunnels 2>&1) != *"rows/s"* ]] || fail "progress where there is no terminal"
[[ $(TERM=dumb on_terminal "$rsvpctl" show tunnels) != *$'\e'* ]] || fail "escapes where the terminal takes none"

echo "-- completion"
in_bash() {
  # shellcheck disable=SC1090
  . <("$rsvpctl" completion bash)
  COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
  _rsvpctl "$1"
  echo "${COMPREPLY[*]}"
}
# The functions of zsh's own completion print what they are to offer.
"$rsvpctl" completion zsh >"$work/_rsvpctl"
in_zsh() {
  # shellcheck disable=SC2016
  zsh -f -c 'compdef() {}; _files() print files; _describe() print -r -- "${(@)${(P)2}%%:*}"
    source "$1"; shift; words=("$@") CURRENT=$#; _rsvpctl' zsh "$work/_rsvpctl" "${@@Q}"
}
offers() {
  local words=$1
  shift 2
  expect "completion of $* in bash" "$words" "$(in_bash "$rsvpctl" "$@")"
  expect "completion of $* in zsh" "$words" "$(in_zsh "$rsvpctl" "$@")"
}
offers "enable explain" rsvpctl e
offers "facility general" rsvpctl --json show frr ""
offers "--tunnel-id" rsvpctl show psb --tu
offers "auto always never" rsvpctl show --color ""
offers "--after" rsvpctl show neighbor --a
offers "--dry-run" rsvpctl enable --dr
offers "facility general" rsvpctl help show frr ""
offers "egress" rsvpctl show tunnels --sort eg
offers "index,instance index,ingress" rsvpctl watch show tunnels --columns index,in
expect "completion of a file in bash" "$scenarios/demo.toml" "$(in_bash "$rsvpctl" batch "$scenarios/de")"
expect "completion of a file in zsh" "files" "$(in_zsh "$rsvpctl" dictionary check "")"
RSVP_HOST_DIR=$work/demo.device
offers "200,1,10.0.0.5,10.0.0.4" rsvpctl show tunnel 2
offers "300 900 100 200" rsvpctl show psb -o wide --sender 10.0.0.1 --tunnel-id ""
offers "10.0.0.4" rsvpctl show psb --end-point 10.0.0.4
expect "a value that bash takes for a word of its own" "never" "$(in_bash "$rsvpctl" show --color = n)"
expect "a value that zsh does not" "--color=never" "$(in_zsh "$rsvpctl" show --color=n)"
"$rsvpctl" completion next --json -- show psb --sort s >"$events"
expect_documents "$events" '[word["word"] for word in documents[0]["record"]["words"]] == ["sender"]'
RSVP_HOST_DIR=$work/silent.device
offers "" rsvpctl show tunnels ""

echo "-- the tree as a graph"
export RSVP_HOST_DIR=$work/demo.device
svg=$("$rsvpctl" tree --key 500,10.0.0.1,10.0.0.1,50,1,0,0,0,0,0,0 --dot | dot -Tsvg)
expect "leaves in the graph" 8 "$(grep -c '>10\.0\.0\.1[1-8]</text>' <<<"$svg")"
