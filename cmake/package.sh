#!/bin/bash
# Makes the Debian packages and says what they hold. They are made twice, the second time from a copy of the sources in
# another place: a package shows that it was made from certain sources only if others get the same bytes from them.
# try_packages.sh then uses them as their user would.
#
#     package.sh OUTPUT_FOLDER
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "$1"
output=$(cd "$1" && pwd)
again=$output/_again

# The folders of a package get their modes from here.
umask 022

make_packages() {
  local source=$1 output=$2
  mkdir -p "$output"
  {
    cmake -S "$source" -B "$output/build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DRSVP_MOR_TESTS=OFF &&
      cmake --build "$output/build" --parallel "$(nproc)" &&
      rm -f "$output"/*.deb &&
      (cd "$output" && cpack --config build/CPackConfig.cmake -B "$output")
  } >"$output/log" 2>&1 || {
    cat "$output/log" >&2
    exit 1
  }
  rm -rf "$output/_CPack_Packages"
}

make_packages "$source" "$output"
rm -rf "$again"
mkdir -p "$again/a copy"
tar -C "$source" --exclude-vcs --exclude=./build --exclude=_again -c . |
  (umask 077 && tar -C "$again/a copy" --no-same-permissions -xm)
# A compiler cache would give the same answer to the same question.
CCACHE_DISABLE=1 TZ=Asia/Tokyo LC_ALL=C make_packages "$again/a copy" "$again"

for package in "$output"/*.deb; do
  cmp "$package" "$again/${package##*/}" || {
    echo "made a second time, from a copy of the sources, the package is another: see $again" >&2
    exit 1
  }
  printf '%s\n' "${package##*/}"
  dpkg-deb --field "$package" Package Architecture Depends Suggests | sed 's/^/  /'
  dpkg-deb --fsys-tarfile "$package" | tar -t | sed -n 's,^\./\(.*[^/]\)$,  /\1,p'
done
plugins=$(tshark -G folders 2>/dev/null | sed -n 's/^Global Lua Plugins:[[:space:]]*//p')
for package in "$output"/rsvp-mor-tools_*.deb; do
  dpkg-deb --fsys-tarfile "$package" | tar -t | grep -xF ".$plugins/rsvp_mor.lua" >/dev/null || {
    echo "Wireshark looks in $plugins, and the dissector is not there" >&2
    exit 1
  }
done
rm -rf "$again"
