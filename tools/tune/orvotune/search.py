"""CMA-ES generations (DEAP's ask-and-tell strategy) scored by drill trials.

DEAP hands out a whole generation at once, so all its trials run side by side
on a local pool or as one Slurm job array. Every generation is written before
its trials start and every trial as it finishes: a search stopped at any point
continues with the same candidates, and ends where an uninterrupted one would.
"""
import os
import shutil
import sys
import time

import numpy
from deap import base, cma

from .params import outside
from .pool import Attempts

# Settings a search keeps for its whole life: a resume with others would mix
# two searches in one record. The file's values may change (the best is often
# written back to it); the search resumes from its records, not from them.
FIXED_SETTINGS = ("drill", "type", "names", "bounds", "population", "sigma", "seed",
                  "trials_per_candidate")


class Score(base.Fitness):
    weights = (1.0,)


class Candidate(list):
    def __init__(self, values):
        super().__init__(values)
        self.fitness = Score()


def save_strategy(s):
    return {"centroid": s.centroid.tolist(), "sigma": float(s.sigma), "C": s.C.tolist(),
            "pc": s.pc.tolist(), "ps": s.ps.tolist(), "B": s.B.tolist(),
            "diagD": s.diagD.tolist(), "update_count": s.update_count}


def load_strategy(state, population):
    s = cma.Strategy(centroid=state["centroid"], sigma=state["sigma"], lambda_=population)
    for name in ("C", "pc", "ps", "B", "diagD"):
        setattr(s, name, numpy.array(state[name]))
    s.update_count = state["update_count"]
    s.BD = s.B * s.diagD
    return s


class Search:
    def __init__(self, drill, params, records, settings, executor, out_path):
        self.drill = drill
        self.params = params
        self.records = records
        self.executor = executor
        self.out_path = out_path
        self.settings = self.agree(settings)
        self.k = self.settings["trials_per_candidate"]
        self.lam = self.settings["population"]

    def agree(self, settings):
        kept = self.records.read("search.json")
        if kept is None:
            self.records.write("search.json", settings)
            return settings
        changed = [k for k in FIXED_SETTINGS if kept.get(k) != settings.get(k)]
        if changed:
            raise SystemExit(f"{self.records.folder} holds a search with other "
                             f"{', '.join(changed)}; use another records folder")
        kept["budget"] = settings["budget"]
        return kept

    def start(self):
        """The next generation and the strategy it comes from."""
        gens = self.records.generations()
        if not gens:
            return 0, cma.Strategy(centroid=self.settings["start"],
                                   sigma=self.settings["sigma"], lambda_=self.lam)
        last = self.records.generation(gens[-1])
        if "after" in last:
            return gens[-1] + 1, load_strategy(last["after"], self.lam)
        return gens[-1], load_strategy(last["before"], self.lam)

    def run(self, generations=None, progress=sys.stdout):
        g, strategy = self.start()
        budget = self.settings["budget"]
        self.session = {"started": time.monotonic(), "trials": 0}
        while generations is None or g < generations:
            gen = self.records.generation(g) or self.new_generation(g, strategy)
            if gen is None:
                print(f"budget spent: {self.records.trials_used()} of {budget} trials",
                      file=progress)
                return False
            self.evaluate(g, gen, strategy)
            self.report(g, progress, generations)
            g += 1
        return True

    def new_generation(self, g, strategy):
        if self.records.trials_used() + self.lam * self.k > self.settings["budget"]:
            return None
        numpy.random.seed([self.settings["seed"], g])
        before = save_strategy(strategy)
        candidates = [list(map(float, c)) for c in strategy.generate(Candidate)]
        if g == 0:
            # The file as it stands is scored too: the best found is then never
            # one worse than what the search started from.
            candidates[0] = list(self.settings["start"])
        gen = {"generation": g, "before": before, "candidates": candidates}
        self.records.write_generation(g, gen)
        return gen

    def trials(self, g, gen):
        folder = self.records.candidate_folder(g)
        done = {r["id"] for r in self.records.trials(g)}
        pending = []
        for c, x in enumerate(gen["candidates"]):
            path = os.path.join(folder, f"candidate-{c:02d}.json")
            if not os.path.exists(path):
                self.params.write(x, path)
            for r in range(self.k):
                trial_id = f"g{g:04d}c{c:02d}r{r}"
                if trial_id in done:
                    continue
                seed = (self.settings["seed"] * 1000003 + g * 1009 + c * 31 + r) % 2**31
                command = self.drill.command_line(type=self.settings["type"], params=path,
                                                  seed=seed, trial=trial_id)
                pending.append({"id": trial_id, "command": command})
        return pending

    def evaluate(self, g, gen, strategy):
        pending = self.trials(g, gen)
        spare = self.settings["budget"] - self.records.trials_used() - len(pending)

        def record(result):
            self.records.append_trial(g, result)
            self.session["trials"] += result["attempts"]

        self.executor.run(pending, self.drill, Attempts(spare), record)
        scores = self.scores(g, gen)
        population = [Candidate(x) for x in gen["candidates"]]
        for candidate, score in zip(population, scores):
            candidate.fitness.values = (score,)
        strategy.update(population)
        gen.update(scores=scores, after=save_strategy(strategy),
                   failed=sum(not r["ok"] for r in self.records.trials(g)))
        self.keep_best(g, gen)
        self.records.write_generation(g, gen)
        shutil.rmtree(self.records.candidate_folder(g), ignore_errors=True)

    def scores(self, g, gen):
        by_candidate = [[] for _ in gen["candidates"]]
        for result in self.records.trials(g):
            by_candidate[int(result["id"].split("c")[1].split("r")[0])].append(result["score"])
        penalty = self.settings["bound_penalty"]
        return [sum(s) / len(s) - penalty * outside(x)
                for s, x in zip(by_candidate, gen["candidates"])]

    def keep_best(self, g, gen):
        best = self.records.read("best.json")
        c = max(range(len(gen["scores"])), key=lambda i: gen["scores"][i])
        if best is None or gen["scores"][c] > best["score"]:
            x = gen["candidates"][c]
            best = {"score": gen["scores"][c], "generation": g, "candidate": c, "x": x,
                    "values": self.params.values(x)}
            self.records.write("best.json", best)
            self.params.write(x, self.out_path)
        gen["best_so_far"] = best["score"]

    def report(self, g, progress, target):
        gen = self.records.generation(g)
        used = self.records.trials_used()
        minutes = (time.monotonic() - self.session["started"]) / 60
        rate = self.session["trials"] / minutes if minutes > 0 else 0.0
        left = self.settings["budget"] - used
        if target is not None:
            left = min(left, (target - g - 1) * self.lam * self.k)
        eta = f"{left / rate:.1f} min" if rate > 0 else "?"
        mean = sum(gen["scores"]) / len(gen["scores"])
        print(f"generation {g}  best {gen['best_so_far']:.4f}  mean {mean:.4f}  "
              f"trials {used}/{self.settings['budget']}  {rate:.1f} trials/min  "
              f"left {eta}", file=progress, flush=True)
        self.records.append_progress({
            "generation": g, "trials": used, "best": round(gen["best_so_far"], 6),
            "generation_best": round(max(gen["scores"]), 6), "mean": round(mean, 6),
            "failed": gen["failed"], "trials_per_minute": round(rate, 2)})
