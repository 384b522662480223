#!/bin/bash
# Cuts a build into its Debian packages, twice and with the same result, reads back how what they hold was built, lets
# Debian's own checker look at them if it is installed, and takes the steps of docs/quick-start.md with them.
#
#     packages_test.sh BUILD_DIRECTORY READELF
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

pack() {
  mkdir "$2"
  (cd "$2" && cpack --config "$1/CPackConfig.cmake" -B "$2") >"$work/log" 2>&1 || {
    cat "$work/log"
    exit 1
  }
}

pack "$1" "$work/once"
TZ=Asia/Tokyo pack "$1" "$work/again"
found=$(find "$work/once" -maxdepth 1 -name '*.deb' | wc -l)
[ "$found" = 5 ] || {
  echo "$found packages instead of 5"
  exit 1
}
for package in "$work"/once/*.deb; do
  cmp "$package" "$work/again/${package##*/}"
  dpkg-deb -x "$package" "$work/root"
done
sh "$source/tests/elf_test.sh" "$2" shipped "$work/root"
if grep -rlF "$source" "$work/root"; then
  echo "these files name the place of the sources"
  exit 1
fi
if command -v lintian >/dev/null; then
  lintian --fail-on error "$work"/once/*.deb 2>&1
fi
"$source/cmake/try_packages.sh" --unpack "$work/once"
library=$(dirname "$(find "$work/root" -name librsvp_mor.so.1)")
PATH=$work/root/usr/bin:$PATH LD_LIBRARY_PATH=$library PYTHONPATH=$work/root/usr/lib/python3/dist-packages \
  /usr/bin/python3 -B -c '
from rsvp_mor.simulator import Device
with Device(rows={"psb": 3}) as device, device.session() as session:
    assert len(list(session.path_states())) == 3'
