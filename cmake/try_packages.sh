#!/bin/bash
# Takes the steps of docs/quick-start.md with the Debian packages of a folder: installs them, which needs root and a
# machine that does not have them, and removes them again. With --unpack they are only unpacked, for anyone anywhere.
#
#     try_packages.sh [--unpack] FOLDER
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
unpack=
[ "$1" != --unpack ] || {
  unpack=yes
  shift
}
packages=$(cd "$1" && pwd)
names=(librsvp-mor1 librsvp-mor-dev rsvp-mor-tools rsvp-mor-agentx python3-rsvp-mor)
try=$(mktemp -d)
trap 'rm -rf "$try"' EXIT
log=$try/log
root=

leave() {
  [ ! -e "$try/device/lipc-0ae18000" ] || RSVP_HOST_DIR=$try/device rsvpctl disable
  if [ ! "$unpack" ]; then
    apt-get purge -y -q "${names[@]}" >"$log" 2>&1 || cat "$log" >&2
  fi
  rm -rf "$try"
}

if [ "$unpack" ]; then
  root=$try/root
  for package in "$packages"/*.deb; do
    dpkg-deb -x "$package" "$root"
  done
  libraries=$(dirname "$(find "$root" -name librsvp_mor.so.1)")
  export PATH=$root/usr/bin:$PATH PKG_CONFIG_PATH=$libraries/pkgconfig LD_LIBRARY_PATH=$libraries
else
  for name in "${names[@]}"; do
    if dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q ' installed$'; then
      echo "$name is installed here: remove it first" >&2
      exit 1
    fi
  done
fi
trap leave EXIT
[ "$unpack" ] || apt-get install -y -q --no-install-recommends "$packages"/*.deb >"$log" 2>&1 || {
  cat "$log" >&2
  exit 1
}
cd "$try"
# The document is the source of the steps: what is indented in it, between the installation and the output, is run.
sed -n '/^Make a device/,/^It prints/s/^    //p' "$source/docs/quick-start.md" | sed "s,/usr,$root/usr," >steps.sh
sed -n '/^It prints/,/^Stop/s/^    //p' "$source/docs/quick-start.md" >expected
cat steps.sh
bash -euo pipefail steps.sh | tee printed
tail -n "$(wc -l <expected)" printed | diff -u expected -
RSVP_HOST_DIR=$try/device rsvpctl disable
