#!/bin/bash
# Installs a build into a prefix with a space in it, builds the examples against that installation by pkg-config, by
# CMake and with the archive, and runs all of them: what a user does who is given the packages.
#
#     install_test.sh BUILD_DIRECTORY
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd)
build=$1
work=$(mktemp -d)
trap '[ ! -d "$work/device" ] || "$prefix/bin/rsvpctl" disable >/dev/null; rm -rf "$work"' EXIT
prefix="$work/an odd prefix"

step() {
  printf -- '-- %s\n' "$*"
}

step "installing"
cmake --install "$build" --prefix "$prefix" >"$work/install.log"
# Nothing may need the place where it was first put.
mv "$prefix" "$prefix moved"
prefix="$prefix moved"
share="$prefix/share/rsvp-mor"
library=$(dirname "$(find "$prefix" -name librsvp_mor.so.1)")
for file in "$library/librsvp_mor.a" "$library/wireshark/plugins/rsvp_mor.lua" "$prefix/bin/rsvpctl" "$prefix/bin/rsvpsimd" \
  "$prefix/bin/rsvp-agentx" "$prefix/lib/systemd/system/rsvp-agentx.service" \
  "$prefix/share/snmp/mibs/RSVP-MOR-MIB.txt" "$prefix/share/man/man8/rsvp-agentx.8" "$share/docs/snmp.md" \
  "$prefix/share/man/man1/rsvpctl.1" "$prefix/share/man/man3/librsvp_mor.3" "$prefix/share/man/man8/rsvpsimd.8" \
  "$prefix/share/man/man5/rsvpsimd-scenario.5" \
  "$share/scenarios/demo.toml" "$share/dictionaries/rsvpsimd.toml" "$share/docs/dictionary.md" "$share/docs/json.md" "$share/schema/1.json" \
  "$share/docs/monitoring.md" "$share/examples/monitoring/rsvp-mor-metrics.timer" \
  "$share/docs/writing-a-manager.md"; do
  [ -f "$file" ] || {
    echo "not installed: $file"
    exit 1
  }
done
if grep -rlF "$source" "$prefix/include" "$share" "$library/cmake" "$library/pkgconfig"; then
  echo "these files name the place of the source"
  exit 1
fi
readelf -d "$library/librsvp_mor.so.1" | grep -q 'SONAME.*\[librsvp_mor.so.1\]'

export PKG_CONFIG_PATH="$library/pkgconfig"
examples=$share/examples

step "pkg-config"
mkdir "$work/pkgconfig"
# pkg-config escapes the spaces of a folder for a shell that reads its words once more.
flags=()
eval "flags=($(pkg-config --cflags --libs rsvp_mor))"
cc -Wall -Wextra -Werror "$examples/walk.c" "${flags[@]}" -o "$work/pkgconfig/walk"
cc -Wall -Wextra -Werror "$examples/sub_lsps.c" "${flags[@]}" -o "$work/pkgconfig/sub_lsps"
cc -Wall -Wextra -Werror "$examples/row_cache.c" "${flags[@]}" -pthread -o "$work/pkgconfig/row_cache"
cc -Wall -Wextra -Werror "$examples/give_up.c" "${flags[@]}" -pthread -o "$work/pkgconfig/give_up"
c++ -std=c++20 -Wall -Wextra -Werror "$examples/walk.cpp" "${flags[@]}" -o "$work/pkgconfig/walk_cpp"
sed -n '/^    #include/,/^    }/s/^    //p' "$source/README.md" >"$work/readme.c"
cc -Wall -Wextra -Werror "$work/readme.c" "${flags[@]}" -o "$work/pkgconfig/readme"
LD_LIBRARY_PATH="$library" "$source/tests/examples_test.sh" "$work/pkgconfig" "$prefix/bin/rsvpsimd" \
  "$share/scenarios/demo.toml"

step "CMake"
mkdir "$work/project"
cat >"$work/project/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C CXX)
set(CMAKE_CXX_STANDARD 20)
find_package(rsvp_mor 1 REQUIRED)
find_package(Threads REQUIRED)
add_executable(walk ${EXAMPLES}/walk.c)
add_executable(walk_cpp ${EXAMPLES}/walk.cpp)
add_executable(row_cache ${EXAMPLES}/row_cache.c)
add_executable(sub_lsps ${EXAMPLES}/sub_lsps.c)
add_executable(give_up ${EXAMPLES}/give_up.c)
target_link_libraries(walk PRIVATE rsvp_mor::rsvp_mor_static)
target_link_libraries(walk_cpp PRIVATE rsvp_mor::rsvp_mor)
target_link_libraries(sub_lsps PRIVATE rsvp_mor::rsvp_mor)
target_link_libraries(row_cache PRIVATE rsvp_mor::rsvp_mor Threads::Threads)
target_link_libraries(give_up PRIVATE rsvp_mor::rsvp_mor Threads::Threads)
CMAKE
cmake -S "$work/project" -B "$work/project/build" -DCMAKE_PREFIX_PATH="$prefix" -DEXAMPLES="$examples" \
  >"$work/project/configure.log"
cmake --build "$work/project/build" >"$work/project/build.log" || {
  cat "$work/project/build.log"
  exit 1
}
if readelf -d "$work/project/build/walk" | grep librsvp_mor; then
  echo "walk was to carry the library in it"
  exit 1
fi
"$source/tests/examples_test.sh" "$work/project/build" "$prefix/bin/rsvpsimd" "$share/scenarios/demo.toml"

step "the installed tool starts the installed daemon"
export RSVP_HOST_DIR="$work/device"
mkdir -m 700 "$work/device"
cp "$share/scenarios/demo.toml" "$work/device/scenario.toml"
"$prefix/bin/rsvpctl" enable
tr '\0' ' ' <"/proc/$(cat "$RSVP_HOST_DIR/rsvpsimd.lock")/cmdline" | grep -F "$prefix" >/dev/null
"$prefix/bin/rsvpctl" set interface 3

step "the program of the README"
[ "$(LD_LIBRARY_PATH="$library" "$work/pkgconfig/readme")" = "tunnel 300, LSP 1, 2 hops
tunnel 900, LSP 1, 1 hops
tunnel 100, LSP 1, 1 hops
tunnel 200, LSP 1, 2 hops" ]
