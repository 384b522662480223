#!/bin/bash
# What the README promises of the checkout: the demo runs and prints what is shown of it, the commands to go on by hand
# work, and every file and folder that is named is there. Its program and its commands for the router are tried by
# install_test.sh and router_test.sh.
#
#     readme_test.sh BUILD_DIRECTORY
set -euo pipefail
build=$1
cd "$(dirname "$0")/.."
readme=$(<README.md)

printed=$(examples/demo.sh "$build") || {
  printf '%s\n' "$printed"
  exit 1
}
# "..." stands for any number of lines.
pattern='*'
shown=0
while IFS= read -r line; do
  if [ "$line" = ... ]; then
    pattern+=$'\n*'
  else
    pattern+=$'\n'${line//\[/\\[}
    shown=$((shown + 1))
  fi
done < <(sed -n '/^prints each command/,/^    \.\/build/s/^    \([^.].*\|\.\.\.\)$/\1/p' <<<"$readme")
[ $shown -ge 6 ] || {
  echo "only $shown lines of the demo are found in the README"
  exit 1
}
# shellcheck disable=SC2053 # a pattern
[[ $printed$'\n' == $pattern$'\n'* ]] || {
  printf 'The demo printed:\n%s\nand the README shows:%s\n' "$printed" "${pattern#\*}"
  exit 1
}

# The same commands, but with the programs of this build and a device that is thrown away.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sed -n '/^The demo clears away/,/^`rsvpctl/s/^    //p' <<<"$readme" |
  sed "s,\$PWD/build/host,$build,; s,\$PWD/build/device,$work/device," >"$work/by_hand.sh"
grep -q 'rsvpctl disable' "$work/by_hand.sh"
bash -euo pipefail "$work/by_hand.sh" >"$work/printed" || {
  RSVP_HOST_DIR=$work/device "$build/bin/rsvpctl" disable
  exit 1
}
grep -q '10\.0\.0\.4' "$work/printed"

for path in $(grep -oE '`[a-z]+/[a-zA-Z_./-]*`' <<<"$readme" | tr -d '`'); do
  [ -e "$path" ] || {
    echo "the README names $path"
    exit 1
  }
done
