"""A skill's parameter file: named values, each inside its own [min, max].

The search works in coordinates where every tuned parameter spans [0, 1], so one
step size fits parameters measured in radians, metres or seconds alike.
"""
import json
import os


class ParameterFile:
    def __init__(self, path, only=None):
        self.path = path
        with open(path) as f:
            self.entries = json.load(f)
        for name, entry in self.entries.items():
            if not entry["min"] < entry["max"]:
                raise ValueError(f"{path}: {name} has min {entry['min']} >= max {entry['max']}")
        self.names = list(only) if only else list(self.entries)
        missing = [n for n in self.names if n not in self.entries]
        if missing:
            raise ValueError(f"{path}: no parameter named {', '.join(missing)}")

    def bounds(self):
        return [(self.entries[n]["min"], self.entries[n]["max"]) for n in self.names]

    def normalised(self):
        """The file's current values, in search coordinates."""
        return [(self.entries[n]["value"] - lo) / (hi - lo)
                for n, (lo, hi) in zip(self.names, self.bounds())]

    def values(self, x):
        """Parameter values for search coordinates x, held inside their ranges."""
        return {n: lo + min(max(xi, 0.0), 1.0) * (hi - lo)
                for n, (lo, hi), xi in zip(self.names, self.bounds(), x)}

    def write(self, x, path):
        """Writes the whole file with the tuned values replaced (atomically)."""
        entries = json.loads(json.dumps(self.entries))
        for name, value in self.values(x).items():
            entries[name]["value"] = value
        write_json(path, entries)


def outside(x):
    """How far x lies outside the unit box (squared), for a penalty that
    steers the search back inside rather than letting it drift along a bound."""
    return sum(max(-xi, 0.0, xi - 1.0) ** 2 for xi in x)


def write_json(path, data):
    tmp = f"{path}.tmp{os.getpid()}"
    with open(tmp, "w") as f:
        json.dump(data, f, indent=2)
        f.write("\n")
        f.flush()
        os.fsync(f.fileno())
    os.replace(tmp, path)
