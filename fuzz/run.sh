#!/bin/bash
# Builds the fuzz harnesses with clang and runs each for some seconds, starting from the kept inputs and from those made
# from the daemon's tables. If a harness finds something, it is left in the build folder and the exit status is not 0.
# Behind each stands how many lines of the sources that it is for its inputs reach; those that none reaches are listed.
set -euo pipefail
seconds=${1:-60}
cd "$(dirname "$0")/.."
build=build/fuzz
flags="-O1 -gline-tables-only -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all"
flags="$flags -fprofile-instr-generate -fcoverage-mapping"
harnesses=$(sed '/^#/d; s/ .*//' fuzz/harnesses.txt)

# The sanitizers' runtime is in the program alone, so that the shared libraries lack its names.
cmake -S . -B $build -DCMAKE_BUILD_TYPE=None \
  -DCMAKE_C_STANDARD_LIBRARIES=-Wl,-z,undefs -DCMAKE_CXX_STANDARD_LIBRARIES=-Wl,-z,undefs \
  -DRSVP_MOR_FUZZ=ON -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
# shellcheck disable=SC2086
cmake --build $build --parallel --target make_seeds $harnesses >/dev/null
export LLVM_PROFILE_FILE=/dev/null
$build/bin/make_seeds $build/fuzz/seeds
mkdir -p $build/fuzz/seeds/fuzz_scenario $build/fuzz/seeds/fuzz_dictionary
cp host/scenarios/*.toml $build/fuzz/seeds/fuzz_scenario/
cp host/dictionaries/*.toml $build/fuzz/seeds/fuzz_dictionary/

# The lines that the inputs of a harness reach, of those in the sources behind its name. Paths are relative to the root
# or to the folder where the compiler ran.
print_reach() {
  local harness=$1 sources=$2 found=$3
  LLVM_PROFILE_FILE=$found/raw $build/bin/"$harness" -runs=0 "${folders[@]}" >"$found/reach.log" 2>&1 </dev/null
  llvm-profdata merge -o "$found/profile" "$found/raw"
  llvm-cov export -format=lcov -instr-profile="$found/profile" $build/bin/"$harness" |
    awk -F '[:,]' -v root="$PWD/" -v sources="$sources" '
    function miss() { if (from != "") missed = missed "\n    " file ":" from (to == from ? "" : "-" to); from = "" }
    BEGIN { count = split(sources, names, " ") }
    /^SF/ {
      file = substr($0, 4)
      sub(root, "", file)
      sub(/^(.*\.\.\/|\.\/)/, "", file)
      wanted = 0
      for (i = 1; i <= count; ++i) wanted = wanted || index(file, names[i]) == 1
    }
    /^DA/ && wanted { ++lines; if ($3 == 0) { to = $2; if (from == "") from = to } else { ++reached; miss() } }
    /^end_of_record/ { miss() }
    END { printf "  %d of %d lines reached%s%s\n", reached, lines, missed == "" ? "" : ", but for", missed; exit !lines }'
}

findings=0
while read -r harness sources; do
  found=$build/fuzz/$harness
  mkdir -p "$found/inputs" "$build/fuzz/seeds/$harness"
  folders=("$found/inputs" "fuzz/corpus/$harness" "$build/fuzz/seeds/$harness")
  printf '%s: ' "$harness"
  if $build/bin/"$harness" -max_total_time="$seconds" -max_len=9000 -timeout=10 -artifact_prefix="$found/" \
    "${folders[@]}" >"$found/log" 2>&1 </dev/null; then
    grep -oE 'Done [0-9]+ runs in [0-9]+ second\(s\)' "$found/log"
  else
    echo "a finding; the input is in $found"
    tail -n 40 "$found/log"
    findings=1
  fi
  print_reach "$harness" "$sources" "$found"
done < <(grep -v '^#' fuzz/harnesses.txt)
exit $findings
