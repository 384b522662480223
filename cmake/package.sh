#!/bin/bash
# Makes the Debian packages and says what they hold. With "try" also installs them, runs docs/quick-start.md
# from them and removes them again, which needs root.
#
#     package.sh OUTPUT_FOLDER [try]
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "$1"
output=$(cd "$1" && pwd)
build=$output/build

cmake -S "$source" -B "$build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DRSVP_MOR_TESTS=OFF >"$output/log"
cmake --build "$build" --parallel "$(nproc)" >>"$output/log" 2>&1 || {
  cat "$output/log" >&2
  exit 1
}
rm -f "$output"/*.deb
(cd "$output" && cpack --config "$build/CPackConfig.cmake" -B "$output") >>"$output/log" 2>&1 || {
  cat "$output/log" >&2
  exit 1
}
rm -rf "$output/_CPack_Packages"
for package in "$output"/*.deb; do
  printf '%s\n' "${package##*/}"
  dpkg-deb --field "$package" Package Architecture Depends Suggests | sed 's/^/  /'
  dpkg-deb --fsys-tarfile "$package" | tar -t | sed -n 's,^\./\(.*[^/]\)$,  /\1,p'
done
[ "${2-}" = try ] || exit 0

printf '\nTrying the packages\n'
apt-get install -y -q --no-install-recommends "$output"/*.deb >>"$output/log" 2>&1
try=$(mktemp -d)
leave() {
  rm -rf "$try"
  apt-get remove -y -q rsvp-mor-tools librsvp-mor-dev librsvp-mor1 >>"$output/log" 2>&1
}
trap leave EXIT
cd "$try"
mkdir -m 700 device
export RSVP_HOST_DIR=$try/device
cp /usr/share/rsvp-mor/scenarios/demo.toml "$RSVP_HOST_DIR/scenario.toml"
rsvpctl enable
cp /usr/share/rsvp-mor/examples/walk.c .
cc walk.c $(pkg-config --cflags --libs rsvp_mor) -o walk
./walk
rsvpctl disable
man -w rsvpctl rsvpsimd librsvp_mor
