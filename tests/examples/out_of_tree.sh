#!/usr/bin/env bash
# A team's view of the installed package: install orvo (or take an installed
# one), build the demo plug-ins on their own with find_package(orvo) +
# orvo_add_plugin, and play a short game with the installed host program and
# stand-in server.
#   out_of_tree.sh <orvo build dir | installed prefix> <demo source dir> <work dir>
set -euo pipefail
build=$1
demo=$2
work=$3
rm -rf "$work"
mkdir -p "$work"
if [ -d "$build/lib/cmake/orvo" ]; then
  prefix=$build
else
  prefix=$work/prefix
  cmake --install "$build" --prefix "$prefix" > /dev/null
fi
cmake -S "$demo" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build "$work/build" > /dev/null
test -f "$work/build/libdemo.demo.so"

run=$work/run
mkdir -p "$run"
cp -r "$demo/config" "$run/config"
ln -s "$prefix/bin/orvo_host" "$run/demo"

pids=()
trap 'for p in "${pids[@]}"; do kill "$p" 2> /dev/null || true; done; wait 2> /dev/null || true' EXIT
# The server's clock runs from start-up, slowly until both agents are there.
timeout 60 "$prefix/bin/orvo_standin_server" --port 0 --drawing-port 0 --monitor-port 0 \
  --ports-file "$run/ports" --agents 2 --cycles 100 --slowdown 2 --sync --start-timeout 20 \
  --svg "$run/field.svg" > "$run/summary.txt" &
server=$!
pids+=("$server")
for _ in $(seq 200); do
  [ -s "$run/ports" ] && break
  sleep 0.05
done
read -r tcp udp _ < "$run/ports"
sed -i -e "s/^port .*/port $tcp/" -e "s/^drawing_port .*/drawing_port $udp/" "$run/config/server.cfg"
agents=()
for n in 1 2; do
  (cd "$run" && LD_LIBRARY_PATH=$work/build timeout 60 ./demo > "agent$n.txt" 2>&1) &
  agents+=($!)
  pids+=($!)
  sleep 0.2 # a server takes no two robots connecting in the same cycle
done
wait "$server"
for pid in "${agents[@]}"; do
  wait "$pid"
done
pids=()
grep -q "^agent [12] of team orvo" "$run/agent1.txt"
test "$(grep -c 'class="cell"' "$run/field.svg")" -eq 2
echo "out-of-tree demo plug-ins played against the installed stand-in server"
