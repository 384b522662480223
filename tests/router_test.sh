#!/bin/sh
# The build for the router, with the commands of the README: only the library, within its size, and with no call left
# undefined except the platform's own. If the platform's libraries are named, the library needs them.
#
#     router_test.sh SOURCE WORK_FOLDER
set -eu
source=$1 work=$2
triplet=arm-linux-gnueabihf
rm -rf "$work"
mkdir -p "$work"
echo "int STLV_Get(void) { return 0; }" >"$work/stlv.c"
"$triplet-gcc" -shared -Wl,-soname,libplatform.so.1 -o "$work/libplatform.so" "$work/stlv.c"

build() {
  cmake --preset router -S "$source" -B "$work/build" -DRSVP_MOR_PLATFORM_LIBRARIES="$1" >"$work/log" &&
    cmake --build "$work/build" --parallel >>"$work/log" 2>&1 || {
    cat "$work/log"
    exit 1
  }
}

build ""
library=$work/build/lib/librsvp_mor.so.1
sh "$source/tests/exports_test.sh" "$triplet-nm" "$triplet-readelf" "$triplet-strip" "$library" \
  "$source/abi/exports.txt" 21000
sed -nE 's/^[a-z].*[ *]([A-Z]+_[A-Za-z]+)\(.*/\1/p' "$source"/platform/*.h | sort >"$work/platform"
"$triplet-nm" -D --undefined-only "$library" | awk '$1 == "U" && $2 !~ /@/ { print $2 }' | sort >"$work/open"
diff "$work/platform" "$work/open" || {
  echo "the undefined calls (>) are not the platform's (<)"
  exit 1
}

[ "$("$triplet-readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')" = libc.so.6 ] || {
  echo "the library must need the C library alone"
  exit 1
}
sh "$source/tests/elf_test.sh" "$triplet-readelf" router "$work/build/lib"

build "$work/libplatform.so"
sh "$source/tests/elf_test.sh" "$triplet-readelf" router "$work/build/lib"
"$triplet-readelf" -d "$library" | grep -q 'NEEDED.*\[libplatform.so.1\]' || {
  echo "the platform's library was named, but the library does not need it"
  exit 1
}
