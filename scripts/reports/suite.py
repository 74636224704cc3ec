"""A suite of test positions: what the engine printed for it, and which positions it left unsolved."""
import csv
import io
import os
import re
from dataclasses import dataclass

from reports import Fault
from reports.games import as_text

MOVE = re.compile(r"move= (\S+), time= ([\d.]+), score= (-?\d+), nodes= (\d+), ")
DEPTH = re.compile(r"info depth (\d+) ")
SUMMARY = re.compile(r"(\d+) / (\d+) correct best moves$")


@dataclass
class Entry:
    line: str
    move: str = ""
    depth: int = 0
    nodes: int = 0
    time: float = 0.0
    solved: bool = False

    @property
    def id(self):
        found = re.search(r'\bid "([^"]*)"', self.line)
        return found[1] if found else ""

    @property
    def theme(self):
        """The identifier without what numbers the positions of a theme."""
        return re.sub(r"[\s.#:_-]*\d[\d\s.]*$", "", self.id) or "(no theme)"

    @property
    def position(self):
        return " ".join(self.line.split()[:4])


def is_suite(text):
    return re.search(r"^Analyzing .*\.\.\.$", text, re.M) is not None and "\npos= 1" in text


class Suite:
    def __init__(self, path, text, unsolved=None):
        self.name, self.entries, self.torn = path, [], ""
        unsolved = unsolved or os.path.join(os.path.dirname(path), "unsolved.epd")
        try:
            with open(unsolved, encoding="latin-1") as file:
                left = file.read().split("\n")
        except OSError as fault:
            raise Fault(f"{unsolved}: {fault.strerror}; what the suite left unsolved stands there") from fault
        summary = self._read(text.split("\n"), left)
        if not self.entries:
            raise Fault(f"{path}: a suite's output without one whole position")
        if summary is None:
            self.torn = f"{path}: cut off behind position {len(self.entries)}"
        elif summary != (self.solved, len(self.entries)):
            raise Fault(f"{path}: {summary[0]} of {summary[1]} solved, but by {unsolved} it would be {self.solved} of "
                        f"{len(self.entries)}: it belongs to another run")

    def _read(self, lines, left):
        """Takes the positions. The result is what the output itself says of its end, None if it has none."""
        entry = None
        for before, line in zip([""] + lines, lines):
            if before.startswith("pos= "):
                entry = Entry(as_text(line), solved=line not in left)
            elif (found := DEPTH.match(line)) and entry:
                entry.depth = int(found[1])
            elif (found := MOVE.match(line)) and entry:
                entry.move, entry.time, entry.nodes = found[1], float(found[2]), int(found[4])
                self.entries.append(entry)
                entry = None
            elif found := SUMMARY.match(line):
                return int(found[1]), int(found[2])
        return None

    @property
    def solved(self):
        return sum(entry.solved for entry in self.entries)

    def themes(self):
        """Theme, solved and all, in the order of the file."""
        themes = {}
        for entry in self.entries:
            solved, count = themes.get(entry.theme, (0, 0))
            themes[entry.theme] = solved + entry.solved, count + 1
        return [(theme, *numbers) for theme, numbers in themes.items()]

    def table(self):
        """All positions as comma separated values."""
        text = io.StringIO()
        writer = csv.writer(text, lineterminator="\n")
        writer.writerow(["id", "position", "solved", "move", "depth", "nodes", "time"])
        for entry in self.entries:
            solved = int(entry.solved)
            writer.writerow([entry.id, entry.position, solved, entry.move, entry.depth, entry.nodes, entry.time])
        return text.getvalue()


def lines(suite):
    """The report, line by line."""
    count = len(suite.entries)
    yield f"{suite.name}: {suite.solved} of {count} solved, {100 * suite.solved / count:.1f} %"
    yield f"nodes {sum(e.nodes for e in suite.entries)}, time {sum(e.time for e in suite.entries):.2f} s"
    yield f"{'theme':32} solved    of"
    for theme, solved, of in suite.themes():
        yield f"{theme[:32]:32} {solved:6} {of:5}"
    unsolved = [entry.id or entry.position for entry in suite.entries if not entry.solved]
    if unsolved:
        yield "unsolved: " + ", ".join(unsolved)
