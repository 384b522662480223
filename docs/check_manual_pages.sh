#!/bin/sh
# The manual pages must be right for both readers of them, and must not fall behind the programs: every option and every
# verb that a program's help names is in its page, and every kind of fault is in the daemon's page and in host.md.
#
#     check_manual_pages.sh RSVPCTL RSVPSIMD
set -eu
rsvpctl=$1 rsvpsimd=$2
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

for page in *.[138]; do
  problems=$(man --warnings -l "$page" 2>&1 >/dev/null; mandoc -Tlint -Wwarning "$page") || true
  [ -z "$problems" ] || complain "$page: $problems"
done

# Words of the help on standard input that the page does not have.
missing() {
  mandoc -T ascii "$1" | sed 's/.\x08//g' >"$text"
  while read -r word; do
    grep -qwF -e "$word" "$text" || complain "$1 does not tell of $word"
  done
}

text=$(mktemp) words=$(mktemp) kinds=$(mktemp)
trap 'rm -f "$text" "$words" "$kinds"' EXIT
{
  "$rsvpctl" --help | grep -oE -e '^ +--[a-z-]+'
  "$rsvpctl" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p'
} >"$words"
missing rsvpctl.1 <"$words"
"$rsvpsimd" --help | grep -oE -e '^ +(-h,)?--[a-z-]+' | grep -oE -e '--[a-z-]+' >"$words"
"$rsvpsimd" --check --fault unknown 2>&1 | sed -n 's/.* the kinds are //p' | tr -d , | tr ' ' '\n' | tee "$kinds" >>"$words"
[ -s "$kinds" ] || complain "the daemon does not list its kinds of faults"
missing rsvpsimd.8 <"$words"
while read -r kind; do
  grep -qE "^\| \`$kind[\`=[]" ../host.md || complain "host.md does not tell of the fault $kind"
done <"$kinds"
exit $failed
