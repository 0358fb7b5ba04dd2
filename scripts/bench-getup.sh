#!/usr/bin/env bash
# Measures falls and get-ups of every robot type on the real server (sync
# mode, a new server per run) with orvo_drill: getting up from the front and
# from the back, after dropping from a stand and after a fall while walking
# (3 s at 0.3 m/s first), the fall detector's delay against the monitor in
# each of those runs, and its false alarms while walking (random velocities)
# and standing. Writes every run's JSON and a table (table.md) into build/bench-getup.
#   scripts/bench-getup.sh [runs] [walk seconds] [types]
#   (default 20 runs; 60 s walks; types "0 1 2 3 4")
# With TABLE_ONLY=1 it measures nothing and tables the runs already written
# (by runs of the same commands side by side, for instance).
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-20}
seconds=${2:-60}
types=${3:-0 1 2 3 4}
drill=build/tools/drill/orvo_drill
out=build/bench-getup
[[ -x $drill ]] || { echo "build orvo_drill first: cmake --build build --target orvo_drill" >&2; exit 1; }
mkdir -p "$out"
[[ ${TABLE_ONLY:-0} == 1 ]] || rm -f "$out"/*.jsonl
for type in $types; do
  [[ ${TABLE_ONLY:-0} == 1 ]] && break
  for from in front back; do
    echo "type $type from the $from" >&2
    "$drill" getup --type "$type" --from "$from" --runs "$runs" --seconds 4 \
      2> "$out/type$type-$from.log" > "$out/type$type-$from.jsonl"
    "$drill" getup --type "$type" --from "$from" --runs "$runs" --seconds 4 --walk 3 \
      2> "$out/type$type-$from-walked.log" > "$out/type$type-$from-walked.jsonl"
  done
  echo "type $type walking and standing" >&2
  "$drill" walk --type "$type" --schedule --seconds "$seconds" --runs 2 --seed $((type + 1)) \
    2> "$out/type$type-walk.log" > "$out/type$type-walk.jsonl"
  "$drill" walk --type "$type" --velocity 0 0 0 --seconds "$seconds" \
    2> "$out/type$type-stand.log" > "$out/type$type-stand.jsonl"
done
python3 - "$out" "$runs" $types <<'PY'
import glob, json, os, sys
out, runs, types = sys.argv[1], sys.argv[2], [int(t) for t in sys.argv[3:]]
load = lambda name: [json.loads(l) for l in open(os.path.join(out, name)) if l.startswith("{")]
rows = []
for type in types:
    row = ["%d" % type]
    delays = []
    collisions = 0
    for side in ("front", "back"):
        results = load("type%d-%s.jsonl" % (type, side))
        walked = load("type%d-%s-walked.jsonl" % (type, side))
        up = [r["seconds"] for r in results + walked if r["success"]]
        row += ["%d/%d" % (sum(r["success"] for r in results), len(results)),
                "%d/%d" % (sum(r["success"] for r in walked), len(walked)),
                "%.2f / %.2f" % (sum(up) / len(up), max(up)) if up else "-"]
        both = results + walked
        delays += [r["detection_delay"] for r in both if r.get("detection_delay") is not None]
        row.append("%d/%d" % (sum(1 for r in both if r["fell_at"] is not None
                                  and r.get("detection_delay", 1) <= 0.06), len(both)))
        collisions += sum(r.get("self_collisions", 0) for r in both)
    row.append("%.2f" % max(delays) if delays else "-")
    walks = load("type%d-walk.jsonl" % type) + load("type%d-stand.jsonl" % type)
    row += ["%.0f" % sum(r["end_time"] - r["start_time"] for r in walks),
            "%d" % sum(r["falls"] for r in walks), "%d" % sum(r["false_alarms"] for r in walks),
            "%d" % collisions]
    rows.append("| " + " | ".join(row) + " |")
table = ["%s runs per get-up figure (sync mode, a new server per run)" % runs, "",
         "| type | front: up | front, walked: up | front: mean / max s | front: seen in 0.06 s"
         " | back: up | back, walked: up | back: mean / max s | back: seen in 0.06 s | worst delay s"
         " | walked and stood s | falls by the walk | false alarms | self-collisions |",
         "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|"] + rows
open(os.path.join(out, "table.md"), "w").write("\n".join(table) + "\n")
print("\n".join(table))
PY
