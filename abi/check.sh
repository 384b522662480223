#!/bin/sh
# Compares the interface of a built library with the baseline that is kept beside this script: exported symbols, the types
# of arguments, sizes and offsets of records. Programs on routers are not recompiled when the library is replaced, so
# whatever this refuses would break them. The library must have been built with debug information.
#
#     check.sh LIBRARY BASELINE            exit status 0 if nothing was removed or changed, 77 without a baseline
#     check.sh --bless LIBRARY BASELINE    makes the library's interface the baseline
set -eu
bless=no
if [ "${1-}" = --bless ]; then
  bless=yes
  shift
fi
[ $# -eq 2 ] || {
  echo "usage: $0 [--bless] LIBRARY BASELINE" >&2
  exit 2
}
library=$1
baseline=$2

command -v abidw >/dev/null || {
  echo "abidw is missing: install abigail-tools" >&2
  exit 77
}
if [ $bless = yes ]; then
  fresh=$(mktemp)
  trap 'rm -f "$fresh"' EXIT
  abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --type-id-style hash "$library" >"$fresh"
  cat "$fresh" >"$baseline"
  echo "blessed: $baseline"
  exit 0
fi
[ -e "$baseline" ] || {
  echo "there is no baseline $baseline: the interface is not checked for this processor"
  exit 77
}
# Without debug information records have no fields, and nothing would be compared.
if ! readelf --sections --wide "$library" | grep -q '\.debug_info'; then
  echo "$library has no debug information: build it with -g" >&2
  exit 1
fi
# Do not restrict this to the types in the public headers: the baseline does not record in which file a type is declared,
# so all types would count as private and every change of a record would be ignored.
if ! abidiff --no-added-syms --harmless --no-show-locs "$baseline" "$library"; then
  cat >&2 <<TEXT

The interface of the library has changed. Programs that were built against it before may break. If the change is not
intended, undo it. If it is, raise the version in the root CMakeLists.txt (the major version, unless symbols were only
added), and bless the change for every processor that has a baseline:
  $0 --bless "$library" "$baseline"
TEXT
  exit 1
fi
