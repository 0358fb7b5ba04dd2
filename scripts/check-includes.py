#!/usr/bin/env python3
"""Compares every include between the library's modules with the module graph
the build declares (orvo_modules.json, written at configure time).

A module's headers may include its own headers and those of the modules it
declares public (DEPENDS), and what those pass on publicly in turn; its
sources may in addition include the modules it declares private. Programs
(examples/, tools/), tests, benchmarks and fuzz targets use the public
headers only, and tools/ take nothing from examples/.

usage: check-includes.py <orvo_modules.json> <source root>
"""
import json
import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
CXX = {".h", ".hpp", ".cpp", ".cc"}
PROGRAM_DIRS = ["examples", "tools", "tests", "bench", "fuzz"]


def module_of(path, dirs):
    """The module owning a path below orvo/ (longest directory match)."""
    best = None
    for directory, module in dirs.items():
        if path == directory or path.startswith(directory + "/"):
            if best is None or len(directory) > len(best[0]):
                best = (directory, module)
    return best[1] if best else None


def closure(start, graph):
    """The modules reachable from `start` over public edges, `start` included."""
    seen, todo = set(), list(start)
    while todo:
        module = todo.pop()
        if module not in seen:
            seen.add(module)
            todo.extend(graph[module]["public"])
    return seen


def includes(path):
    text = path.read_text(encoding="utf-8", errors="replace")
    for match in INCLUDE.finditer(text):
        line = text.count("\n", 0, match.start()) + 1
        yield line, match.group(1), match.group(2)


def cxx_files(directory):
    return sorted(p for p in directory.rglob("*") if p.suffix in CXX and p.is_file())


def check_library(root, graph, dirs):
    errors = []
    for path in cxx_files(root / "orvo"):
        rel = path.relative_to(root / "orvo").as_posix()
        if "/" not in rel:
            continue  # the umbrella header gathers every module on purpose
        owner = module_of(rel, dirs)
        if owner is None:
            errors.append(f"orvo/{rel}: belongs to no module of the build")
            continue
        is_source = "/src/" in f"/{rel}"
        direct = list(graph[owner]["public"])
        if is_source:
            direct += graph[owner]["private"]
        allowed = closure(direct, graph) | {owner}
        for line, _, name in includes(path):
            if not name.startswith("orvo/"):
                continue
            target = module_of(name[len("orvo/"):], dirs)
            if target is None:
                errors.append(f"orvo/{rel}:{line}: includes <{name}>, which is in no module")
            elif target not in allowed:
                kind = "source" if is_source else "header"
                declared = ", ".join(sorted(allowed - {owner})) or "nothing"
                errors.append(
                    f"orvo/{rel}:{line}: module '{owner}' includes <{name}> of module "
                    f"'{target}', which its {kind}s may not use (declared: {declared})")
    return errors


def check_programs(root):
    errors = []
    example_names = {p.name for p in cxx_files(root / "examples")}
    for top in PROGRAM_DIRS:
        for path in cxx_files(root / top):
            rel = path.relative_to(root).as_posix()
            for line, quote, name in includes(path):
                if name.startswith("orvo/") and "/src/" in name:
                    errors.append(f"{rel}:{line}: includes the library's inner header <{name}>")
                if top != "tools" or quote != '"':
                    continue
                if "examples/" in name or (
                        name in example_names and not (path.parent / name).exists()
                        and not any((root / "tools").rglob(Path(name).name))):
                    errors.append(f"{rel}:{line}: tools include \"{name}\" from examples/")
    for cmake in (root / "tools").rglob("CMakeLists.txt"):
        for number, text in enumerate(cmake.read_text().splitlines(), 1):
            if "examples/" in text:
                rel = cmake.relative_to(root).as_posix()
                errors.append(f"{rel}:{number}: tools reach into examples/")
    return errors


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    graph = json.loads(Path(sys.argv[1]).read_text())
    root = Path(sys.argv[2])
    dirs = {d: module for module, entry in graph.items() for d in entry["dirs"]}
    errors = check_library(root, graph, dirs) + check_programs(root)
    for error in errors:
        print(error)
    if errors:
        print(f"{len(errors)} include(s) break the declared module graph")
        return 1
    print(f"{len(graph)} modules, every include follows the declared graph")
    return 0


if __name__ == "__main__":
    sys.exit(main())
