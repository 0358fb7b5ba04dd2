#!/usr/bin/env bash
# Measures the kick of every robot type on the real server (sync mode, a new
# server per run) with orvo_drill kick: the ball at the centre spot, the
# robot 1 m behind it; type 0 straight and 30 degrees to either side, every
# other type straight. Two trials at a time at most (the machine is shared).
# Writes every run's JSON and a table (table.md) into build/bench-kick.
#   scripts/bench-kick.sh [runs]     (default 20 runs per trial)
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-20}
drill=build/tools/drill/orvo_drill
out=build/bench-kick
[[ -x $drill ]] || { echo "build orvo_drill first: cmake --build build --target orvo_drill" >&2; exit 1; }
mkdir -p "$out"
rm -f "$out"/*.jsonl
trial() { # name type direction
  echo "$1" >&2
  nice -n 10 "$drill" kick --type "$2" --direction "$3" --runs "$runs" --seconds 15 \
    2> "$out/$1.log" > "$out/$1.jsonl" || echo "$1 failed: see $out/$1.log" >&2
}
trial type0-straight 0 0 & trial type0-left30 0 30; wait
trial type0-right30 0 -30 & trial type1-straight 1 0; wait
trial type2-straight 2 0 & trial type3-straight 3 0; wait
trial type4-straight 4 0
python3 - "$out" "$runs" <<'PY'
import glob, json, os, statistics, sys
out, runs = sys.argv[1], sys.argv[2]
rows = []
for name in sorted(glob.glob(os.path.join(out, "*.jsonl"))):
    results = [json.loads(line) for line in open(name) if line.startswith("{")]
    if not results:
        continue
    distances = [r["distance_m"] for r in results]
    kicked = [r.get("kick_distance_m", 0) for r in results]
    errors = [r["direction_error_deg"] for r in results]
    rows.append("| %s | %d | %.2f | %.2f | %.2f | %.2f | %.1f | %.1f | %d%% | %d | %.1f |" % (
        os.path.basename(name)[:-6], len(results), statistics.mean(kicked),
        statistics.mean(distances),
        statistics.median(distances), max(distances), statistics.mean(errors),
        statistics.median(errors), round(100 * sum(r["upright"] for r in results) / len(results)),
        sum(r["falls"] for r in results), statistics.median(r["seconds"] for r in results)))
table = ["%s runs per trial (sync mode, a new server per run)" % runs, "",
         "| trial | runs | kick m | mean m | median m | best m | mean error deg "
         "| median error deg | upright after | falls | seconds (median) |",
         "|---|---|---|---|---|---|---|---|---|---|---|"] + rows
open(os.path.join(out, "table.md"), "w").write("\n".join(table) + "\n")
print("\n".join(table))
PY
