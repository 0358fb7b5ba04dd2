#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ with clang and runs every target for
# the given number of seconds (default 60), the targets side by side. Each
# starts from its committed seed corpus in fuzz/corpus/<target>; what it learns
# goes to build/fuzz/corpus/<target>, never into the repository. Any finding
# (crash, sanitizer report, leak, hang, unexpected exception) fails the run;
# the input that caused it is kept in build/fuzz/artifacts/<target>/.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
build=build/fuzz
targets=(config_reader_fuzzer comm_unit_fuzzer frame_reader_fuzzer perception_reader_fuzzer
         monitor_reader_fuzzer)

cmake -S fuzz -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ >/dev/null
cmake --build "$build" -j "$(nproc)"

pids=()
for target in "${targets[@]}"; do
  mkdir -p "$build/corpus/$target" "$build/artifacts/$target"
  "$build/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$build/artifacts/$target/" \
    "$build/corpus/$target" "fuzz/corpus/$target" >"$build/$target.log" 2>&1 &
  pids+=($!)
done

status=0
for i in "${!targets[@]}"; do
  target=${targets[$i]}
  log=$build/$target.log
  if wait "${pids[$i]}"; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    echo "fuzz $target: ${runs:-?} executions in ${seconds}s, no findings"
  else
    status=1
    echo "fuzz $target: FINDING (log: $log, input in $build/artifacts/$target/)"
    tail -n 60 "$log"
  fi
done
exit $status
