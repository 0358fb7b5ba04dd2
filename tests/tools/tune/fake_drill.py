#!/usr/bin/python3
"""A stand-in walk drill with a known optimum and seeded noise, for the tuner's
tests: forward speed peaks where every parameter sits at 70% of its range, and a
trial can be made to crash or hang (with a child standing in for its server)."""
import argparse
import json
import os
import random
import subprocess
import sys
import time

p = argparse.ArgumentParser()
p.add_argument("skill")
p.add_argument("--type", type=int, default=0)
p.add_argument("--params", required=True)
p.add_argument("--seed", type=int, default=0)
p.add_argument("--trial", default="")
p.add_argument("--noise", type=float, default=0.02)
p.add_argument("--sleep", type=float, default=0.0)
p.add_argument("--crash-on", default="-", help="trials whose id holds this crash")
p.add_argument("--hang-on", default="-", help="trials whose id holds this hang")
p.add_argument("--once-dir", help="hang only on a trial's first attempt")
p.add_argument("--server-pids", help="folder where a hanging trial's server writes its pid")
args = p.parse_args()

with open(args.params) as f:
    entries = json.load(f)
x = [(e["value"] - e["min"]) / (e["max"] - e["min"]) for e in entries.values()]
time.sleep(args.sleep)


def first_attempt():
    if not args.once_dir:
        return True
    marker = os.path.join(args.once_dir, args.trial)
    if os.path.exists(marker):
        return False
    open(marker, "w").close()
    return True


if args.crash_on in args.trial:
    os.abort()
if args.hang_on in args.trial and first_attempt():
    server = subprocess.Popen(["sleep", "600"])
    with open(os.path.join(args.server_pids, args.trial), "w") as f:
        f.write(str(server.pid))
    time.sleep(600)

rng = random.Random(args.seed)
speed = 0.8 - sum((xi - 0.7) ** 2 for xi in x) + rng.gauss(0, args.noise)
print("drill: walking", file=sys.stderr)
print(json.dumps({"skill": args.skill, "type": args.type, "run": 0, "start_time": 0.0,
                  "end_time": 10.0, "falls": int(max(x) > 0.95), "start": [0, 0, 0],
                  "end": [speed * 10, 0, 0], "forward_mps": speed, "sideways_mps": 0.0,
                  "turn_dps": 0.0}))
