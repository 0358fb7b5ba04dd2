"""A search's progress drawn from its records: the best score so far, and each
generation's best and mean, against the trials spent."""
import csv
import json
import os


def plot(records, out):
    import matplotlib
    matplotlib.use("Agg")  # no display: files only
    from matplotlib import pyplot

    with open(os.path.join(records, "progress.tsv")) as f:
        rows = list(csv.DictReader(f, delimiter="\t"))
    if not rows:
        raise SystemExit(f"{records} has no finished generation yet")
    with open(os.path.join(records, "search.json")) as f:
        settings = json.load(f)
    trials = [int(r["trials"]) for r in rows]
    figure, axes = pyplot.subplots(figsize=(7, 4))
    for key, label, style in (("best", "best so far", "-"),
                              ("generation_best", "generation best", ":"),
                              ("mean", "generation mean", "--")):
        axes.plot(trials, [float(r[key]) for r in rows], style, label=label)
    axes.set_xlabel("trials")
    axes.set_ylabel("score")
    axes.set_title(f"{settings['drill']}, robot type {settings['type']}: "
                   f"{len(settings['names'])} parameters, seed {settings['seed']}")
    axes.grid(alpha=0.3)
    axes.legend()
    figure.tight_layout()
    figure.savefig(out)
    print(f"wrote {out}")
