#!/usr/bin/env python3
"""Fails when a C++ file of the tree passes 400 lines or one of its functions
passes 60 lines (from the line of its opening brace to that of its closing
one). Functions are found by matching braces in the text stripped of
comments, strings and character literals: a brace that opens at namespace or
class level after a closing parenthesis opens a function body. Data (test
recordings, fuzz corpora) and build directories are not looked at.

usage: check-size.py <source root> [--max-file N] [--max-function N]
"""
import argparse
import re
import sys
from pathlib import Path

DIRS = ["orvo", "examples", "tools", "tests", "bench", "fuzz"]
SUFFIXES = {".h", ".hpp", ".cpp", ".cc"}
SKIPPED_PARTS = {"data", "corpus", "build"}
SCOPE = re.compile(r"\b(namespace|class|struct|union|enum)\b|extern\s*$")
CONTROL = re.compile(r"^\s*(if|for|while|switch|catch|do|else|try)\b")
RAW_STRING = re.compile(r'R"([^ ()\\]{0,16})\(')


def strip(text):
    """`text` with comments, string and character literals blanked out and
    preprocessor lines emptied; line breaks stay where they were."""
    out, i, n = [], 0, len(text)
    while i < n:
        c = text[i]
        if text.startswith("//", i):
            end = text.find("\n", i)
            i = n if end < 0 else end
        elif text.startswith("/*", i):
            end = text.find("*/", i + 2)
            end = n if end < 0 else end + 2
            out.append("\n" * text.count("\n", i, end))
            i = end
        elif c == "R" and RAW_STRING.match(text, i) and (i == 0 or not text[i - 1].isalnum()):
            delimiter = RAW_STRING.match(text, i).group(1)
            end = text.find(")" + delimiter + '"', i)
            end = n if end < 0 else end + len(delimiter) + 2
            out.append('""' + "\n" * text.count("\n", i, end))
            i = end
        elif c in "\"'":
            j = i + 1
            while j < n and text[j] != c and text[j] != "\n":
                j += 2 if text[j] == "\\" else 1
            out.append(c + c)
            i = j + 1
        elif c == "#" and (i == 0 or text[text.rfind("\n", 0, i) + 1:i].strip() == ""):
            # A directive runs to the end of the line, continued by backslashes.
            j = i
            while True:
                end = text.find("\n", j)
                if end < 0 or text[end - 1] != "\\":
                    break
                j = end + 1
            i = n if end < 0 else end
        else:
            out.append(c)
            i += 1
    return "".join(out)


def opens_function(header):
    """Whether the text between the previous ; { or } and a brace is the
    head of a function body."""
    head = " ".join(header.split())
    if not head or CONTROL.match(head) or ")" not in head:
        return False
    if SCOPE.search(head.split("(")[0]):
        return False
    depth, bare = 0, re.sub(r"\boperator\s*\S+?\s*\(", "operator(", head)
    for ch in bare:
        depth += ch == "("
        depth -= ch == ")"
        if ch == "=" and depth == 0:
            return False  # an initialiser, such as a table or a lambda
    return True


def functions(text):
    """(first line, last line) of every function body of `text`."""
    found, stack, header_start = [], [], 0
    line = 1
    for i, ch in enumerate(text):
        if ch == "\n":
            line += 1
        elif ch == "{":
            at_scope = all(kind == "scope" for kind, _ in stack)
            header = text[header_start:i]
            if at_scope and opens_function(header):
                stack.append(("function", line))
            elif at_scope and (SCOPE.search(header) or not header.strip()):
                stack.append(("scope", line))
            else:
                stack.append(("block", line))
            header_start = i + 1
        elif ch == "}":
            if stack:
                kind, start = stack.pop()
                if kind == "function":
                    found.append((start, line))
            header_start = i + 1
        elif ch == ";":
            header_start = i + 1
    return found


def name_of(lines, start):
    """The function's name as its head shows it, for the report."""
    head = " ".join(lines[max(0, start - 4):start])
    test = re.findall(r"\b(TEST(?:_F|_P)?\s*\([^()]*\))", head)
    if test:
        return " ".join(test[-1].split())
    names = re.findall(r"([~\w:]+)\s*\([^()]*(?:\([^()]*\)[^()]*)*\)[^()]*\{?\s*$", head)
    return names[-1] if names else "?"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("root", type=Path)
    parser.add_argument("--max-file", type=int, default=400)
    parser.add_argument("--max-function", type=int, default=60)
    args = parser.parse_args()
    problems = []
    for top in DIRS:
        for path in sorted((args.root / top).rglob("*")):
            if path.suffix not in SUFFIXES or SKIPPED_PARTS & set(path.parts) or not path.is_file():
                continue
            rel = path.relative_to(args.root).as_posix()
            text = path.read_text(encoding="utf-8", errors="replace")
            lines = text.splitlines()
            if len(lines) > args.max_file:
                problems.append(f"{rel}: {len(lines)} lines (at most {args.max_file})")
            for start, end in functions(strip(text)):
                length = end - start + 1
                if length > args.max_function:
                    problems.append(f"{rel}:{start}: {name_of(lines, start)} is {length} lines "
                                    f"(at most {args.max_function})")
    for problem in problems:
        print(problem)
    if problems:
        print(f"{len(problems)} file(s) or function(s) too long")
        return 1
    print("every file and function within its size")
    return 0


if __name__ == "__main__":
    sys.exit(main())
