#!/usr/bin/env bash
# The demo: builds orvo, the host program, the demo plug-ins and the stand-in
# server, then lets a team of agent processes (each an orvo_host assembling
# the demo plug-ins) play against the stand-in server for a bounded number of
# cycles, and shows one agent's action log, the server's summary and the SVG
# picture of the field.
#
#   scripts/demo.sh [--agents N] [--teams N] [--cycles N] [--sync] [--no-build]
#
#   --agents N  agent processes per team (default 11, at most 11)
#   --teams N   1 (default) or 2; the second team plays from the other half
#   --cycles N  cycles to play (default 250: 5 s at 50 cycles per second)
#   --sync      let the server step as soon as every agent has answered,
#               instead of in real time; used to measure the agents
#   --no-build  use the existing build in build/release
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

agents=11
teams=1
cycles=250
sync=()
build=yes
while [ $# -gt 0 ]; do
  case "$1" in
    --agents) agents=$2; shift 2 ;;
    --teams) teams=$2; shift 2 ;;
    --cycles) cycles=$2; shift 2 ;;
    --sync) sync=(--sync); shift ;;
    --no-build) build=no; shift ;;
    -h|--help) sed -n '2,17p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "demo.sh: unknown argument $1 (see --help)" >&2; exit 2 ;;
  esac
done
if ! [[ $agents =~ ^[0-9]+$ ]] || [ "$agents" -lt 1 ] || [ "$agents" -gt 11 ]; then
  echo "demo.sh: --agents takes 1 to 11" >&2; exit 2
fi
if [ "$teams" != 1 ] && [ "$teams" != 2 ]; then
  echo "demo.sh: --teams takes 1 or 2" >&2; exit 2
fi
if ! [[ $cycles =~ ^[0-9]+$ ]] || [ "$cycles" -lt 1 ]; then
  echo "demo.sh: --cycles takes a positive number" >&2; exit 2
fi

build_dir=$root/build/release
if [ "$build" = yes ]; then
  scripts/install-deps.sh
  cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
  cmake --build "$build_dir" -j "$(nproc)" --target orvo_host orvo_demo orvo_standin_server
fi
host=$build_dir/examples/host/orvo_host
server=$build_dir/tools/standin_server/orvo_standin_server
plugins=$build_dir/examples/demo
for file in "$host" "$server" "$plugins/libdemo.demo.so"; do
  if [ ! -e "$file" ]; then
    echo "demo.sh: $file is missing; run without --no-build" >&2
    exit 1
  fi
done

# The run directory: the plug-in set's configuration and the host under the
# tag name "demo", so that it opens libdemo.demo.so. A second team gets a run
# directory of its own inside it, with its own team name.
run=$root/build/demo-run
rm -rf "$run"
team_dirs=("$run")
[ "$teams" = 2 ] && team_dirs+=("$run/team2")
for dir in "${team_dirs[@]}"; do
  mkdir -p "$dir"
  cp -r examples/demo/config "$dir/config"
  ln -s "$host" "$dir/demo"
done
[ "$teams" = 2 ] && sed -i "s/^team .*/team rivals/" "$run/team2/config/server.cfg"

pids=()
cleanup() {
  local pid
  for pid in "${pids[@]}"; do
    kill "$pid" 2> /dev/null || true
  done
  for pid in "${pids[@]}"; do
    wait "$pid" 2> /dev/null || true
  done
}
trap cleanup EXIT
trap 'exit 130' INT TERM

# wait_for PID SECONDS: the process's exit status, or 124 after killing it.
wait_for() {
  local pid=$1 deadline=$((SECONDS + $2))
  while kill -0 "$pid" 2> /dev/null; do
    if [ $SECONDS -ge $deadline ]; then
      kill "$pid" 2> /dev/null || true
      wait "$pid" 2> /dev/null || true
      return 124
    fi
    sleep 0.05
  done
  local status=0
  wait "$pid" || status=$?
  return $status
}

# Free ports are chosen by the server, so that the demo never collides with a
# real server on 3100.
"$server" --port 0 --drawing-port 0 --ports-file "$run/ports" --agents $((agents * teams)) \
  --cycles "$cycles" "${sync[@]}" --start-timeout 20 --svg "$run/field.svg" \
  --log "$run/server-log.txt" > "$run/server-summary.txt" 2> "$run/server-messages.txt" &
server_pid=$!
pids+=("$server_pid")
for _ in $(seq 200); do
  [ -s "$run/ports" ] && break
  sleep 0.05
done
if [ ! -s "$run/ports" ]; then
  echo "demo.sh: the stand-in server did not start:" >&2
  cat "$run/server-messages.txt" >&2
  exit 1
fi
read -r tcp_port udp_port _ < "$run/ports"
outputs=()
agent_pids=()
for dir in "${team_dirs[@]}"; do
  sed -i -e "s/^port .*/port $tcp_port/" -e "s/^drawing_port .*/drawing_port $udp_port/" \
    "$dir/config/server.cfg"
done
echo "== $((agents * teams)) agents play $cycles cycles against the stand-in server on port $tcp_port"
for dir in "${team_dirs[@]}"; do
  for number in $(seq "$agents"); do
    (cd "$dir" && LD_LIBRARY_PATH=$plugins${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} \
      exec ./demo > "agent-$number.txt" 2>&1) &
    agent_pids+=($!)
    pids+=($!)
    outputs+=("$dir/agent-$number.txt")
  done
done

budget=$((cycles / 25 + 30))
server_status=0
wait_for "$server_pid" "$budget" || server_status=$?
failed=0
for index in "${!agent_pids[@]}"; do
  status=0
  wait_for "${agent_pids[$index]}" 10 || status=$?
  if [ $status -ne 0 ]; then
    echo "demo.sh: agent process ${outputs[$index]%.txt} ended with status $status:" >&2
    tail -n 20 "${outputs[$index]}" >&2
    failed=1
  fi
done
pids=()
if [ $server_status -ne 0 ]; then
  echo "demo.sh: the stand-in server ended with status $server_status:" >&2
  cat "$run/server-messages.txt" >&2
  exit 1
fi

# One agent's story: the one the server made number 7, or the first.
shown=$(grep -l "^agent 7 of team" "$run"/agent-*.txt 2> /dev/null | head -n 1 || true)
shown=${shown:-$run/agent-1.txt}
echo
echo "== one agent's output ($shown): its action log and current action"
cat "$shown"
echo
echo "== processing time per cycle of every agent (receive to send)"
grep -h "^processing time" "${outputs[@]}" || true
echo
echo "== the stand-in server's summary"
cat "$run/server-summary.txt"
echo
echo "== picture of the field: $run/field.svg"
exit $failed
