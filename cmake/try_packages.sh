#!/bin/bash
# Installs the Debian packages of a folder, takes the steps of docs/quick-start.md, and removes the packages again.
# Needs root. Run it on a machine that does not have them.
#
#     try_packages.sh FOLDER
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
packages=$(cd "$1" && pwd)
names=(librsvp-mor1 librsvp-mor-dev rsvp-mor-tools)
for name in "${names[@]}"; do
  if dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q ' installed$'; then
    echo "$name is installed here: remove it first" >&2
    exit 1
  fi
done
try=$(mktemp -d)
log=$try/log

leave() {
  [ ! -e "$try/device/lipc-0ae18000" ] || RSVP_HOST_DIR=$try/device rsvpctl disable
  apt-get purge -y -q "${names[@]}" >"$log" 2>&1 || cat "$log" >&2
  rm -rf "$try"
}
trap leave EXIT

apt-get install -y -q --no-install-recommends "$packages"/*.deb >"$log" 2>&1 || {
  cat "$log" >&2
  exit 1
}
cd "$try"
# The document is the source of the steps: what is indented in it, between the installation and the output, is run.
sed -n '/^Make a device/,/^It prints/s/^    //p' "$source/docs/quick-start.md" >steps.sh
sed -n '/^It prints/,/^Stop/s/^    //p' "$source/docs/quick-start.md" >expected
cat steps.sh
bash -euo pipefail steps.sh | tee printed
tail -n "$(wc -l <expected)" printed | diff -u expected -
RSVP_HOST_DIR=$try/device rsvpctl disable
