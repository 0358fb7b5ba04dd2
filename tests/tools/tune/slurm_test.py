#!/usr/bin/python3
"""orvo_tune through Slurm on a one-node cluster this test starts itself (munged,
slurmctld and slurmd as root, on free ports, with private state, spool and log
folders) and stops by their pid files. Exits 77 (skipped) without them."""
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
TUNE = os.path.join(HERE, "..", "..", "..", "tools", "tune", "orvo_tune")
PROGRAMS = ("munged", "mungekey", "slurmctld", "slurmd", "sbatch", "squeue", "scancel", "sinfo")

SLURM_CONF = """ClusterName=orvotest
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmctldPort={ctld_port}
SlurmdPort={d_port}
AuthType=auth/munge
AuthInfo=socket={dir}/munge.socket
CredType=cred/munge
StateSaveLocation={dir}/state
SlurmdSpoolDir={dir}/spool
SlurmctldPidFile={dir}/slurmctld.pid
SlurmdPidFile={dir}/slurmd.pid
SlurmctldLogFile={dir}/slurmctld.log
SlurmdLogFile={dir}/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
MpiDefault=none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerType=sched/backfill
ReturnToService=2
JobCompType=jobcomp/none
AccountingStorageType=accounting_storage/none
NodeName={host} NodeAddr=127.0.0.1 CPUs={cpus} State=UNKNOWN
PartitionName=tune Nodes={host} Default=YES MaxTime=INFINITE State=UP
"""


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(77)


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


class OneNodeCluster:
    def __init__(self):
        self.dir = tempfile.mkdtemp(prefix="orvo-slurm-")
        for sub in ("state", "spool"):
            os.mkdir(os.path.join(self.dir, sub))
        self.conf = os.path.join(self.dir, "slurm.conf")
        self.host = socket.gethostname().split(".")[0]
        with open(self.conf, "w") as f:
            f.write(SLURM_CONF.format(host=self.host, dir=self.dir, ctld_port=free_port(),
                                      d_port=free_port(), cpus=os.cpu_count()))
        self.env = dict(os.environ, SLURM_CONF=self.conf)
        self.pid_files = []

    def start(self):
        d = self.dir
        self.daemon(["mungekey", "-c", "-k", f"{d}/munge.key"], None)
        self.daemon(["munged", "--force", f"--socket={d}/munge.socket",
                     f"--key-file={d}/munge.key", f"--pid-file={d}/munged.pid",
                     f"--log-file={d}/munged.log", f"--seed-file={d}/munged.seed"],
                    f"{d}/munged.pid")
        self.daemon(["slurmctld", "-f", self.conf], f"{d}/slurmctld.pid")
        self.daemon(["slurmd", "-f", self.conf, "-N", self.host], f"{d}/slurmd.pid")
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            state = subprocess.run(["sinfo", "-h", "-o", "%T"], env=self.env,
                                   capture_output=True, text=True).stdout.strip()
            if state == "idle":
                return
            time.sleep(0.5)
        raise RuntimeError(f"the node did not come up ({state!r}):\n{self.log('slurmd.log')}")

    def daemon(self, command, pid_file):
        # Each daemon detaches itself; it is stopped by the pid it writes.
        if pid_file:
            self.pid_files.append(pid_file)
        done = subprocess.run(command, env=self.env, capture_output=True, text=True, timeout=30)
        if done.returncode != 0:
            raise RuntimeError(f"{command[0]} failed: {done.stderr}")

    def log(self, name):
        with open(os.path.join(self.dir, name), errors="replace") as f:
            return f.read()[-2000:]

    def stop(self):
        for pid_file in reversed(self.pid_files):
            try:
                with open(pid_file) as f:
                    pid = int(f.read())
            except (OSError, ValueError):
                continue
            for sig, wait in ((signal.SIGTERM, 10.0), (signal.SIGKILL, 5.0)):
                try:
                    os.kill(pid, sig)
                except ProcessLookupError:
                    break
                deadline = time.monotonic() + wait
                while os.path.exists(f"/proc/{pid}") and time.monotonic() < deadline:
                    time.sleep(0.05)
                if not os.path.exists(f"/proc/{pid}"):
                    break
        shutil.rmtree(self.dir, ignore_errors=True)


def search(cluster, work):
    params = os.path.join(work, "params.json")
    with open(params, "w") as f:
        json.dump({"a": {"value": 0.2, "min": 0, "max": 1},
                   "b": {"value": 0.5, "min": 0, "max": 1}}, f)
    drills = os.path.join(work, "drills.json")
    command = ["/usr/bin/python3", os.path.join(HERE, "fake_drill.py"), "walk", "--params",
               "{params}", "--seed", "{seed}", "--trial", "{trial}", "--crash-on", "c02"]
    with open(drills, "w") as f:
        json.dump({"walk": {"command": command, "failed_score": -5, "timeout": 60,
                            "score": [{"key": "forward_mps", "weight": 1}]}}, f)
    records = os.path.join(work, "records")
    done = subprocess.run([TUNE, "search", "walk", "--slurm", "--drills", drills, "--params",
                           params, "--records", records, "--population", "4",
                           "--generations", "2"], env=cluster.env, capture_output=True,
                          text=True, timeout=240)
    print(done.stdout, done.stderr)
    assert done.returncode == 0, "the search through Slurm failed"
    for g in (0, 1):
        with open(os.path.join(records, f"gen-{g:04d}.trials.jsonl")) as f:
            trials = {t["id"]: t for t in map(json.loads, f)}
        assert len(trials) == 4, trials
        # The crashing candidate was retried in a second array, then scored failed.
        crashed = trials.pop(f"g{g:04d}c02r0")
        assert (crashed["ok"], crashed["attempts"], crashed["score"]) == (False, 2, -5), crashed
        assert all(t["ok"] and t["attempts"] == 1 for t in trials.values()), trials
    assert os.listdir(os.path.join(records, "slurm")) == [], "array folders left behind"


def main():
    missing = [p for p in PROGRAMS if shutil.which(p) is None]
    if missing:
        skip(f"Slurm or munge is not installed (missing {', '.join(missing)}); "
             "install slurm-wlm and munge")
    try:
        import deap  # noqa: F401
    except ImportError:
        skip("orvo_tune needs DEAP; install python3-deap")
    if os.geteuid() != 0:
        skip("the one-node cluster runs its daemons as root")
    cluster = OneNodeCluster()
    work = tempfile.mkdtemp(prefix="orvo-slurm-search-")
    try:
        cluster.start()
        search(cluster, work)
    finally:
        cluster.stop()
        shutil.rmtree(work, ignore_errors=True)
    print("passed")


if __name__ == "__main__":
    main()
