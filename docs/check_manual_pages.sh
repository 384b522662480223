#!/bin/sh
# The manual pages must be right for both readers of them, and must not fall behind the programs: every command, option
# and other name that a program has is in its page, every kind of fault and of row is in the pages that tell of them, and
# the daemon takes the scenario that is shown.
#
#     check_manual_pages.sh RSVPCTL RSVPSIMD RSVP_AGENTX
set -eu
rsvpctl=$1 rsvpsimd=$2 agentx=$3
cd "$(dirname "$0")/man"
command -v man >/dev/null && command -v mandoc >/dev/null || {
  echo "man or mandoc is missing: install man-db and mandoc"
  exit 77
}
failed=0

complain() {
  printf '%s\n' "$*"
  failed=1
}

for page in *.[1358]; do
  problems=$(man --warnings -l "$page" 2>&1 >/dev/null; mandoc -Tlint -Wwarning "$page") || true
  [ -z "$problems" ] || complain "$page: $problems"
done

# The page without the marks of bold and underlined letters; lines are long enough that no word is broken.
plain() {
  mandoc -T ascii -O width=1000 "$1" | sed 's/.\x08//g' >"$text"
}

# Words on standard input that the page does not have.
missing() {
  tr -s ' ,.:;()' '\n' <"$text" >"$text.words"
  while read -r word; do
    grep -qxF -e "$word" "$text.words" || complain "$1 does not tell of $word"
  done
}

# The words of each command below those of $1, a command a line. What can be watched is what can be shown.
commands() (
  below=
  [ "$1" = "watch show" ] || below=$("$rsvpctl" help $1 | sed -n '/^Subcommands:/,/^$/s/^  \([a-z0-9-]*\) .*/\1/p')
  [ -n "$below" ] || echo "$1"
  for word in $below; do
    commands "${1:+$1 }$word"
  done
)

# The options of a help text on standard input, those that are arguments as well among them.
options() {
  sed -n 's/^  \(-[a-z],\)\{0,1\}\(--[a-z0-9-]*\).*/\2/p; s/.*; also \(--[a-z0-9-]*\)$/\1/p'
}

# The other names of a command, from its help text on standard input.
aliases() {
  sed -n '/^Other names: /{s///;s/, /\n/g;p;}'
}

text=$(mktemp) words=$(mktemp) kinds=$(mktemp)
trap 'rm -f "$text" "$text.words" "$words" "$words.commands" "$words.aliases" "$kinds"' EXIT

# Each command begins a line of the page, a setting without its verb. Its options and other names stand somewhere.
plain rsvpctl.1
commands "" >"$words.commands"
[ "$(wc -l <"$words.commands")" -gt 50 ] || complain "the help of rsvpctl cannot be read"
"$rsvpctl" --help | options >"$words"
while read -r command; do
  item=${command#set } item=${item#undo }
  grep -qE "^ +$item( |$)" "$text" || complain "rsvpctl.1 has no entry for $command"
  "$rsvpctl" help $command >"$kinds"
  options <"$kinds" >>"$words"
  aliases <"$kinds" >>"$words.aliases"
done <"$words.commands"
[ -s "$words.aliases" ] || complain "the other names of commands cannot be read"
sort -u -o "$words" "$words" "$words.aliases"
missing rsvpctl.1 <"$words"

plain rsvp-agentx.8
"$agentx" --help | options >"$words"
[ -s "$words" ] || complain "the help of rsvp-agentx cannot be read"
missing rsvp-agentx.8 <"$words"

plain rsvpsimd.8
"$rsvpsimd" --help | options >"$words"
kinds_of() {
  "$rsvpsimd" --check "--$1" "unknown$2" 2>&1 | sed -n 's/.* the kinds are //p' | tr -d , | tr ' ' '\n'
}
kinds_of fault "" >"$kinds"
[ -s "$kinds" ] || complain "the daemon does not list its kinds of faults"
cat "$kinds" >>"$words"
missing rsvpsimd.8 <"$words"
plain rsvpsimd-scenario.5
kinds_of rows =1 >"$words"
[ -s "$words" ] || complain "the daemon does not list its kinds of rows"
cat "$kinds" >>"$words"
missing rsvpsimd-scenario.5 <"$words"
sed -n '/^\.Bd -literal/,/^\.Ed/{/^\./d;p}' rsvpsimd-scenario.5 >"$words"
"$rsvpsimd" --check --scenario "$words" || complain "the daemon does not take the scenario of rsvpsimd-scenario.5"
while read -r kind; do
  grep -qE "^\| \`$kind[\`=[]" ../host.md || complain "host.md does not tell of the fault $kind"
done <"$kinds"
exit $failed
