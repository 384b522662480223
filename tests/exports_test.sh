#!/bin/sh
# The shared library exports exactly the listed names, all under one version, and needs no C++ runtime. Every run prints
# the stripped size, so that growth is seen; on the router's processor it has a bound.
#
#     exports_test.sh NM READELF STRIP LIBRARY LIST [BYTES]
set -eu
nm=$1 readelf=$2 strip=$3 library=$4 list=$5 bound=${6-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed 's/$/@@RSVP_MOR_1/' "$list" | sort >"$work/listed"
"$nm" -D --defined-only "$library" | awk '$2 != "A" { print $3 }' | sort >"$work/shown"
diff "$work/listed" "$work/shown" || { echo "the exported names (>) are not the listed ones (<)"; exit 1; }

"$readelf" -d "$library" | grep NEEDED >"$work/needed"
if grep -E 'libstdc\+\+|libc\+\+' "$work/needed"; then
  echo "the library must not need a C++ runtime"
  exit 1
fi
"$readelf" -d "$library" | grep -q 'SONAME.*librsvp_mor\.so\.1\]' || { echo "wrong SONAME"; exit 1; }

"$strip" -o "$work/stripped" "$library"
size=$(wc -c <"$work/stripped")
echo "stripped size of $(basename "$library"): $size bytes"
[ -z "$bound" ] || [ "$size" -le "$bound" ] || { echo "only $bound bytes are allowed"; exit 1; }
