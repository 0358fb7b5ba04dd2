#!/usr/bin/env bash
# Measures the drawing viewer under a full game's load: 22 agents each sending
# a drawing batch (4 datagrams) every 20 ms cycle while headless Chromium shows
# the live page. Reports the viewer's CPU share (from /proc, user + system),
# the datagrams sent and received, and those dropped on the way.
#   scripts/bench-viewer.sh [seconds]     (default 20; needs a build in build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
viewer=build/release/tools/viewer/orvo_viewer
[ -x "$viewer" ] || { echo "bench-viewer.sh: build orvo_viewer in build/release first" >&2; exit 1; }
work=$(mktemp -d)
pids=()
trap 'for p in "${pids[@]}"; do kill "$p" 2> /dev/null || true; done; wait; rm -rf "$work"' EXIT

"$viewer" --drawing-port 0 --http-port 0 --ports-file "$work/ports" > "$work/viewer.txt" &
viewer_pid=$!
pids+=("$viewer_pid")
for _ in $(seq 100); do [ -s "$work/ports" ] && break; sleep 0.05; done
read -r udp http < "$work/ports"
chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
  --disable-background-networking --disable-component-update --disable-sync \
  --user-data-dir="$work/profile" --window-size=1280,900 "http://127.0.0.1:$http/" \
  > /dev/null 2>&1 &
pids+=($!)
sleep 3 # the browser starts and connects

ticks=$(getconf CLK_TCK)
cpu() { awk '{ print $14 + $15 }' "/proc/$viewer_pid/stat"; }
before=$(cpu)
started=$(date +%s.%N)
sent=$(python3 bench/tools/drawing_load.py "$udp" "$seconds")
sleep 0.2 # the last datagrams are read
after=$(cpu)
ended=$(date +%s.%N)
kill -TERM "$viewer_pid"
wait "$viewer_pid"

echo "22 agents x 4 datagrams every 20 ms for $seconds s, a browser connected, $(nproc) cores"
awk -v t="$ticks" -v a="$after" -v b="$before" -v s="$started" -v e="$ended" \
  'BEGIN { printf "viewer CPU: %.2f%% of one core (goal: < 5%%)\n", 100 * (a - b) / t / (e - s) }'
echo "datagrams sent: $sent"
grep -E "^datagrams|^page" "$work/viewer.txt"
received=$(sed -nE 's/^datagrams: ([0-9]+) received.*/\1/p' "$work/viewer.txt")
[ "$received" = "$sent" ] && echo "none lost" || echo "LOST: $((sent - received))"
