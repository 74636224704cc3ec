"""The evaluation of a position, as the console's `ev` and `parts` tell it."""
import re
import tempfile

from reports import Fault, engine

LONGEST = 120  # characters of a position that the engine reads
TERM = re.compile(r"(\w+)= +(-?\d+) +(-?\d+) +(-?\d+)")
PART = re.compile(r"(white|black) (mtl|pos)= +(-?\d+) +(-?\d+)")
FIGURES = re.compile(r"eval= (-?\d+), qscore= (-?\d+), stage= (\d+), draw_adj= ([\d.]+)")
IN_CHECK = -10000


def _squares_behind(title, lines):
    for line in lines:
        if line.startswith(title):
            return line[len(title):].split()
    return []


class Evaluation:
    def __init__(self, fen):
        if not fen.isascii() or not fen.isprintable() or len(fen) > LONGEST or fen.count("/") != 7:
            raise Fault("that is no position in FEN")
        with tempfile.TemporaryDirectory() as folder:
            output = engine.run("-c", script=f"fen {fen}\nev\nparts\nquit\n", folder=folder)
        taken = engine.fens(output)
        start = next((i for i, line in enumerate(output) if line.startswith("eval= ")), None)
        if len(taken) < 2 or start is None:
            raise Fault("the engine doesn't take this position")
        self.fen = taken[1]
        self.board = engine.squares(self.fen)
        if len(self.board) != 64 or self.board.count("K") != 1 or self.board.count("k") != 1:
            raise Fault("a position has one king of each colour")
        end = next(i for i, line in enumerate(output[start:], start) if line in ("white", "black"))
        self.lines = [self.fen, ""] + output[start:end + 1]
        self._read(self.lines, output[end:])

    def _read(self, report, rest):
        text = "\n".join(report)
        figures = FIGURES.search(text).groups()
        self.eval, self.qscore, self.stage = (int(figure) for figure in figures[:3])
        self.draw_adj = figures[3]
        self.in_check = self.eval == IN_CHECK
        self.hung = _squares_behind("hung pieces on:", report)
        self.pinned = _squares_behind("pinned pieces on :", report)
        self.free = _squares_behind("free passed pawns on:", rest)
        self.terms = [[name, *map(int, sums)] for name, *sums in TERM.findall(text)]
        surplus = re.search(r"\((\w*) :: (\w*)\)", text)
        self.surplus = list(surplus.groups()) if surplus else ["", ""]
        rows = [re.findall(r"-\d+|\d+|-", line[20:]) for line in report if re.match(r"( [-+A-Za-z]){8}    ", line)]
        self.shares = [None if share == "-" else int(share) for row in rows for share in row]
        self.parts = {f"{side} {name}": [int(op), int(en)] for side, name, op, en in PART.findall("\n".join(rest))}
