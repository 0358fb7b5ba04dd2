#!/usr/bin/env bash
# Builds the library and runs the whole test suite twice: a normal optimised
# build, then one with AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --test

jobs=$(nproc)
build() { # <dir> <cmake args...>
  local dir=$1
  shift
  cmake -S . -B "$dir" -G Ninja "$@"
  cmake --build "$dir" -j "$jobs"
  ctest --test-dir "$dir" --output-on-failure -j "$jobs" --timeout 300
}

# The normal build carries no debug information: it is only compiled to be
# tested, and leaving it out keeps the whole run within twenty minutes on two
# cores. The sanitizer build keeps it for its reports.
build build/release -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  build build/sanitize -DCMAKE_BUILD_TYPE=Debug -DORVO_SANITIZE=ON -DORVO_BUILD_BENCH=OFF
if [ -x scripts/fuzz.sh ]; then
  scripts/fuzz.sh 20
fi
echo "all tests passed"
