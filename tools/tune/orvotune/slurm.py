"""Trials through Slurm: each batch of trials goes out as one job array whose
tasks run the drill on the nodes, each in its own temporary folder and stopped
with the server it started at the drill's time limit. A task hands back the
drill's output through the records folder, which nodes must share with the
machine that runs the search.
"""
import json
import math
import os
import shlex
import shutil
import subprocess
import tempfile
import time

from .pool import finish

POLL_SECONDS = 0.5
# Exit status of `timeout` when it stopped or killed the drill.
TIMED_OUT = (124, 137)

TASK_SCRIPT = """#!/bin/bash
# One trial of a job array; its output goes back beside this script.
i=$SLURM_ARRAY_TASK_ID
dir={folder}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
start=$(date +%s.%N)
TMPDIR="$work" timeout -k 3 {timeout} bash "$dir/trial-$i.sh" \\
  > "$dir/out-$i.part" 2> "$dir/err-$i.txt" < /dev/null
echo "$? $start $(date +%s.%N) $(hostname -s)" > "$dir/status-$i.part"
mv "$dir/out-$i.part" "$dir/out-$i.txt"
mv "$dir/status-$i.part" "$dir/status-$i.txt"
"""


class SlurmArrays:
    def __init__(self, folder, sbatch_options):
        self.folder = folder
        self.squeue_errors = 0
        self.sbatch_options = list(sbatch_options)
        os.makedirs(folder, exist_ok=True)

    def run(self, trials, drill, attempts, on_result):
        failed = []
        for result in self.array(trials, drill, 1):
            (on_result if result["ok"] else failed.append)(result)
        retry = [t for t in trials if t["id"] in {r["id"] for r in failed}]
        retry = [t for t in retry if attempts.take()]
        retried = {t["id"] for t in retry}
        for result in failed:
            if result["id"] not in retried:
                on_result(result)
        if retry:
            for result in self.array(retry, drill, 2):
                on_result(result)

    def array(self, trials, drill, attempt):
        """Runs the trials as one job array; yields each result as it comes back."""
        if not trials:
            return
        folder = tempfile.mkdtemp(prefix=f"{trials[0]['id']}-a{attempt}-", dir=self.folder)
        for i, trial in enumerate(trials):
            with open(os.path.join(folder, f"trial-{i}.sh"), "w") as f:
                f.write("exec " + shlex.join(trial["command"]) + "\n")
        with open(os.path.join(folder, "trials.json"), "w") as f:
            json.dump([t["id"] for t in trials], f)
        script = os.path.join(folder, "array.sh")
        with open(script, "w") as f:
            f.write(TASK_SCRIPT.format(folder=shlex.quote(folder), timeout=f"{drill.timeout:g}"))
        job = self.submit(script, len(trials), drill.timeout)
        try:
            yield from self.collect(job, folder, trials, drill, attempt)
        finally:
            subprocess.run(["scancel", job], stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, check=False)
            shutil.rmtree(folder, ignore_errors=True)

    def submit(self, script, count, timeout):
        minutes = math.ceil((timeout + 30) / 60)
        command = ["sbatch", "--parsable", f"--array=0-{count - 1}", "--job-name=orvo_tune",
                   "--output=/dev/null", f"--time={minutes}", *self.sbatch_options, script]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            raise RuntimeError(f"sbatch failed: {done.stderr.strip()}")
        return done.stdout.strip().split(";")[0]

    def collect(self, job, folder, trials, drill, attempt):
        waiting = set(range(len(trials)))
        submitted = time.monotonic()
        while waiting:
            gone = not self.queued(job)
            for i in sorted(waiting):
                result = self.result(folder, i, trials[i], drill, attempt, gone)
                if result is not None:
                    waiting.discard(i)
                    result["wall_seconds"] = round(time.monotonic() - submitted, 3)
                    yield result
            if waiting:
                time.sleep(POLL_SECONDS)

    def result(self, folder, i, trial, drill, attempt, gone):
        status = os.path.join(folder, f"status-{i}.txt")
        if not os.path.exists(status):
            if not gone:
                return None
            # The job left the queue without this task's answer: its node
            # failed or Slurm stopped it at its time limit.
            return finish(trial, drill, "", "the Slurm task ended without an answer", 0.0,
                          attempt)
        with open(status) as f:
            rc, start, end, node = f.read().split()
        with open(os.path.join(folder, f"out-{i}.txt")) as f:
            output = f.read()
        error = None
        if int(rc) in TIMED_OUT:
            error = f"drill ran over {drill.timeout:g} s on {node}"
        elif int(rc) != 0:
            with open(os.path.join(folder, f"err-{i}.txt")) as f:
                tail = f.read()[-400:].strip()
            error = f"drill exited with {rc} on {node}: {tail}"
        return finish(trial, drill, output, error, float(end) - float(start), attempt)

    def queued(self, job):
        done = subprocess.run(["squeue", "-h", "-j", job, "-o", "%i"], capture_output=True,
                              text=True, check=False)
        if done.returncode == 0:
            return done.stdout.strip() != ""
        # squeue forgets a finished job soon after it ends; any other error is
        # the controller being busy, until it has lasted about a minute.
        if "Invalid job id" in done.stderr:
            return False
        self.squeue_errors += 1
        return self.squeue_errors < 120
