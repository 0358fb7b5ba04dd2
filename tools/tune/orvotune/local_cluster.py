"""A one-node Slurm cluster on this machine, for trying a search through Slurm
and for measuring what the Slurm path costs: munged, slurmctld and slurmd
started as root on free ports with their state, spool, logs and pid files in one
private folder, and stopped by those pid files.
"""
import os
import shutil
import signal
import socket
import subprocess
import time

PROGRAMS = ("munged", "mungekey", "slurmctld", "slurmd", "sbatch", "squeue", "scancel", "sinfo")
DAEMONS = ("munged", "slurmctld", "slurmd")

SLURM_CONF = """ClusterName=orvo
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


def missing():
    """Why a one-node cluster cannot start here, or None."""
    absent = [p for p in PROGRAMS if shutil.which(p) is None]
    if absent:
        return f"missing {', '.join(absent)}: install slurm-wlm and munge"
    if os.geteuid() != 0:
        return "its daemons run as root"
    return None


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def conf_path(folder):
    return os.path.join(os.path.abspath(folder), "slurm.conf")


def start(folder, timeout=60.0):
    """Starts the cluster in folder; returns the environment its clients need."""
    d = os.path.abspath(folder)
    for sub in ("state", "spool"):
        os.makedirs(os.path.join(d, sub), exist_ok=True)
    host = socket.gethostname().split(".")[0]
    with open(conf_path(d), "w") as f:
        f.write(SLURM_CONF.format(host=host, dir=d, ctld_port=free_port(), d_port=free_port(),
                                  cpus=os.cpu_count()))
    env = dict(os.environ, SLURM_CONF=conf_path(d))
    try:
        for command in (["mungekey", "-c", "-f", "-k", f"{d}/munge.key"],
                        ["munged", "--force", f"--socket={d}/munge.socket",
                         f"--key-file={d}/munge.key", f"--pid-file={d}/munged.pid",
                         f"--log-file={d}/munged.log", f"--seed-file={d}/munged.seed"],
                        ["slurmctld", "-f", conf_path(d)],
                        ["slurmd", "-f", conf_path(d), "-N", host]):
            # Each daemon detaches itself and writes its pid file.
            done = subprocess.run(command, env=env, capture_output=True, text=True, timeout=30)
            if done.returncode != 0:
                raise RuntimeError(f"{command[0]} failed: {done.stderr.strip()}")
        await_idle(env, d, timeout)
    except BaseException:
        stop(d)
        raise
    return env


def await_idle(env, folder, timeout):
    deadline = time.monotonic() + timeout
    state = ""
    while time.monotonic() < deadline:
        state = subprocess.run(["sinfo", "-h", "-o", "%T"], env=env, capture_output=True,
                               text=True).stdout.strip()
        if state == "idle":
            return
        time.sleep(0.5)
    with open(os.path.join(folder, "slurmd.log"), errors="replace") as f:
        raise RuntimeError(f"the node did not come up ({state!r}):\n{f.read()[-2000:]}")


def stop(folder):
    """Stops the daemons by their pid files: asked first, killed after 10 s."""
    for name in reversed(DAEMONS):
        try:
            with open(os.path.join(folder, f"{name}.pid")) as f:
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
