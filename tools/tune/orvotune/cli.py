"""orvo_tune's command line."""
import argparse
import math
import os
import shutil
import signal
import statistics
import sys
import tempfile

from .drill import load_drills
from .params import ParameterFile
from .pool import Attempts, LocalPool
from .records import Records
from .search import Search

# Above this a search stops: trials on the real server are what a search costs.
MAX_TRIALS = 2000


def common_options(p, here):
    p.add_argument("drill", help="drill entry to score by (walk, walk-schedule, kick, getup)")
    p.add_argument("--type", type=int, default=0, help="robot type (default 0)")
    p.add_argument("--drills", default=os.path.join(here, "drills.json"),
                   help="drill entries: command templates and scores")
    p.add_argument("--drill-program", help="the drill program ({drill} in the templates)")
    p.add_argument("--params", help="parameter file (default params/SKILL/typeT.json)")
    p.add_argument("--only", help="tune only these parameters (comma separated)")
    p.add_argument("--workers", type=int, default=os.cpu_count() or 1,
                   help="trials at a time on this machine (default: one per core)")
    p.add_argument("--timeout", type=float, help="seconds before a trial is stopped")


def parser(here):
    top = argparse.ArgumentParser(
        prog="orvo_tune", description="Tunes a skill's parameter file by CMA-ES against a scoring drill.")
    sub = top.add_subparsers(dest="command", required=True)
    s = sub.add_parser("search", help="tune a parameter file by CMA-ES")
    common_options(s, here)
    s.add_argument("--records", help="records folder (default tune-records/DRILL/typeT)")
    s.add_argument("--out", help="best parameter file (default RECORDS/best-params.json)")
    s.add_argument("--trials-per-candidate", type=int, default=1, metavar="K",
                   help="score a candidate by the mean of K trials (default 1)")
    s.add_argument("--population", type=int, help="candidates per generation")
    s.add_argument("--sigma", type=float, default=0.15,
                   help="first step size, in parameter ranges (default 0.15)")
    s.add_argument("--seed", type=int, default=1)
    s.add_argument("--budget", type=int, default=MAX_TRIALS,
                   help=f"trials over all sessions (at most {MAX_TRIALS})")
    s.add_argument("--generations", type=int, help="stop once the search has this many generations")
    s.add_argument("--bound-penalty", type=float, default=1.0,
                   help="score lost per squared range outside a parameter's bounds")
    s.add_argument("--slurm", action="store_true", help="run trials as Slurm job arrays")
    s.add_argument("--sbatch-option", action="append", default=[],
                   help="passed to sbatch (repeat), e.g. --partition=tune")
    c = sub.add_parser("local-cluster", help="start or stop a one-node Slurm cluster here")
    c.add_argument("action", choices=("start", "stop"))
    c.add_argument("folder", help="the cluster's private folder")
    g = sub.add_parser("plot", help="draw a search's progress from its records")
    g.add_argument("records")
    g.add_argument("--out", help="image file (default RECORDS/progress.svg)")
    r = sub.add_parser("repeat", help="run one parameter file's trial N times")
    common_options(r, here)
    r.add_argument("--trials", type=int, default=10)
    return top


def setup(args):
    drills = load_drills(args.drills, args.drill_program)
    if args.drill not in drills:
        raise SystemExit(f"no drill {args.drill!r} in {args.drills}")
    drill = drills[args.drill]
    # Trials on this machine need the program here; a cluster's nodes find
    # the default on their own path. An entry may run a command of its own.
    local = not getattr(args, "slurm", False)
    uses = any("{drill}" in arg for arg in drill.command)
    if uses and (args.drill_program or local) and shutil.which(drill.program) is None:
        raise SystemExit(f"the drill program {drill.program!r} is not an executable file"
                         " (--drill-program, or orvo_drill on the PATH)")
    if args.timeout:
        drill.timeout = args.timeout
    path = args.params or os.path.join("params", drill.skill, f"type{args.type}.json")
    only = args.only.split(",") if args.only else None
    return drill, ParameterFile(path, only)


def search(args):
    drill, params = setup(args)
    if not 0 < args.budget <= MAX_TRIALS:
        raise SystemExit(f"--budget must lie in 1..{MAX_TRIALS}")
    folder = args.records or os.path.join("tune-records", args.drill, f"type{args.type}")
    records = Records(folder)
    records.lock()
    n = len(params.names)
    settings = {"drill": args.drill, "type": args.type, "names": params.names,
                "population": args.population or 4 + int(3 * math.log(n)),
                "sigma": args.sigma, "seed": args.seed,
                "trials_per_candidate": args.trials_per_candidate, "start": params.normalised(),
                "bounds": [list(b) for b in params.bounds()],
                "budget": args.budget, "bound_penalty": args.bound_penalty,
                "command": drill.command, "score": drill.terms}
    if args.slurm:
        from .slurm import SlurmArrays
        executor = SlurmArrays(records.path("slurm"), args.sbatch_option)
    else:
        # Trials of a search stopped by a kill leave their folders here.
        work = records.path("work")
        shutil.rmtree(work, ignore_errors=True)
        os.makedirs(work)
        executor = LocalPool(args.workers, work)
    out = args.out or records.path("best-params.json")
    Search(drill, params, records, settings, executor, out).run(args.generations)
    print(f"best parameters in {out}")
    return 0


def repeat(args):
    """How far repeated trials of one candidate agree: the noise a search sees."""
    drill, params = setup(args)
    with tempfile.TemporaryDirectory(prefix="orvo-repeat-") as folder:
        path = os.path.join(folder, "params.json")
        params.write(params.normalised(), path)
        trials = [{"id": f"repeat{i:03d}",
                   "command": drill.command_line(type=args.type, params=path, seed=i,
                                                 trial=f"repeat{i:03d}")}
                  for i in range(args.trials)]
        scores = []
        LocalPool(args.workers).run(trials, drill, Attempts(0),
                                    lambda r: scores.append(r["score"]) if r["ok"] else None)
    if len(scores) < 2:
        raise SystemExit(f"only {len(scores)} of {args.trials} trials succeeded")
    sd = statistics.stdev(scores)
    print(f"trials {len(scores)}/{args.trials}  mean {statistics.mean(scores):.4f}  "
          f"sd {sd:.4f}  min {min(scores):.4f}  max {max(scores):.4f}")
    for k in (1, 2, 4, 8):
        print(f"mean of {k}: sd {sd / math.sqrt(k):.4f}")
    return 0


def local_cluster(args):
    from . import local_cluster as cluster
    if args.action == "stop":
        cluster.stop(args.folder)
        return 0
    reason = cluster.missing()
    if reason:
        raise SystemExit(f"cannot start a one-node cluster: {reason}")
    cluster.start(args.folder)
    print(f"export SLURM_CONF={cluster.conf_path(args.folder)}")
    return 0


def plot(args):
    from .plot import plot as draw
    draw(args.records, args.out or os.path.join(args.records, "progress.svg"))
    return 0


def main(here):
    args = parser(here).parse_args()
    # A stop request unwinds normally, so running trials are stopped too.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        return {"search": search, "repeat": repeat, "local-cluster": local_cluster,
                "plot": plot}[args.command](args)
    except KeyboardInterrupt:
        return 130
