#!/usr/bin/env bash
# The demo: builds orvo, the host program, the demo plug-ins and the server
# tools, then lets a team of agent processes (each an orvo_host assembling the
# demo plug-ins) play against a real simulation server of its own when one is
# installed (rcssserver3d), else against the stand-in server, or against an
# external server, and shows what every agent perceived, one agent's action
# log, the server's summary and the SVG picture of the field. It exits
# non-zero when an agent failed or the server went away before the game's end.
#
#   scripts/demo.sh [--standin] [--agents N] [--teams N] [--cycles N] [--types LIST]
#                   [--sync] [--slowdown F] [--server HOST:PORT] [--monitor-port N]
#                   [--play|--no-play] [--still-rivals] [--live] [--no-build] [--build-dir DIR] [--run-dir DIR]
#
#   --standin         play the stand-in server even when a real one is installed
#   --agents N        agent processes per team (default 11, at most 11)
#   --teams N         1 (default) or 2; the second team plays from the other half
#   --cycles N        server cycles every agent plays after the kick-off
#                     (default 250: 5 s at 50 cycles per second)
#   --types LIST      robot types (0 to 4) of the players in start order,
#                     repeated when shorter than the team (default
#                     0,4,0,4,2,0,0,2,0,0,0: a mix real servers accept, of the
#                     types that get up best, type 4 on the wings of the
#                     defence, where the ball comes least)
#   --sync            let the server (real or stand-in) step as soon as every
#                     agent has answered, instead of in real time; used to
#                     measure the agents and the server's speed
#   --slowdown F      the stand-in's cycles take F times 20 ms (default 1)
#   --server HOST:PORT  play an external server (a real one) instead of the
#                     stand-in; the kick-off goes to its monitor port, and the
#                     drawing viewer (orvo_viewer) shows the agents' drawings
#                     on a live page
#   --monitor-port N  the external server's monitor port (default 3200)
#   --play            once kicked off, the teams play soccer (walk, head for the
#                     ball, keep a formation): a real server's physics only;
#                     the default on a real server of the demo's own, which
#                     also defaults to --teams 2 --cycles 3000 (a minute)
#   --no-play         hold the places instead, also on a real server
#   --still-rivals    the second team stands where it was beamed while the
#                     first plays (a yardstick: goals against nobody)
#   --live            show the game on the stand-in's live page while it runs
#                     (its address is printed; it stays up until the game ends)
#   --no-build        use the existing build
#   --build-dir DIR   the build to use (default build/release)
#   --run-dir DIR     where the agents run and write (default build/demo-run)
#
# The agents start one after another: each once the one before has connected
# (and the stand-in has taken its connection), then 50 ms later (times the
# slowdown; 100 ms for an external server), since a server refuses robots
# whose connections arrive in the same cycle. Once the last has connected and
# the team has had 100 cycles to spread out, the game is kicked off by
# "(kickOff Left)" on the server's monitor port (orvo_trainer).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

agents=11
teams=
cycles=
types=0,4,0,4,2,0,0,2,0,0,0
sync=()
slowdown=1
external=
live=no
play=0
no_play=
still_rivals=no
standin=no
drawing_host=
monitor_port=3200
build=yes
build_dir=$root/build/release
run=$root/build/demo-run
while [ $# -gt 0 ]; do
  case "$1" in
    --agents) agents=$2; shift 2 ;;
    --teams) teams=$2; shift 2 ;;
    --cycles) cycles=$2; shift 2 ;;
    --types) types=$2; shift 2 ;;
    --sync) sync=(--sync); shift ;;
    --slowdown) slowdown=$2; shift 2 ;;
    --server) external=$2; shift 2 ;;
    --monitor-port) monitor_port=$2; shift 2 ;;
    --live) live=yes; shift ;;
    --play) play=1; shift ;;
    --no-play) no_play=1; shift ;;
    --still-rivals) still_rivals=yes; shift ;;
    --no-build) build=no; shift ;;
    --build-dir) build_dir=$(realpath -m "$2"); shift 2 ;;
    --run-dir) run=$(realpath -m "$2"); shift 2 ;;
    --standin) standin=yes; shift ;;
    -h|--help) awk 'NR > 1 && /^set -euo/ { exit } NR > 1' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "demo.sh: unknown argument $1 (see --help)" >&2; exit 2 ;;
  esac
done
fail() { echo "demo.sh: $*" >&2; exit 2; }
# Which server: an external one, a real one of the demo's own, or the stand-in.
real=no
if [ -z "$external" ] && [ "$standin" = no ] && command -v rcssserver3d > /dev/null; then
  real=yes
fi
# On a real server the demo is a game: two teams of eleven play a minute.
# On the stand-in (no physics) one team joins, spreads out and holds.
if [ "$real" = yes ]; then
  teams=${teams:-2}
  cycles=${cycles:-3000}
  [ "$play" = 1 ] || [ -n "$no_play" ] || play=1
fi
teams=${teams:-1}
cycles=${cycles:-250}
if ! [[ $agents =~ ^[0-9]+$ ]] || [ "$agents" -lt 1 ] || [ "$agents" -gt 11 ]; then
  fail "--agents takes 1 to 11"
fi
[ "$teams" = 1 ] || [ "$teams" = 2 ] || fail "--teams takes 1 or 2"
if ! [[ $cycles =~ ^[0-9]+$ ]] || [ "$cycles" -lt 1 ]; then
  fail "--cycles takes a positive number"
fi
[[ $types =~ ^[0-4](,[0-4])*$ ]] || fail "--types takes robot types 0 to 4, separated by commas"
IFS=, read -r -a type_list <<< "$types"
[[ $slowdown =~ ^[1-9][0-9]*$ ]] || fail "--slowdown takes a whole number from 1"
[[ $monitor_port =~ ^[0-9]+$ ]] || fail "--monitor-port takes a port"
if [ -n "$external" ]; then
  [[ $external =~ ^(.+):([0-9]+)$ ]] || fail "--server takes HOST:PORT"
  [ ${#sync[@]} = 0 ] || fail "--sync is for servers the demo starts"
fi
if [ "$real" = yes ]; then
  [ "$live" = no ] || fail "--live shows the stand-in's game; add --standin"
  [ "$slowdown" = 1 ] || fail "--slowdown is for the stand-in; add --standin"
elif [ -z "$external" ] && [ "$standin" = no ]; then
  echo "demo.sh: no real simulation server installed (rcssserver3d): playing the stand-in" \
    "(today's join-and-spread demo; a game needs a server with physics)"
fi

if [ "$build" = yes ]; then
  scripts/install-deps.sh
  cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
  cmake --build "$build_dir" -j "$(nproc)" --target orvo_host orvo_demo orvo_standin_server \
    orvo_viewer orvo_simserver_cli orvo_trainer_cli orvo_await_link_cli orvo_monitor_record \
    orvo_game_stats_cli
fi
host=$build_dir/examples/host/orvo_host
server=$build_dir/tools/standin_server/orvo_standin_server
viewer=$build_dir/tools/viewer/orvo_viewer
tools=$build_dir/tools/simserver
stats=$build_dir/tools/game_stats
plugins=$build_dir/examples/demo
needed=("$host" "$plugins/libdemo.demo.so" "$tools/orvo_trainer" "$tools/orvo_await_link")
if [ -n "$external" ]; then
  needed+=("$viewer")
elif [ "$real" = yes ]; then
  needed+=("$viewer" "$tools/orvo_simserver" "$stats/orvo_monitor_record" "$stats/orvo_game_stats")
else
  needed+=("$server")
fi
for file in "${needed[@]}"; do
  if [ ! -e "$file" ]; then
    echo "demo.sh: $file is missing; run without --no-build" >&2
    exit 1
  fi
done

pids=()
server_pid=
accepting_pid=
viewer_pid=
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

# await_ports FILE LOG WHAT: waits (at most 10 s) until a program has written
# the ports it listens on to FILE; otherwise shows its LOG and stops.
await_ports() {
  for _ in $(seq 200); do
    [ -s "$1" ] && return 0
    sleep 0.05
  done
  echo "demo.sh: $3 did not start:" >&2
  cat "$2" >&2
  exit 1
}

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

# wait_connected PID: waits (bounded) until agent PID has connected to the
# server and, with a server the demo started, until it has accepted the connection
# (a server takes connections in at its cycles, so a connection waiting to be
# accepted could still land in the same cycle as the next one).
wait_connected() {
  local accepted=()
  [ -z "$accepting_pid" ] || accepted=(--server-pid "$accepting_pid")
  "$tools/orvo_await_link" --pid "$1" --port "$tcp_port" "${accepted[@]}" \
    --timeout $((20 * slowdown))
}

rm -rf "$run"
mkdir -p "$run"
simserver_pid=
recorder_pid=
if [ "$real" = yes ]; then
  # A real server of the demo's own on free ports, in real time unless --sync.
  pace=(--realtime)
  [ ${#sync[@]} = 0 ] || pace=()
  "$tools/orvo_simserver" "${pace[@]}" --ready-file "$run/server-ready" \
    --log "$run/server-log.txt" > "$run/simserver.txt" 2>&1 &
  simserver_pid=$!
  pids+=("$simserver_pid")
  await_ports "$run/server-ready" "$run/simserver.txt" "the real simulation server"
  # Its process id, not the wrapper's: each robot waits until the server has
  # accepted the one before. Two connections taken in one cycle (one cycle
  # of a server busy loading a robot type's body can outlast the gap) hang
  # it for good: every robot then waits for perceptions that never come.
  read -r accepting_pid tcp_port monitor_port < "$run/server-ready"
  external=127.0.0.1:$tcp_port
  # The monitor's record of the whole game: the score, falls and fouls come
  # from it, never from what the agents believe.
  "$stats/orvo_monitor_record" --monitor "127.0.0.1:$monitor_port" --out "$run/game.txt" \
    > "$run/recorder.txt" 2>&1 &
  recorder_pid=$!
  pids+=("$recorder_pid")
  echo "== a real simulation server on port $tcp_port ($([ ${#sync[@]} = 0 ] && echo real time ||
    echo sync mode)); --standin plays the stand-in"
fi
if [ -n "$external" ]; then
  server_host=${external%:*}
  tcp_port=${external##*:}
  gap=0.1
  # In sync mode a robot that connects before the one before it has joined
  # stalls the server, and agents join at the pace the machine allows.
  [ ${#sync[@]} = 0 ] || gap=0.5
  echo "== $((agents * teams)) agents play $cycles cycles after the kick-off against the server" \
    "at $external"
  # A real server takes no drawings: the agents send theirs to the drawing
  # viewer on this machine instead, at a port it picked.
  "$viewer" --drawing-port 0 --http-port 0 --ports-file "$run/viewer-ports" \
    --monitor "$server_host:$monitor_port" --svg "$run/field.svg" > "$run/viewer.txt" 2>&1 &
  viewer_pid=$!
  pids+=("$viewer_pid")
  await_ports "$run/viewer-ports" "$run/viewer.txt" "the drawing viewer"
  read -r udp_port http_port < "$run/viewer-ports"
  drawing_host=127.0.0.1
  echo "== the agents' drawings live: http://127.0.0.1:$http_port/ (until the game ends)"
else
  # Free ports are chosen by the server, so that the demo never collides with
  # a real server on 3100. Agents bound their own game; the stand-in stops
  # when the last has gone (or after a bound far beyond the game).
  live_page=()
  [ "$live" = no ] || live_page=(--http-port 0)
  "$server" --port 0 --drawing-port 0 --monitor-port 0 --ports-file "$run/ports" "${live_page[@]}" \
    --agents $((agents * teams)) --cycles $((cycles + 6000)) "${sync[@]}" \
    --slowdown "$slowdown" --start-timeout $((20 * slowdown)) --svg "$run/field.svg" \
    --log "$run/server-log.txt" > "$run/server-summary.txt" 2> "$run/server-messages.txt" &
  server_pid=$!
  accepting_pid=$server_pid
  pids+=("$server_pid")
  await_ports "$run/ports" "$run/server-messages.txt" "the stand-in server"
  server_host=127.0.0.1
  read -r tcp_port udp_port monitor_port < "$run/ports"
  gap=$(awk -v f="$slowdown" 'BEGIN { printf "%.3f", 0.05 * f }')
  echo "== $((agents * teams)) agents play $cycles cycles after the kick-off against the" \
    "stand-in server on port $tcp_port"
  if [ "$live" = yes ]; then
    address=
    for _ in $(seq 100); do
      address=$(sed -n 's/^stand-in server: live page //p' "$run/server-messages.txt")
      [ -z "$address" ] || break
      sleep 0.02
    done
    echo "== the game live: ${address:-(no address: see $run/server-messages.txt)}" \
      "(until the game ends)"
  fi
fi

# Every agent runs in a directory of its own, <run>/<team>/<start order>,
# since each has its own settings (its robot type).
outputs=()
agent_pids=()
gate=
if [ "$real" = yes ] && [ ${#sync[@]} != 0 ]; then
  exec {gate}> "$run/sync.lock"
fi
team_names=(orvo rivals)
for ((t = 0; t < teams; t++)); do
  team=${team_names[$t]}
  for ((n = 1; n <= agents; n++)); do
    dir=$run/$team/$n
    mkdir -p "$dir"
    cp -r examples/demo/config "$dir/config"
    ln -s "$host" "$dir/demo"
    type=${type_list[$(((n - 1) % ${#type_list[@]}))]}
    sed -i -e "s/^host .*/host $server_host/" -e "s/^port .*/port $tcp_port/" \
      -e "s/^team .*/team $team/" -e "s/^type .*/type $type/" \
      -e "s/^cycles .*/cycles $cycles/" -e "s/^wait .*/wait $((10 * slowdown))/" \
      "$dir/config/server.cfg"
    sed -i "s/^drawing_port .*/drawing_port $udp_port/" "$dir/config/server.cfg"
    [ -z "$drawing_host" ] || echo "drawing_host $drawing_host" >> "$dir/config/server.cfg"
    team_play=$play
    [ "$t" = 0 ] || [ "$still_rivals" = no ] || team_play=0
    echo "play $team_play" >> "$dir/config/server.cfg"
    [ -z "$gate" ] || echo "sync_lock $run/sync.lock" >> "$dir/config/server.cfg"
    if [ -n "$gate" ]; then
      # The others hold their "(syn)" while this one connects (the agents'
      # sync gate): a robot that connects mid-cycle can stall the server.
      flock -x "$gate"
      sleep 0.03
    fi
    (cd "$dir" && LD_LIBRARY_PATH=$plugins${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} \
      exec ./demo > output.txt 2>&1) &
    agent_pids+=($!)
    pids+=($!)
    outputs+=("$dir/output.txt")
    if ! wait_connected $!; then
      echo "demo.sh: $team/$n did not connect to the server" >&2
    fi
    if [ -n "$gate" ]; then
      sleep 0.03
      flock -u "$gate"
    fi
    sleep "$gap"
  done
done

# The team spreads out over 100 cycles before the kick-off.
sleep "$(awk -v f="$slowdown" 'BEGIN { printf "%.2f", 100 * 0.02 * f }')"
if ! "$tools/orvo_trainer" --host "$server_host" --port "$monitor_port" "(kickOff Left)"; then
  echo "demo.sh: no kick-off: nothing answers on $server_host:$monitor_port" >&2
fi

kicked_off_at=$(date +%s.%N)
failed=0
gone=0
budget=$(((cycles / 25 + 30) * slowdown))
# Twenty-two robots on a real server may run at a tenth of real time on a
# small machine: the server's clock, not the wall's, bounds the game.
[ -z "$external" ] || budget=$((cycles / 5 + 60))
for index in "${!agent_pids[@]}"; do
  status=0
  wait_for "${agent_pids[$index]}" "$budget" || status=$?
  if [ $status -ne 0 ]; then
    failed=1
    # An agent whose server went away says so in one line; others show their end.
    if grep -q "the server went away" "${outputs[$index]}"; then
      gone=$((gone + 1))
    else
      echo "demo.sh: agent process ${outputs[$index]%/output.txt} ended with status $status:" >&2
      tail -n 20 "${outputs[$index]}" >&2
    fi
  fi
done
ended_at=$(date +%s.%N)
if [ -n "$recorder_pid" ]; then
  kill -INT "$recorder_pid" 2> /dev/null || true
  wait_for "$recorder_pid" 10 || echo "demo.sh: the monitor recorder did not stop cleanly" >&2
fi
if [ -n "$simserver_pid" ]; then
  if ! kill -0 "$simserver_pid" 2> /dev/null; then
    echo "demo.sh: the real simulation server ended during the game:" >&2
    tail -n 5 "$run/simserver.txt" >&2
    failed=1
  fi
  if grep -q "connecting/disconnecting in same frame" "$run/server-log.txt" 2> /dev/null; then
    echo "demo.sh: the real simulation server hung: robots connected in one of its cycles" \
      "(its log: $run/server-log.txt)" >&2
    failed=1
  fi
  kill -TERM "$simserver_pid" 2> /dev/null || true
  wait_for "$simserver_pid" 10 || true
fi
if [ -n "$server_pid" ]; then
  server_status=0
  wait_for "$server_pid" 20 || server_status=$?
  if [ $server_status -ne 0 ]; then
    echo "demo.sh: the stand-in server ended with status $server_status:" >&2
    cat "$run/server-messages.txt" >&2
    failed=1
  fi
fi
if [ -n "$viewer_pid" ]; then
  kill -TERM "$viewer_pid"
  wait_for "$viewer_pid" 5 || echo "demo.sh: the drawing viewer did not stop cleanly" >&2
fi
pids=()

echo
echo "== every agent: start order, robot type, number, server cycles, perceptions, joints"
for output in "${outputs[@]}"; do
  agent=${output#"$run"/}
  agent=${agent%/output.txt}
  type=$(sed -n 's/^type //p' "${output%output.txt}config/server.cfg")
  line=$(awk 'NR <= 2 { text = text $0 "; " } NR == 3 { print text $0; exit }' "$output")
  echo "$agent, type $type: ${line:-(no report)}"
  gone_line=$(grep -m 1 "the server went away" "$output" || true)
  [ -z "$gone_line" ] || echo "$agent: ${gone_line#*: }"
  talk_line=$(grep -m 1 "^talk: " "$output" || true)
  [ -z "$talk_line" ] || echo "$agent: $talk_line"
done
# One agent's story: the one the server made number 7, or the first.
shown=$(grep -l "^agent 7 of team" "${outputs[@]}" 2> /dev/null | head -n 1 || true)
shown=${shown:-${outputs[0]}}
echo
echo "== one agent's output ($shown): its action log and current action"
cat "$shown"
echo
echo "== processing time per cycle of every agent (receive to send)"
grep -h "^processing time" "${outputs[@]}" || true
if [ -z "$external" ]; then
  echo
  echo "== the stand-in server's summary"
  cat "$run/server-summary.txt"
fi
if [ -n "$viewer_pid" ]; then
  echo
  echo "== the drawing viewer"
  grep -v "^orvo_viewer:" "$run/viewer.txt" || true
fi
[ ! -e "$run/field.svg" ] || { echo; echo "== picture of the field: $run/field.svg"; }
if [ -s "$run/game.txt" ]; then
  echo
  echo "== the game by the server's monitor (score, falls, fouls; plot $run/game.svg)"
  "$stats/orvo_game_stats" "$run/game.txt" --table "$run/game.md" --plot "$run/game.svg" \
    > /dev/null && cat "$run/game.md" || echo "demo.sh: no statistics of the game" >&2
fi
if [ $failed -eq 0 ]; then
  echo
  awk -v c="$cycles" -v a="$kicked_off_at" -v b="$ended_at" 'BEGIN {
    printf "== the game: %d cycles (%.1f s of play) in %.1f s from the kick-off (%.2f times real time)\n",
           c, c * 0.02, b - a, c * 0.02 / (b - a) }'
fi
if [ $gone -ne 0 ]; then
  echo "demo.sh: the server went away before the game's end: $gone of ${#outputs[@]} agents" \
    "said so; the game was not played out" >&2
fi
exit $failed
