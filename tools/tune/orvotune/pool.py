"""Trials on this machine: at most N drill processes at a time, each in its own
process group and its own temporary folder, so that a crashed or hung trial (and
the server it started) is stopped and cleaned up without touching the others.
"""
import os
import shutil
import signal
import subprocess
import tempfile
import threading
import time
from concurrent.futures import ThreadPoolExecutor, as_completed

from .drill import parse_runs

# A drill asked to stop gets this long to stop its server before it is killed.
STOP_GRACE_SECONDS = 3.0


class Attempts:
    """Retries draw on what the budget has left after the first attempts."""

    def __init__(self, spare):
        self.spare = spare
        self.lock = threading.Lock()

    def take(self):
        with self.lock:
            if self.spare <= 0:
                return False
            self.spare -= 1
            return True


def finish(trial, drill, output, error, seconds, attempts):
    runs = parse_runs(output) if error is None else []
    score = drill.score(runs) if runs else None
    if error is None and score is None:
        error = "no scored run in the drill's output"
    return {"id": trial["id"], "ok": error is None, "attempts": attempts,
            "score": score if error is None else drill.failed_score,
            "runs": runs, "seconds": round(seconds, 3), "error": error}


class LocalPool:
    def __init__(self, workers, work_root=None):
        self.workers = workers
        self.work_root = work_root
        self.running = {}
        self.stopping = False
        self.lock = threading.Lock()

    def run(self, trials, drill, attempts, on_result):
        with ThreadPoolExecutor(self.workers) as pool:
            futures = [pool.submit(self.run_with_retry, t, drill, attempts) for t in trials]
            try:
                for future in as_completed(futures):
                    on_result(future.result())
            except BaseException:
                for future in futures:
                    future.cancel()
                self.stop_all()
                raise

    def run_with_retry(self, trial, drill, attempts):
        result = self.run_once(trial, drill, 1)
        if not result["ok"] and attempts.take():
            result = self.run_once(trial, drill, 2)
        return result

    def run_once(self, trial, drill, tries):
        work = tempfile.mkdtemp(prefix=f"{trial['id']}-", dir=self.work_root)
        started = time.monotonic()
        try:
            output, error = self.execute(trial, drill, work)
        finally:
            shutil.rmtree(work, ignore_errors=True)
        return finish(trial, drill, output, error, time.monotonic() - started, tries)

    def execute(self, trial, drill, work):
        env = dict(os.environ, TMPDIR=work)
        with open(os.path.join(work, "stderr"), "w+") as errors:
            # Started and registered under the lock: a trial whose thread
            # was already on its way when the search was stopped must not
            # start after stop_all() looked at what runs.
            with self.lock:
                if self.stopping:
                    return "", "the search was stopped"
                proc = subprocess.Popen(trial["command"], stdout=subprocess.PIPE, stderr=errors,
                                        stdin=subprocess.DEVNULL, cwd=work, env=env,
                                        start_new_session=True, text=True)
                self.running[proc.pid] = proc
            try:
                output, _ = proc.communicate(timeout=drill.timeout)
                error = None if proc.returncode == 0 else f"drill exited with {proc.returncode}"
            except subprocess.TimeoutExpired:
                stop_group(proc)
                output, error = "", f"drill ran over {drill.timeout:g} s"
            finally:
                stop_group(proc)
                with self.lock:
                    self.running.pop(proc.pid, None)
            if error:
                errors.seek(0)
                tail = errors.read()[-400:].strip()
                error += f": {tail}" if tail else ""
            return output, error

    def stop_all(self):
        with self.lock:
            self.stopping = True
            procs = list(self.running.values())
        for proc in procs:
            stop_group(proc)


def stop_group(proc):
    """Stops the drill's process group (the drill and the server it started):
    first asked, then killed. The group id is the drill's own pid."""
    try:
        os.killpg(proc.pid, signal.SIGTERM)
    except ProcessLookupError:
        return
    deadline = time.monotonic() + STOP_GRACE_SECONDS
    while time.monotonic() < deadline:
        try:
            os.killpg(proc.pid, 0)
        except ProcessLookupError:
            break
        proc.poll()
        time.sleep(0.05)
    else:
        try:
            os.killpg(proc.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
    proc.poll()
