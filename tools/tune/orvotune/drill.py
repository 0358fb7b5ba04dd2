"""A scoring drill: the command line that runs one trial and the score of its output.

A drill prints one JSON object per run on stdout. A trial's score is the mean over
its runs of a weighted sum of the runs' figures, so the same machinery scores walk
speed with a fall penalty, a schedule of velocity changes, kick distance and
direction, or get-up time: only the drill entry differs.
"""
import json
import os
import math


class Drill:
    def __init__(self, name, entry, drill_program=None):
        self.name = name
        self.skill = entry.get("skill", name)
        self.command = list(entry["command"])
        self.terms = entry["score"]
        self.timeout = float(entry.get("timeout", 120))
        self.failed_score = float(entry["failed_score"])
        self.program = drill_program or entry.get("program", "orvo_drill")
        # Trials run in folders of their own: a path relative to where the
        # search was started would name nothing there.
        if os.sep in self.program:
            self.program = os.path.abspath(self.program)

    def command_line(self, **fields):
        return [arg.format(drill=self.program, **fields) for arg in self.command]

    def score(self, runs):
        """Mean score of a trial's runs; None when a run lacks a scored figure."""
        try:
            return sum(self.run_score(run) for run in runs) / len(runs)
        except (KeyError, IndexError, TypeError, ValueError, ZeroDivisionError):
            return None

    def run_score(self, run):
        total = 0.0
        for term in self.terms:
            value = float(figure(run, term["key"]))
            if "target" in term:
                value = abs(value - term["target"])
            total += term["weight"] * value
        if not math.isfinite(total):
            raise ValueError("score is not finite")
        return total


def figure(run, key):
    """A run's figure by dotted key: "forward_mps", "end.0"."""
    value = run
    for part in key.split("."):
        value = value[int(part)] if isinstance(value, list) else value[part]
    return value


def parse_runs(text):
    """The JSON objects a drill printed, one a line; other lines are ignored."""
    runs = []
    for line in text.splitlines():
        line = line.strip()
        if line.startswith("{"):
            try:
                runs.append(json.loads(line))
            except json.JSONDecodeError:
                continue
    return runs


def load_drills(path, drill_program=None):
    with open(path) as f:
        entries = json.load(f)
    drills = {}
    for name, entry in entries.items():
        try:
            drills[name] = Drill(name, entry, drill_program)
        except KeyError as missing:
            raise SystemExit(f"{path}: drill entry {name!r} lacks {missing}") from None
        except (TypeError, ValueError) as wrong:
            raise SystemExit(f"{path}: drill entry {name!r}: {wrong}") from None
    return drills
