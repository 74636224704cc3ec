"""Commands in every order with random delays: each `go` gets exactly one reply, and nothing hangs.

    test_storms.py [ROUNDS [WORKERS [SEED]]]

A `stop` without a search repeats the last reply; where none can be sure to have come first, one more is allowed for.
"""
import os
import random
import shutil
import sys
import tempfile
import time

from program import ROOT, Program

POSITIONS = ["startpos", "startpos moves e2e4 e7e5 g1f3",
             "fen r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
             "fen 8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
             "fen 7k/5Q2/6K1/8/8/8/8/8 b - -", "fen 7k/6Q1/6K1/8/8/8/8/8 b - -", "fen 8/8/8/8/8/8/8/8 w - -"]
# Positions whose endless search stays endless: no forced mate, no single answer without one.
ENDLESS = POSITIONS[:4]
TIMED = ["go depth {d}", "go movetime {t}", "go nodes {n}", "go wtime {t} btime {t} winc 5 binc 5",
         "go wtime {t} btime {t} movestogo 2", "go depth 0"]
PONDERING = ["go ponder", "go ponder wtime 50 btime 50", "go ponder depth {d}", "go ponder nodes {n}"]
ENDING = ["setoption name Hash value {h}", "setoption name Threads value {w}", "setoption name Clear Hash"]
OTHERS = ENDING + ["setoption name MultiPV value {m}", "setoption name Communication Overhead value {o}",
                   "setoption name Ponder value {b}", "setoption name OwnBook value {b}", "setoption name Log value {b}",
                   "setoption name Nonsense value 7", "isready", "position startpos", "uci", "ponderhit", "xyzzy"]
CONSOLE = ["go {d}", "an", "an", ".", ".", "mv", "self", "ev", "bd", "swap", "perft 2", "book", "mkbook", "tune hung 9",
           "set SE {m}", "set", "undo", "]", "jump {d}", "load book.pgn {d}", "save", "get one", "new", "force", "tag",
           "depth {d}", "time 1", "level 1 0.{d} 0", "noise 0", "hash {m}", "multipv {m}", "ponder 0", "debug 1",
           "debug 0", "mistyped", "trace 2", "trace 0", "lmr", "e4", "e5", "move Nf3", "edit\n#\nw Ke1\n.",
           "fen 8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -"]


class Storm:
    def __init__(self, folder, seed, workers, *arguments):
        self.program = Program("-nolog", "-threads", str(workers), *arguments, folder=folder)
        self.random, self.workers = random.Random(seed), workers
        self.book = False  # a search may be answered at once
        self.sent = self.doubtful = 0  # `go`s, and `stop`s that may have come when the search was over

    def send(self, text):
        r = self.random
        line = text.format(d=r.randint(1, 6), t=r.randint(1, 60), n=r.randint(1, 20000), h=r.choice([0, 1, 3, 16]),
                           w=r.randint(1, self.workers), m=r.randint(1, 4), o=r.randint(0, 30),
                           b=r.choice(["true", "false"]))
        self.book = line.endswith("true") if "OwnBook" in line else self.book and line != "uci"
        self.program.send(line)
        time.sleep(r.uniform(0, 0.02))

    def go(self, lines, positions):
        self.send("position " + self.random.choice(positions))
        self.sent += 1
        self.send(self.random.choice(lines))

    def stop(self, certain=False):
        self.doubtful += not certain
        self.send("stop")

    def interrupt(self, most=3):
        """What may come while a search runs and ends or leaves it, without a second reply."""
        for _ in range(self.random.randint(0, most)):
            self.send(self.random.choice(OTHERS))

    def timed(self):
        self.go(TIMED, POSITIONS)
        self.interrupt()
        if self.random.random() < 0.3:
            self.stop()
            self.interrupt()

    def endless(self):
        """Nothing else ends this search than what is sent here."""
        self.go(["go infinite"], ENDLESS)
        ending = self.random.choice(["stop", "stop", "ucinewgame"] + ENDING)
        if ending != "stop":
            self.send(ending)
        self.stop(certain=ending == "stop" and not self.book)

    def pondering(self):
        """`ponderhit` and `stop` in any order, with anything between, and at last one that surely ends it."""
        self.go(PONDERING, POSITIONS)
        for _ in range(self.random.randint(0, 4)):
            self.random.choice([self.stop, lambda: self.interrupt(1), lambda: self.send("ponderhit"),
                                lambda: self.send("ucinewgame")])()
        self.stop()

    def one_after_the_other(self):
        for _ in range(self.random.randint(2, 5)):
            self.go(TIMED + ["go infinite", "go ponder"], ENDLESS)
            self.interrupt(1)
        self.go(["go depth 2"], ENDLESS)

    def round(self):
        self.random.choice([self.timed, self.endless, self.pondering, self.one_after_the_other])()

    def check(self, lines):
        replies = sum(line.startswith("bestmove") for line in lines)
        assert self.sent <= replies <= self.sent + self.doubtful, (self.sent, self.doubtful, replies, lines[-30:])

    def settle(self):
        """Everything asked for is answered, and nothing more."""
        lines = []
        while sum(line.startswith("bestmove") for line in lines) < self.sent:
            lines.append(self.program.read_line())
        self.send("isready")
        lines += self.program.wait_for("readyok")
        self.send("isready")  # there may be one more that has been asked for
        self.check(lines + self.program.wait_for("readyok"))
        self.sent = self.doubtful = 0

    def console(self, rounds):
        """The commands of the console: after any of them the next are still handled, once what they wait for has ended."""
        for i in range(rounds):
            for _ in range(self.random.randint(1, 8)):
                self.send(self.random.choice(CONSOLE))
            self.send(".")  # some wait for an analysis, which may have no end of its own
            self.send(f"level 1 {1000 + i} 0")
            self.program.wait_for(f"set level to 1 moves in {1000 + i}.00")
            self.send("level 1 0.1 0")

    def end(self, quits):
        """The program ends in the middle of anything: at once, or at the end of its input with all answers given."""
        before = len(self.program.seen)
        if quits:
            self.program.send("quit")
        else:
            self.program.close_input()
        assert self.program.wait() == 0
        if not quits:
            self.check(self.program.seen[before:])


def main():
    given = [int(word) for word in sys.argv[1:]]
    rounds, workers, seed = given + [40, 4, 1][len(given):]
    with tempfile.TemporaryDirectory() as folder:
        shutil.copy(os.path.join(ROOT, "tests/data/book/line.opn"), os.path.join(folder, "vrel.opn"))
        with open(os.path.join(folder, "book.pgn"), "w", encoding="ascii") as pgn:
            pgn.write('[Result "1-0"]\n1. e4 e5 2. Nf3 Nc6 3. Bb5 a6\n\n' * 20)
        storm = Storm(folder, seed, workers)
        for _ in range(rounds):
            storm.round()
            storm.settle()
        storm.end(quits=True)
        for i in range(rounds // 5):
            storm = Storm(folder, 1000 * seed + i, workers)
            storm.round()
            storm.end(quits=i % 2 == 0)
        storm = Storm(folder, seed, workers, "-c", "-hash", "4")
        storm.console(rounds)
        storm.end(quits=True)


if __name__ == "__main__":
    main()
