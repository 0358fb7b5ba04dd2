#!/usr/bin/python3
"""orvo_tune against the stand-in drill: a search killed at any point resumes and
ends as an uninterrupted one does; a crashing or hanging trial costs that trial
alone; the budget holds across sessions; drill output is scored as configured."""
import importlib.util
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
TUNE = os.path.join(HERE, "..", "..", "..", "tools", "tune")
sys.path.insert(0, TUNE)
from orvotune.drill import Drill, load_drills  # noqa: E402

PARAMS = {"step_height": {"value": 0.02, "min": 0.0, "max": 0.05},
          "step_time": {"value": 0.3, "min": 0.1, "max": 0.5},
          "lean": {"value": 0.0, "min": -0.2, "max": 0.2}}


class TuneTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="orvo-tune-test-")
        self.params = self.file("params.json", PARAMS)
        self.addCleanup(shutil.rmtree, self.dir, ignore_errors=True)

    def file(self, name, data):
        path = os.path.join(self.dir, name)
        with open(path, "w") as f:
            json.dump(data, f)
        return path

    def drills(self, *extra, timeout=60):
        command = ["/usr/bin/python3", os.path.join(HERE, "fake_drill.py"), "walk", "--params",
                   "{params}", "--seed", "{seed}", "--trial", "{trial}", *extra]
        score = [{"key": "forward_mps", "weight": 1.0}, {"key": "falls", "weight": -1.0}]
        return self.file("drills.json", {"walk": {"command": command, "score": score,
                                                  "failed_score": -5, "timeout": timeout}})

    def tune(self, records, *options, drills=None, wait=True):
        command = [os.path.join(TUNE, "orvo_tune"), "search", "walk", "--drills",
                   drills or self.drills("--sleep", "0.05"), "--params", self.params,
                   "--records", os.path.join(self.dir, records), "--workers", "2",
                   "--population", "5", "--seed", "7", *options]
        proc = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                text=True)
        if not wait:
            return proc
        output, _ = proc.communicate(timeout=300)
        self.assertEqual(proc.returncode, 0, output)
        return output

    def record(self, records, name):
        with open(os.path.join(self.dir, records, name)) as f:
            return json.load(f)

    def trials(self, records, g):
        with open(os.path.join(self.dir, records, f"gen-{g:04d}.trials.jsonl")) as f:
            return {t["id"]: t for t in map(json.loads, f)}

    def test_search_killed_anywhere_resumes_to_the_same_end(self):
        self.tune("whole", "--generations", "4")
        whole = self.record("whole", "gen-0003.json")
        # Killed after the first trial, and in the middle of a later generation.
        for kill_after in (1, 12):
            records = f"killed{kill_after}"
            proc = self.tune(records, "--generations", "4", wait=False)
            deadline = time.monotonic() + 120
            while self.finished_trials(records) < kill_after and time.monotonic() < deadline:
                time.sleep(0.02)
            proc.send_signal(signal.SIGKILL)
            proc.communicate(timeout=30)
            self.assertLess(self.finished_trials(records), 20, "killed too late to tell")
            self.tune(records, "--generations", "4")
            resumed = self.record(records, "gen-0003.json")
            for key in ("candidates", "scores", "after"):
                self.assertEqual(resumed[key], whole[key], key)
            self.assertEqual(self.record(records, "best.json"), self.record("whole", "best.json"))

    def finished_trials(self, records):
        folder = os.path.join(self.dir, records)
        if not os.path.isdir(folder):
            return 0
        count = 0
        for name in os.listdir(folder):
            if name.endswith(".trials.jsonl"):
                with open(os.path.join(folder, name)) as f:
                    count += f.read().count("\n")
        return count

    def test_crashing_and_hanging_trials_cost_one_trial(self):
        once, pids = os.path.join(self.dir, "once"), os.path.join(self.dir, "pids")
        os.mkdir(once)
        os.mkdir(pids)
        drills = self.drills("--crash-on", "c01", "--hang-on", "c03", "--once-dir", once,
                             "--server-pids", pids, timeout=3)
        # c01 crashes on both attempts, c03 hangs once then succeeds on its retry.
        started = time.monotonic()
        self.tune("faults", "--generations", "1", drills=drills)
        trials = self.trials("faults", 0)
        self.assertEqual(len(trials), 5)
        crashed, hung = trials["g0000c01r0"], trials["g0000c03r0"]
        self.assertEqual((crashed["ok"], crashed["attempts"], crashed["score"]), (False, 2, -5))
        self.assertIn("exited with", crashed["error"])
        self.assertEqual((hung["ok"], hung["attempts"]), (True, 2))
        self.assertTrue(all(t["ok"] for i, t in trials.items() if i != "g0000c01r0"))
        self.assertLess(time.monotonic() - started, 100)
        with open(os.path.join(pids, "g0000c03r0")) as f:
            server = int(f.read())
        deadline = time.monotonic() + 10
        while os.path.exists(f"/proc/{server}") and time.monotonic() < deadline:
            time.sleep(0.05)
        self.assertFalse(os.path.exists(f"/proc/{server}"), "the hung trial's server lives on")

    def test_budget_holds_across_sessions(self):
        # k = 2 trials per candidate: a generation costs 10 trials of the 25.
        output = self.tune("budget", "--budget", "25", "--trials-per-candidate", "2")
        self.assertIn("budget spent: 20 of 25", output)
        self.assertEqual(len(self.trials("budget", 1)), 10)
        self.assertIn("budget spent: 20 of 25", self.tune("budget", "--budget", "25",
                                                          "--trials-per-candidate", "2"))
        with open(os.path.join(self.dir, "budget", "best-params.json")) as f:
            self.assertEqual(set(json.load(f)), set(PARAMS))

    def test_a_missing_drill_program_is_refused_before_any_trial(self):
        entry = {"command": ["{drill}", "walk"], "score": [], "failed_score": -1}
        drills = self.file("missing.json", {"walk": entry})
        env = dict(os.environ, PATH="/usr/bin:/bin")
        for extra in ([], ["--drill-program", os.path.join(self.dir, "nowhere")]):
            proc = subprocess.run([os.path.join(TUNE, "orvo_tune"), "search", "walk", "--drills",
                                   drills, "--params", self.params, "--records",
                                   os.path.join(self.dir, "missing"), *extra],
                                  capture_output=True, text=True, env=env, timeout=60)
            self.assertNotEqual(proc.returncode, 0)
            self.assertIn("is not an executable file", proc.stderr)
            self.assertNotIn("Traceback", proc.stderr)
        del entry["failed_score"]
        with self.assertRaisesRegex(SystemExit, "lacks 'failed_score'"):
            load_drills(self.file("lacking.json", {"walk": entry}))

    def test_scores_follow_the_drill_entry(self):
        run = {"forward_mps": 0.5, "falls": 1, "end": [3.0, -0.4, 0.0], "turn_dps": -20}
        cases = [  # (terms, runs, score)
            ([{"key": "forward_mps", "weight": 1}], [run], 0.5),
            ([{"key": "forward_mps", "weight": 1}, {"key": "falls", "weight": -1}],
             [run, dict(run, falls=0)], 0.0),
            ([{"key": "end.1", "weight": -1, "target": 0}], [run], -0.4),
            ([{"key": "turn_dps", "weight": -0.01, "target": 10}], [run], -0.3),
            ([{"key": "distance_m", "weight": 1}], [run], None),
            ([{"key": "forward_mps", "weight": 1}], [dict(run, forward_mps=float("nan"))], None),
        ]
        for terms, runs, expected in cases:
            drill = Drill("walk", {"command": [], "score": terms, "failed_score": -1})
            score = drill.score(runs)
            if expected is None:
                self.assertIsNone(score, terms)
            else:
                self.assertAlmostEqual(score, expected, msg=terms)


if __name__ == "__main__":
    if importlib.util.find_spec("deap") is None:
        print("skipped: orvo_tune needs DEAP; install python3-deap")
        sys.exit(77)
    unittest.main()
