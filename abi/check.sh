#!/bin/sh
# Holds the interface of a built library against the baseline that is kept beside this script: exported symbols, the
# types of arguments, sizes and offsets of records. Programs on routers are not compiled again when the library is
# replaced, so whatever this refuses would break them. The library must have been built with debug information.
#
#     check.sh LIBRARY BASELINE            ends 0 if nothing was removed or changed, 77 if there is no baseline
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
  echo "there is no baseline $baseline: this processor's interface is not watched"
  exit 77
}
# A record in the baseline without its fields would be compared with nothing.
if ! readelf --sections --wide "$library" | grep -q '\.debug_info'; then
  echo "$library has no debug information: build it with -g" >&2
  exit 1
fi
# No choice by the folder of the headers here: the baseline names no places, so that all types would count as private
# and every change of a record would be passed over.
if ! abidiff --no-added-syms --harmless --no-show-locs "$baseline" "$library"; then
  cat >&2 <<TEXT

The interface of the library has changed. Programs that were built against it before may break. If the change is not
wanted, take it back. If it is, raise the version in the root CMakeLists.txt (the major version, unless symbols were
only added), and bless the change for every processor that is watched:
  $0 --bless "$library" "$baseline"
TEXT
  exit 1
fi
