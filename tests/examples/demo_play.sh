#!/usr/bin/env bash
# Two demo teams of eleven play one minute of game time on a real server in
# sync mode: every agent plays to the end, the server's record of the game
# yields its statistics. Skipped (77) without a server, except in CI.
#   demo_play.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source_dir=$1
build_dir=$2
if ! command -v rcssserver3d > /dev/null; then
  [ "${CI:-}" != true ] || { echo "demo_play.sh: no real server in CI" >&2; exit 1; }
  echo "demo_play.sh: no real server installed: skipped"
  exit 77
fi
work=$(mktemp -d "${TMPDIR:-/tmp}/orvo-demo-play.XXXXXX")
trap 'rm -rf "$work"' EXIT
run=$work/run
start=$SECONDS
"$source_dir/scripts/demo.sh" --no-build --build-dir "$build_dir" --run-dir "$run" \
  --teams 2 --sync --play --cycles 3000 > "$work/demo.txt" 2>&1 || {
  status=$?
  tail -n 60 "$work/demo.txt"
  exit $status
}
grep -q "^# orvo (left) [0-9]* : [0-9]* rivals (right)" "$run/game.md" || {
  echo "demo_play.sh: no score in the game's statistics" >&2
  exit 1
}
grep -cE "^(orvo|rivals)/[0-9]+, type [0-4]: agent " "$work/demo.txt" | grep -qx 22 || {
  echo "demo_play.sh: not every agent reported" >&2
  exit 1
}
sed -n '1p;/^| play mode/,/^$/p' "$run/game.md"
grep "^== the game:" "$work/demo.txt"
echo "demo_play.sh: $((SECONDS - start)) s"
