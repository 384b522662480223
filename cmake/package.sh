#!/bin/bash
# Makes the Debian packages and says what they hold. try_packages.sh then uses them as their user would.
#
#     package.sh OUTPUT_FOLDER
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
