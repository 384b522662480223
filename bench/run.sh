#!/bin/sh
# Prints the benchmark's table and writes it as JSON. With a third argument, the folder of a build for the router, it also
# checks the size of that library against its bound and lists its functions by size next to the JSON. Then it prints what
# a session notices of others that mean harm, and how fast Python walks.
set -eu
build=$1
json=$2
router=${3:-}
library=
if [ -n "$router" ]; then
  library=$json.so
  arm-linux-gnueabihf-strip -o "$library" "$router/lib/librsvp_mor.so.1.0.0"
  arm-linux-gnueabihf-nm --size-sort --reverse-sort --print-size --demangle --radix=d "$router/lib/librsvp_mor.so.1.0.0" |
    grep -i ' t ' | cut -d' ' -f2,4- | sed 's/^0*//' >"$json.functions"
fi
failed=0
"$build/bin/rsvp_mor_bench" "$build/bin" $library --benchmark_out="$json" --benchmark_out_format=json || failed=1
"$build/bin/starve" "$build/bin/rsvpsimd" || failed=1
PYTHONPATH=$build/python /usr/bin/python3 -B "$(dirname "$0")/python_walk.py" "$build/bin/rsvpctl" || failed=1
exit $failed
