#!/usr/bin/env bash
# Draws the library's modules and the dependencies each declares, from the
# build's own target graph (cmake --graphviz), into docs/modules.svg.
# usage: scripts/module-graph.sh [output.svg] (or .png, .pdf: any format dot knows)
set -euo pipefail
cd "$(dirname "$0")/.."
out=${1:-docs/modules.svg}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Only the library: no programs, tests or benchmarks in the picture.
cat >"$work/CMakeGraphVizOptions.cmake" <<'OPTIONS'
set(GRAPHVIZ_GRAPH_NAME "orvo modules")
set(GRAPHVIZ_EXECUTABLES FALSE)
set(GRAPHVIZ_MODULE_LIBS FALSE)
set(GRAPHVIZ_EXTERNAL_LIBS FALSE)
set(GRAPHVIZ_INTERFACE_LIBS FALSE)
set(GRAPHVIZ_SHARED_LIBS FALSE)
set(GRAPHVIZ_GENERATE_PER_TARGET FALSE)
set(GRAPHVIZ_GENERATE_DEPENDERS FALSE)
OPTIONS
cmake -S . -B "$work" -G Ninja -DORVO_BUILD_TESTS=OFF -DORVO_BUILD_BENCH=OFF \
  -DORVO_BUILD_EXAMPLES=OFF -DORVO_BUILD_TOOLS=OFF --graphviz="$work/modules.dot" >/dev/null

# Modules by their short names, bottom-up; cmake draws private dependencies
# dotted. Its legend of target kinds says nothing here: every node is a module.
python3 - "$work/modules.dot" >"$work/modules-named.dot" <<'TIDY'
import re, sys
dot = open(sys.argv[1]).read()
dot = re.sub(r"subgraph clusterLegend \{.*?\n\}\n", "", dot, flags=re.S)
dot = re.sub(r'label = "orvo_(\w+)\\n\(orvo::\w+\)", shape = hexagon',
             r'label = "\1", shape = box, style = rounded', dot)
dot = dot.replace("node [\n", 'label = "solid: public (DEPENDS), dotted: private";\n'
                  'node [\n  fontname = "sans-serif",\n', 1)
print(dot)
TIDY
dot -T"${out##*.}" "$work/modules-named.dot" -o "$out"
echo "wrote $out"
