#!/usr/bin/env bash
# Measures the demo team at full speed: 11 agent processes against the
# stand-in server in sync mode (the server steps as soon as every agent has
# answered). Reports each agent's processing time per cycle (perception
# received to "(syn)" sent, measured by the agent) and the server's response
# latency (perception sent to "(syn)" received).
#   scripts/bench-demo.sh [cycles]     (default 2000)
set -euo pipefail
cd "$(dirname "$0")/.."
cycles=${1:-2000}
scripts/demo.sh --sync --agents 11 --cycles "$cycles" > /dev/null
run=build/demo-run
echo "11 agents, $cycles cycles, sync mode (full speed), $(nproc) cores"
grep -h "^processing time" "$run"/*/*/output.txt |
  sed -E 's/.*min ([0-9]+) us, median ([0-9]+) us, 99% ([0-9]+) us, max ([0-9]+) us.*/\1 \2 \3 \4/' |
  sort -n -k2 | awk '
    NR == 1 { best = $1 }
    { median[NR] = $2; p99[NR] = $3; if ($1 < best) best = $1; if ($4 > worst) worst = $4 }
    END {
      printf "agent processing time per cycle (goal: < 200 us):\n"
      printf "  medians of the agents %d to %d us, their 99th percentiles %d to %d us\n",
             median[1], median[NR], min_of(p99), max_of(p99)
      printf "  fastest cycle %d us, slowest cycle %d us\n", best, worst
    }
    function min_of(a,   i, m) { m = a[1]; for (i in a) if (a[i] < m) m = a[i]; return m }
    function max_of(a,   i, m) { m = a[1]; for (i in a) if (a[i] > m) m = a[i]; return m }'
grep -h "^all agents: latency" "$run/server-summary.txt" | sed 's/^all agents:/server response/' |
  sed 's/$/ (goal: median < 1000 us)/'
grep -h "wall time" "$run/server-summary.txt"
