#!/bin/bash
# Cuts a build into its Debian packages, lets Debian's own checker look at them if it is installed, and takes the steps
# of docs/quick-start.md with what they hold.
#
#     packages_test.sh BUILD_DIRECTORY
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
(cd "$work" && cpack --config "$1/CPackConfig.cmake" -B "$work") >"$work/log" 2>&1 || {
  cat "$work/log"
  exit 1
}
[ "$(find "$work" -maxdepth 1 -name '*.deb' | wc -l)" = 3 ]
if command -v lintian >/dev/null; then
  lintian --fail-on error "$work"/*.deb 2>&1
fi
"$source/cmake/try_packages.sh" --unpack "$work"
