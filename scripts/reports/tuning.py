"""A tuner's log: the weights of each pass, and the error that they leave."""
import os
import re
from dataclasses import dataclass

from reports import Fault, engine

ENTRY = re.compile(r"\*\* param_(\d+), value= (-?\d+)$|err= (\d+\.\d{5})$|pass (\d+) broken off$")
MOST_SHOWN = 12  # weights that a picture has room for


@dataclass
class Pass:
    weights: list
    error: float


def weight_names():
    """The names of the weights in the tuner's order, and all that can be set."""
    with open(os.path.join(engine.ROOT, "src/eval/personality.h"), encoding="ascii") as file:
        rows = re.findall(r"ROW\((\w+), *-?\d+, *(\w+)\)", file.read())
    return [name for name, use in rows if use != "KEYWORD"]


class Tuning:
    """`passes` begins with the weights at the start; `torn` says what is wrong with the log's end, if anything."""

    def __init__(self, name, text):
        self.name, self.passes, self.torn, self.broken_off = name, [], "", False
        self.names = weight_names()
        weights = {}
        for line in text.split("\n"):
            if not (found := ENTRY.match(line.rstrip("\r"))):
                continue
            index, value, error, broken = found.groups()
            if index is not None:
                weights[int(index)] = int(value)
            elif error is not None:
                self._add(weights, float(error))
                weights = {}
            else:
                self.broken_off = True
        if not self.passes:
            raise Fault(f"{name}: a tuner's log without one whole pass")
        if weights:
            self.torn = f"{name}: cut off behind pass {len(self.passes) - 1}; what follows is left out"

    def _add(self, weights, error):
        if sorted(weights) != list(range(len(self.names))):
            raise Fault(f"{self.name}: {len(weights)} weights in a pass where the engine has {len(self.names)}")
        self.passes.append(Pass([weights[i] for i in range(len(self.names))], error))

    @property
    def best(self):
        return min(range(len(self.passes)), key=lambda number: self.passes[number].error)

    def changes(self, number=-1):
        """Names with start, end and change, those that moved most in front."""
        rows = zip(self.names, self.passes[0].weights, self.passes[number].weights)
        return sorted(((name, a, b, b - a) for name, a, b in rows), key=lambda row: -abs(row[3]))

    def player(self):
        """The weights of the best pass as player2.par takes them: those that differ from the start."""
        best = self.passes[self.best]
        rows = [f"{name} {b}\n" for name, a, b in zip(self.names, self.passes[0].weights, best.weights) if a != b]
        return f"# pass {self.best} of {self.name}, error {best.error:.5f}\n" + "".join(rows)


def lines(tuning):
    """The report, line by line."""
    best = tuning.best
    yield f"{tuning.name}: {len(tuning.passes) - 1} passes" + (", then broken off" if tuning.broken_off else "")
    yield f"{'pass':>4}    error"
    for number, entry in enumerate(tuning.passes):
        yield f"{number:4}  {entry.error:.5f}" + ("  the best" if number == best else "")
    yield f"{'weight':24} start    end change"
    for name, start, end, change in tuning.changes():
        yield f"{name:24}{start:6} {end:6} {change:+6}" if change else f"{name:24}{start:6} {end:6}"
