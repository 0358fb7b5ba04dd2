#!/usr/bin/env bash
# Measures the walk of every robot type on the real server (sync mode, a new
# server per run) with orvo_drill: forward, backward, sideways and turning on
# the spot at the fastest speeds the parameters allow, a random velocity
# every 2 s, and a walk to a spot 5 m ahead. Writes every run's JSON, a table
# (table.md) and the torso paths (paths.svg) into build/bench-walk.
#   [BENCH_JOBS=2] scripts/bench-walk.sh [runs] [seconds]   (default 10 runs of 10 s, one drill at a time)
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-10}
seconds=${2:-10}
drill=build/tools/drill/orvo_drill
out=build/bench-walk
[[ -x $drill ]] || { echo "build orvo_drill first: cmake --build build --target orvo_drill" >&2; exit 1; }
mkdir -p "$out"
rm -f "$out"/*.jsonl
# Velocities beyond the limits: the walk clamps them to its parameters' maxima.
declare -A motions=([forward]="--velocity 9 0 0" [backward]="--velocity -9 0 0"
  [sideways]="--velocity 0 9 0" [turning]="--velocity 0 0 900" [schedule]="--schedule")
# One drill per line: name, then its arguments; BENCH_JOBS of them at a time
# (each starts its own servers on free ports).
{
  echo "type0-to --type 0 --to 5 0 --seconds 30"
  for type in 0 1 2 3 4; do
    for motion in forward backward sideways turning schedule; do
      echo "type$type-$motion --type $type ${motions[$motion]} --seconds $seconds"
    done
  done
} | xargs -P "${BENCH_JOBS:-1}" -L 1 bash -c \
  'echo "$0" >&2; "'"$drill"'" walk "$@" --runs '"$runs"' --paths 2> "'"$out"'/$0.log" > "'"$out"'/$0.jsonl"' ||
  echo "some drills failed: see their logs in $out" >&2
python3 - "$out" "$runs" "$seconds" <<'PY'
import glob, json, os, statistics, sys
out, runs, seconds = sys.argv[1], sys.argv[2], sys.argv[3]
rows, paths = [], {}
for name in sorted(glob.glob(os.path.join(out, "*.jsonl"))):
    key = os.path.basename(name)[:-6]
    results = [json.loads(line) for line in open(name) if line.startswith("{")]
    if not results:
        continue
    mean = lambda field: statistics.mean(r[field] for r in results)
    miss = "%.2f" % max(r["miss_m"] for r in results) if "miss_m" in results[0] else ""
    rows.append("| %s | %d | %.3f | %.3f | %.1f | %d | %s | %.0f |" % (
        key, len(results), mean("forward_mps"), mean("sideways_mps"), mean("turn_dps"),
        sum(r["falls"] for r in results), miss, statistics.median(r["agent_us_median"] for r in results)))
    paths[key] = [r.get("path", []) for r in results]
table = ["%s runs of %s s each (sync mode, a new server per run)" % (runs, seconds), "",
         "| trial | runs | forward m/s | sideways m/s | turn deg/s | falls | worst miss m | agent us (median) |",
         "|---|---|---|---|---|---|---|---|"] + rows
open(os.path.join(out, "table.md"), "w").write("\n".join(table) + "\n")
print("\n".join(table))
# One panel per robot type, the field seen from above, x to the right.
colours = {"forward": "#1b9e77", "backward": "#d95f02", "sideways": "#7570b3",
           "turning": "#e7298a", "schedule": "#66a61e", "to": "#e6ab02"}
scale, width, height = 40, 300, 260
svg = ['<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" font-family="sans-serif" font-size="12">'
       % (5 * width, height + 40)]
for type in range(5):
    x0, y0 = type * width + width / 2, height / 2
    svg.append('<rect x="%d" y="0" width="%d" height="%d" fill="#f4f4f4" stroke="#999"/>'
               % (type * width, width - 4, height))
    svg.append('<text x="%d" y="%d">type %d</text>' % (type * width + 6, 16, type))
    for key, runs_paths in paths.items():
        if not key.startswith("type%d-" % type):
            continue
        colour = colours.get(key.split("-", 1)[1], "#000")
        for path in runs_paths:
            if len(path) < 2:
                continue
            sx, sy = path[0]
            points = " ".join("%.1f,%.1f" % (x0 + (x - sx) * scale, y0 - (y - sy) * scale) for x, y in path)
            svg.append('<polyline points="%s" fill="none" stroke="%s" stroke-width="1.2"/>' % (points, colour))
for i, (name, colour) in enumerate(colours.items()):
    svg.append('<text x="%d" y="%d" fill="%s">%s</text>' % (10 + i * 110, height + 28, colour, name))
svg.append('<text x="%d" y="%d">1 m = %d px</text>' % (5 * width - 120, height + 28, scale))
svg.append("</svg>")
open(os.path.join(out, "paths.svg"), "w").write("\n".join(svg) + "\n")
PY
echo "table: $out/table.md, paths: $out/paths.svg" >&2
