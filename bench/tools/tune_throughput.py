#!/usr/bin/python3
"""The same seeded search run with the local pool and through a one-node Slurm
cluster (started here, as root): best score and trials per minute of both, and
what the Slurm path adds per trial.

  bench/tools/tune_throughput.py [--generations 5] [--trial-seconds 2]
      [--drills FILE --drill NAME --params FILE]

Without --drills it scores the stand-in drill of the tests, which sleeps
--trial-seconds to stand for a real trial's cost."""
import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
TUNE = os.path.join(ROOT, "tools", "tune")
sys.path.insert(0, TUNE)
from orvotune import local_cluster  # noqa: E402


def stand_in(work, trial_seconds):
    params = os.path.join(work, "params.json")
    with open(params, "w") as f:
        json.dump({n: {"value": 0.3, "min": 0, "max": 1} for n in "abcd"}, f)
    command = ["/usr/bin/python3", os.path.join(ROOT, "tests", "tools", "tune", "fake_drill.py"),
               "walk", "--params", "{params}", "--seed", "{seed}", "--sleep", str(trial_seconds)]
    drills = os.path.join(work, "drills.json")
    with open(drills, "w") as f:
        json.dump({"walk": {"command": command, "failed_score": -5, "timeout": 120,
                            "score": [{"key": "forward_mps", "weight": 1}]}}, f)
    return drills, "walk", params


def search(args, drills, drill, params, records, env, slurm):
    command = [os.path.join(TUNE, "orvo_tune"), "search", drill, "--drills", drills, "--params",
               params, "--records", records, "--generations", str(args.generations),
               "--seed", "11", "--type", str(args.type)]
    started = time.monotonic()
    subprocess.run(command + (["--slurm"] if slurm else []), env=env, check=True,
                   stdout=subprocess.DEVNULL)
    wall = time.monotonic() - started
    trials = []
    for g in range(args.generations):
        with open(os.path.join(records, f"gen-{g:04d}.trials.jsonl")) as f:
            trials += [json.loads(line) for line in f]
    with open(os.path.join(records, "best.json")) as f:
        best = json.load(f)["score"]
    inside = sum(t["seconds"] for t in trials) / len(trials)
    return {"best": best, "trials": len(trials), "wall": wall, "inside": inside}


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--generations", type=int, default=5)
    p.add_argument("--trial-seconds", type=float, default=2.0)
    p.add_argument("--drills")
    p.add_argument("--drill", default="walk")
    p.add_argument("--params")
    p.add_argument("--type", type=int, default=0)
    args = p.parse_args()
    reason = local_cluster.missing()
    if reason:
        raise SystemExit(f"no one-node cluster: {reason}")
    work = tempfile.mkdtemp(prefix="orvo-tune-bench-")
    cluster = os.path.join(work, "cluster")
    try:
        drills, drill, params = ((args.drills, args.drill, args.params) if args.drills
                                 else stand_in(work, args.trial_seconds))
        local = search(args, drills, drill, params, os.path.join(work, "local"),
                       dict(os.environ), False)
        env = local_cluster.start(cluster)
        slurm = search(args, drills, drill, params, os.path.join(work, "slurm"), env, True)
    finally:
        local_cluster.stop(cluster)
        shutil.rmtree(work, ignore_errors=True)
    print(f"{args.generations} generations, seed 11, {os.cpu_count()} cores")
    for name, r in (("local pool", local), ("slurm", slurm)):
        print(f"{name:10}  best {r['best']:.4f}  trials {r['trials']}  "
              f"{r['trials'] / r['wall'] * 60:.1f} trials/min  "
              f"trial itself {r['inside']:.2f} s")
    extra = (slurm["wall"] - local["wall"]) / slurm["trials"]
    print(f"slurm path adds {extra:.2f} s of wall time per trial over the local pool")


if __name__ == "__main__":
    main()
