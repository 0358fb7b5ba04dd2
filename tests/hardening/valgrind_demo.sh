#!/usr/bin/env bash
# One demo agent (the host program assembling the demo plug-ins) plays a few
# cycles against the stand-in server under valgrind's memcheck. Fails on any
# memcheck error and on any definitely lost block; prints memcheck's summary.
#
#   valgrind_demo.sh HOST SERVER PLUGIN_DIR CONFIG_DIR WORK_DIR SUPPRESSIONS
set -euo pipefail
host=$1 server=$2 plugins=$3 config=$4 work=$5 suppressions=$6
cycles=100

rm -rf "$work"
mkdir -p "$work"
cp -r "$config" "$work/config"
ln -s "$host" "$work/demo"

server_pid=
cleanup() {
  if [ -n "$server_pid" ]; then
    kill "$server_pid" 2> /dev/null || true
    wait "$server_pid" 2> /dev/null || true
  fi
}
trap cleanup EXIT

# The server steps as soon as the agent has answered, and waits long for an
# agent that valgrind slows down many times over; its clock runs from start-up,
# slowly until the agent is there.
"$server" --port 0 --drawing-port 0 --monitor-port 0 --ports-file "$work/ports" --agents 1 \
  --cycles "$cycles" --slowdown 10 --sync --cycle-timeout 30 --start-timeout 60 \
  --svg "$work/field.svg" \
  > "$work/server-summary.txt" 2> "$work/server-messages.txt" &
server_pid=$!
for _ in $(seq 200); do
  [ -s "$work/ports" ] && break
  sleep 0.05
done
if [ ! -s "$work/ports" ]; then
  echo "the stand-in server did not start:" >&2
  cat "$work/server-messages.txt" >&2
  exit 1
fi
read -r tcp_port udp_port _ < "$work/ports"
sed -i -e "s/^port .*/port $tcp_port/" -e "s/^drawing_port .*/drawing_port $udp_port/" \
  -e "s/^wait .*/wait 60/" -e "s/^cycles .*/cycles 0/" "$work/config/server.cfg"

status=0
(cd "$work" && LD_LIBRARY_PATH=$plugins${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} \
  exec valgrind --tool=memcheck --error-exitcode=99 --leak-check=full \
    --errors-for-leak-kinds=definite --show-leak-kinds=definite \
    --suppressions="$suppressions" --log-file="$work/memcheck.txt" \
    ./demo > "$work/agent.txt" 2>&1) || status=$?

grep -E "ERROR SUMMARY|definitely lost|in use at exit" "$work/memcheck.txt" || true
if [ $status -ne 0 ]; then
  echo "the agent under memcheck ended with status $status (99: memcheck found errors)" >&2
  cat "$work/memcheck.txt" >&2
  tail -n 20 "$work/agent.txt" >&2
  exit 1
fi
server_status=0
wait "$server_pid" || server_status=$?
server_pid=
if [ $server_status -ne 0 ]; then
  echo "the stand-in server ended with status $server_status" >&2
  cat "$work/server-messages.txt" >&2
  exit 1
fi
