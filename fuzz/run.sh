#!/bin/sh
# Builds the fuzz harnesses with clang and runs each for some seconds, starting from the kept inputs and from those made
# from the daemon's tables. If a harness finds something, it is left in the build folder and the exit status is not 0.
set -eu
seconds=${1:-60}
cd "$(dirname "$0")/.."
build=build/fuzz
flags="-O1 -gline-tables-only -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all"
harnesses="fuzz_operation fuzz_items fuzz_daemon fuzz_scenario fuzz_dictionary"

# Clang's sanitizers do not link shared libraries that name all that they need; no harness needs one.
cmake -S . -B $build -DCMAKE_BUILD_TYPE=None -DRSVP_MOR_FUZZ=ON -DCMAKE_OPTIMIZE_DEPENDENCIES=ON \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
# shellcheck disable=SC2086
cmake --build $build --parallel --target make_seeds $harnesses >/dev/null
$build/bin/make_seeds $build/fuzz/seeds

findings=0
for harness in $harnesses; do
  found=$build/fuzz/$harness
  mkdir -p "$found/inputs" "$build/fuzz/seeds/$harness"
  printf '%s: ' "$harness"
  if $build/bin/$harness -max_total_time="$seconds" -max_len=9000 -timeout=10 -artifact_prefix="$found/" \
    "$found/inputs" "fuzz/corpus/$harness" "$build/fuzz/seeds/$harness" >"$found/log" 2>&1; then
    grep -oE 'Done [0-9]+ runs in [0-9]+ second\(s\)' "$found/log"
  else
    echo "a finding; the input is in $found"
    tail -n 40 "$found/log"
    findings=1
  fi
done
exit $findings
