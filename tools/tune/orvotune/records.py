"""A search's records folder: everything needed to continue it exactly.

  search.json            the settings it started with (checked on every resume)
  gen-NNNN.json          the generation's candidates and the strategy they came
                         from; once scored, their scores and the strategy after
  gen-NNNN.trials.jsonl  one line per finished trial, appended as trials finish
  gen-NNNN/              the candidates' parameter files while the generation runs
  work/, slurm/          the running trials' own folders
  best.json              the best candidate so far
  lock                   locked while a search runs
  progress.tsv           one line per generation, for plots
"""
import fcntl
import glob
import json
import os
import re

from .params import write_json


class Records:
    def __init__(self, folder):
        self.folder = os.path.abspath(folder)
        os.makedirs(folder, exist_ok=True)

    def lock(self):
        """Held while a search runs: two at once would interleave their trials.
        The kernel drops it when the process ends, however it ends."""
        self.lock_file = open(self.path("lock"), "w")
        try:
            fcntl.flock(self.lock_file, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise SystemExit(f"another orvo_tune is running the search in {self.folder}")

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name):
        try:
            with open(self.path(name)) as f:
                return json.load(f)
        except FileNotFoundError:
            return None

    def write(self, name, data):
        write_json(self.path(name), data)

    def generations(self):
        found = (re.fullmatch(r"gen-(\d+)\.json", os.path.basename(p))
                 for p in glob.glob(self.path("gen-*.json")))
        return sorted(int(m.group(1)) for m in found if m)

    def generation(self, g):
        return self.read(f"gen-{g:04d}.json")

    def write_generation(self, g, data):
        self.write(f"gen-{g:04d}.json", data)

    def candidate_folder(self, g):
        folder = self.path(f"gen-{g:04d}")
        os.makedirs(folder, exist_ok=True)
        return folder

    def trials(self, g):
        """The generation's finished trials. A line cut short by a kill is
        dropped and the file rewritten without it, so appends stay whole."""
        path = self.path(f"gen-{g:04d}.trials.jsonl")
        try:
            with open(path) as f:
                text = f.read()
        except FileNotFoundError:
            return []
        lines = text.splitlines()
        results = []
        for line in lines:
            try:
                results.append(json.loads(line))
            except json.JSONDecodeError:
                continue
        if len(results) != len(lines) or (text and not text.endswith("\n")):
            with open(path, "w") as f:
                f.writelines(json.dumps(r) + "\n" for r in results)
        return results

    def append_trial(self, g, result):
        with open(self.path(f"gen-{g:04d}.trials.jsonl"), "a") as f:
            f.write(json.dumps(result) + "\n")
            f.flush()
            os.fsync(f.fileno())

    def trials_used(self):
        return sum(r["attempts"] for g in self.generations() for r in self.trials(g))

    def append_progress(self, row):
        path = self.path("progress.tsv")
        header = not os.path.exists(path)
        with open(path, "a") as f:
            if header:
                f.write("\t".join(row) + "\n")
            f.write("\t".join(str(v) for v in row.values()) + "\n")
