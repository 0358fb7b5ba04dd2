#!/usr/bin/python3
"""orvo_tune through Slurm on a one-node cluster the test starts itself and stops
by its pid files. Exits 77 (skipped) without Slurm, munge, DEAP or root."""
import importlib.util
import json
import os
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
TUNE = os.path.join(HERE, "..", "..", "..", "tools", "tune")
sys.path.insert(0, TUNE)
from orvotune import local_cluster  # noqa: E402


def search(env, work):
    params = os.path.join(work, "params.json")
    with open(params, "w") as f:
        json.dump({"a": {"value": 0.2, "min": 0, "max": 1},
                   "b": {"value": 0.5, "min": 0, "max": 1}}, f)
    drills = os.path.join(work, "drills.json")
    # Candidate 2 always crashes; candidate 3 hangs on its first attempt only.
    command = ["/usr/bin/python3", os.path.join(HERE, "fake_drill.py"), "walk", "--params",
               "{params}", "--seed", "{seed}", "--trial", "{trial}", "--crash-on", "c02",
               "--hang-on", "c03", "--once-dir", work, "--server-pids", work]
    with open(drills, "w") as f:
        json.dump({"walk": {"command": command, "failed_score": -5, "timeout": 5,
                            "score": [{"key": "forward_mps", "weight": 1}]}}, f)
    records = os.path.join(work, "records")
    done = subprocess.run([os.path.join(TUNE, "orvo_tune"), "search", "walk", "--slurm",
                           "--drills", drills, "--params", params, "--records", records,
                           "--population", "4", "--generations", "2"], env=env,
                          capture_output=True, text=True, timeout=240)
    print(done.stdout, done.stderr)
    assert done.returncode == 0, "the search through Slurm failed"
    for g in (0, 1):
        with open(os.path.join(records, f"gen-{g:04d}.trials.jsonl")) as f:
            trials = {t["id"]: t for t in map(json.loads, f)}
        assert len(trials) == 4, trials
        # Both went out again in a second array: the crash failed again, the hang passed.
        crashed, hung = trials.pop(f"g{g:04d}c02r0"), trials.pop(f"g{g:04d}c03r0")
        assert (crashed["ok"], crashed["attempts"], crashed["score"]) == (False, 2, -5), crashed
        assert (hung["ok"], hung["attempts"]) == (True, 2), hung
        assert all(t["ok"] and t["attempts"] == 1 for t in trials.values()), trials
    assert os.listdir(os.path.join(records, "slurm")) == [], "array folders left behind"


def main():
    if importlib.util.find_spec("deap") is None:
        print("skipped: orvo_tune needs DEAP; install python3-deap")
        sys.exit(77)
    reason = local_cluster.missing()
    if reason:
        print(f"skipped: no one-node Slurm cluster here ({reason})")
        sys.exit(77)
    cluster = tempfile.mkdtemp(prefix="orvo-slurm-")
    work = tempfile.mkdtemp(prefix="orvo-slurm-search-")
    try:
        search(local_cluster.start(cluster), work)
    finally:
        local_cluster.stop(cluster)
        shutil.rmtree(cluster, ignore_errors=True)
        shutil.rmtree(work, ignore_errors=True)
    print("passed")


if __name__ == "__main__":
    main()
