#!/usr/bin/env bash
# The one command of this project: installs what is missing, builds, runs the demo, the tests and the proofs.
set -euo pipefail
cd "$(dirname "$0")"

usage() {
  cat <<'TEXT'
Usage: ./build.sh VERB

  build            build for this machine, into build/host
  demo             build, then show the main job: enable, configure, read, disable
  test             build and test for this machine, with sanitizers, and for 32-bit ARM under an emulator
  arm              build and test for 32-bit ARM alone
  big-endian       build and test for a big-endian processor (s390x) under an emulator
  threads          build with the thread sanitizer and run the tests of many threads
  memory           run the tests and all that they start under valgrind
  check            warnings of clang, clang-tidy, cppcheck, format
  bench            measure the library against plain system calls; writes build/bench.json
  fuzz [SECONDS]   run each fuzz harness (60 seconds each if not told otherwise)
  inject           let every system call of the programs fail, one after another
  soak [SECONDS]   many programs against a daemon that misbehaves (60 seconds if not told otherwise)
  docs             make the HTML reference and docs/protocol.md
  package          make the Debian packages, into build/packages, twice and with the same bytes
  clean            remove everything that was built
  help             this text
TEXT
}

say() {
  printf '== %s\n' "$*"
}

# Runs a command, and says how long it took: on the clock, and on the processors for it and all that it started.
timed() {
  local TIMEFORMAT='   %0R s on the clock, %0U s of processor time and %0S s in the kernel'
  time "$@"
}

# Installs the packages of Debian that are named and missing.
need() {
  local missing=()
  for package in "$@"; do
    dpkg-query -W -f '${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
  done
  if [ ${#missing[@]} -eq 0 ]; then
    return
  fi
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null || ! sudo -n true 2>/dev/null; then
      printf 'These packages are missing and may not be installed from here. As root, run:\n  apt-get install %s\n' \
        "${missing[*]}" >&2
      exit 1
    fi
    as_root=(sudo -n)
  fi
  say "installing ${missing[*]}"
  if ! { quietly "${as_root[@]}" apt-get -q update &&
    DEBIAN_FRONTEND=noninteractive quietly "${as_root[@]}" apt-get -q -y install --no-install-recommends "${missing[@]}"; }; then
    printf 'The packages could not be installed: %s\n' "${missing[*]}" >&2
    exit 1
  fi
}

# Unpacks packages of Debian that hold services into build/counterparts, for the tests to start. They are not installed:
# a machine must not begin to serve anything because it ran our tests.
unpack() {
  local root=$PWD/build/counterparts missing=()
  for package in "$@"; do
    [ -e "$root/$package.unpacked" ] || missing+=("$package")
  done
  if [ ${#missing[@]} -eq 0 ]; then
    return
  fi
  say "unpacking ${missing[*]}, into build/counterparts"
  mkdir -p "$root"
  for package in "${missing[@]}"; do
    rm -f "$root/$package"_*.deb
    (cd "$root" && quietly apt-get -q download "$package")
    dpkg-deb -x "$root/$package"_*.deb "$root"
    rm "$root/$package"_*.deb
    touch "$root/$package.unpacked"
  done
}

need_host() {
  need g++ cmake make binutils libcli11-dev libfmt-dev nlohmann-json3-dev libtomlplusplus-dev libsnmp-dev python3 python3-cffi
}

# What the tests use beside the build: the library of tests, and the programs that check documents and interface.
need_tests() {
  need_host
  need googletest abigail-tools tshark doxygen graphviz man-db mandoc pkg-config python3-jsonschema dpkg-dev file lintian \
    jq zsh systemd snmp smitools
  need python3-pytest python3-pytest-xdist mypy g++-arm-linux-gnueabihf # of the Python package, with the router's layouts
}

# The services of others that tests on this machine talk to.
unpack_counterparts() {
  unpack prometheus prometheus-node-exporter snmpd
}

# Runs a command and shows what it printed only if it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}

configure_and_build() {
  local preset=$1 target=$2
  shift 2
  quietly cmake --preset "$preset" -DRSVP_MOR_TESTS=OFF -DRSVP_MOR_BENCH=OFF "$@"
  quietly cmake --build "build/$preset" --parallel "$(nproc)" --target "$target"
}

# Configures a preset, without tests and benchmark unless further arguments ask for them, and builds one target of it.
build_target() {
  say "building $1, into build/$1"
  timed configure_and_build "$@"
}

build_preset() {
  local preset=$1
  shift
  build_target "$preset" all "$@"
}

test_preset() {
  local preset=$1
  shift
  say "testing $preset"
  timed ctest --test-dir "build/$preset" --output-on-failure --parallel "$(nproc)" --no-tests=error "$@"
  sed -n 's/^stripped size/== &/p' "build/$preset/Testing/Temporary/LastTest.log" # growth is seen at every run
}

build_and_test() {
  build_preset "$1" -DRSVP_MOR_TESTS=ON
  test_preset "$@"
}

need_arm() {
  need_tests
  need g++-arm-linux-gnueabihf qemu-user
}

# A number of seconds, or the default.
seconds_of() {
  case ${1:-60} in
  *[!0-9]*)
    printf 'build.sh: "%s" is not a number of seconds\n' "$1" >&2
    exit 2
    ;;
  *) printf '%s' "${1:-60}" ;;
  esac
}

# What a compiler that only compiles does not see; with clang as the second compiler, and each file in a unit of its own.
check_sources() {
  need_tests
  need clang clang-format clang-tidy cppcheck libbenchmark-dev libclang-rt-14-dev
  local library="channel config status tables lsp p2mp"
  say "format"
  git ls-files '*.c' '*.cpp' '*.h' '*.hpp' | xargs clang-format --dry-run -Werror
  say "clang, all warnings, each file alone"
  timed compile_with_clang
  say "clang-tidy"
  timed tidy
  say "cppcheck"
  # shellcheck disable=SC2086
  cppcheck --quiet --enable=warning,performance,portability --std=c++20 --inline-suppr --error-exitcode=1 \
    -Iinclude -I. $library host/platform process
}

compile_with_clang() {
  quietly cmake -S . -B build/clang -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DRSVP_MOR_UNITY=OFF -DRSVP_MOR_BENCH=ON
  quietly cmake --build build/clang --parallel "$(nproc)"
}

# Every file of code. One for which the build has no command would be read with guessed options.
tidy() {
  git ls-files '*.c' '*.cpp' | while read -r file; do
    grep -qF "$PWD/$file\"" build/clang/compile_commands.json || {
      printf 'the build has no command for %s\n' "$file" >&2
      return 1
    }
    printf '%s\n' "$file"
  done | quietly xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p build/clang
}

verb=${1:-help}
[ $# -eq 0 ] || shift
case $verb in
build)
  need_host
  build_preset host
  ;;
demo)
  need_host
  build_preset host
  examples/demo.sh build/host
  ;;
test)
  need_arm
  unpack_counterparts
  build_and_test host
  build_and_test sanitize
  build_and_test arm
  ;;
arm)
  need_arm
  build_and_test arm
  ;;
big-endian)
  need_tests
  need g++-s390x-linux-gnu qemu-user
  build_and_test s390x
  ;;
threads)
  need_tests
  unpack snmpd
  build_target thread threads_test -DRSVP_MOR_TESTS=ON # and the daemon that it starts
  build_target thread rsvp-agentx -DRSVP_MOR_TESTS=ON  # whose workers are the only other threads
  build_target thread rsvpctl -DRSVP_MOR_TESTS=ON      # which the agent's test asks
  test_preset thread -R '^(threads_test.*|agentx|elf)$'
  ;;
memory)
  need_tests
  need valgrind
  unpack_counterparts
  reports=build/memory/valgrind # of every program that a test starts, whoever waits for it
  rm -rf $reports
  mkdir -p $reports
  # Not those two: valgrind opens a standard descriptor that the caller has closed, and its own system calls are not the
  # daemon's, so that the filter takes them.
  build_and_test memory -E '(WhatIsNotTextOrCannotBeWrittenIsNotSilence|Sandbox.KeepsWhatTheDaemonNeeds)$'
  if grep -h '^==' $reports/*.log; then
    exit 1
  fi
  ;;
check)
  check_sources
  ;;
bench)
  need_host
  need libbenchmark-dev valgrind strace g++-arm-linux-gnueabihf snmp
  unpack snmpd
  build_preset router
  build_preset host -DRSVP_MOR_BENCH=ON
  bench/run.sh build/host build/bench.json build/router
  bench/agentx.py build/host/bin build/counterparts/usr/sbin/snmpd
  ;;
fuzz)
  seconds=$(seconds_of "$@")
  need_tests
  need clang libclang-rt-14-dev llvm
  fuzz/run.sh "$seconds"
  ;;
inject)
  need_host
  need strace python3
  build_preset host
  tests/injection.py build/host/bin/rsvpctl build/host/bin/rsvpsimd host/scenarios
  ;;
soak)
  seconds=$(seconds_of "$@")
  need_host
  need libbenchmark-dev
  build_preset host -DRSVP_MOR_BENCH=ON
  build/host/bin/soak "$seconds"
  need snmp
  unpack snmpd
  say "as many reads as rsvp-agentx makes in a day with a pause of 30 seconds"
  AGENTX_ROUNDS=2880 tests/agentx_test.py build/host/bin build/counterparts/usr/sbin/snmpd . \
    Agent.test_many_reads_leave_nothing_behind
  ;;
docs)
  need_host
  need doxygen graphviz
  build_target host docs
  say "docs/protocol.md is fresh; the reference is build/host/docs/html/index.html"
  ;;
package)
  need_host
  need dpkg-dev file pkg-config tshark
  cmake/package.sh build/packages
  tests/install_test.sh "$PWD/build/packages/build" # with the prefix of the packages
  ;;
clean)
  say "removing build/"
  rm -rf build
  ;;
help | --help | -h)
  usage
  ;;
*)
  printf 'build.sh: there is no verb "%s"\n\n' "$verb" >&2
  usage >&2
  exit 2
  ;;
esac
