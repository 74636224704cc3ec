"""Commands in every order with random delays: each `go` gets exactly one reply, and nothing hangs.

    test_storms.py [ROUNDS [WORKERS [SEED]]]

A `stop` without a search repeats the last reply; where none can be sure to have come first, one more is allowed for.
"""
import os
import random
import sys
import tempfile
import time

from vrel_process import Engine

HANG = 10.0  # seconds
POSITIONS = [
    "startpos",
    "startpos moves e2e4 e7e5 g1f3",
    "fen r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "fen 8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "fen 7k/5Q2/6K1/8/8/8/8/8 b - -",  # stalemate
    "fen 7k/6Q1/6K1/8/8/8/8/8 b - -",  # mate
    "fen 8/8/8/8/8/8/8/8 w - -",       # no kings
]
# Positions whose endless search stays endless: no forced mate, no single answer without one.
ENDLESS = POSITIONS[:4]
TIMED = ["go depth {d}", "go movetime {t}", "go nodes {n}", "go wtime {t} btime {t} winc 5 binc 5",
         "go wtime {t} btime {t} movestogo 2", "go depth 0"]
ENDING = ["setoption name Hash value {h}", "setoption name Threads value {w}", "setoption name Clear Hash"]
OPTIONS = ENDING + ["setoption name MultiPV value {m}", "setoption name Communication Overhead value {o}",
                    "setoption name Ponder value {b}", "setoption name OwnBook value {b}",
                    "setoption name Log value {b}", "setoption name Nonsense value 7", "setoption name Hash"]
OTHERS = ["isready", "position startpos", "uci", "ponderhit", "xyzzy"]
CONSOLE = ["go {d}", "an", "an", ".", ".", "mv", "self", "ev", "bd", "swap", "perft 2", "book", "mkbook", "tune hung 9",
           "set SE {m}", "set", "undo", "]", "jump {d}", "load book.pgn {d}", "save", "get one", "new", "force", "tag",
           "depth {d}", "time 1", "level 1 0.{d} 0", "noise 0", "hash {m}", "multipv {m}", "ponder 0", "debug 1",
           "debug 0", "trace 2", "trace 0", "lmr", "e4", "e5", "move Nf3", "edit\n#\nw Ke1\n.",
           "fen 8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -"]
GAME = '[Result "{}"]\n1. e4 e5 2. Nf3 Nc6 3. Bb5 a6\n\n'


def make_book(folder):
    with open(os.path.join(folder, "book.pgn"), "w", encoding="ascii") as pgn:
        for result in ["1-0", "0-1"] * 20:
            pgn.write(GAME.format(result))
    engine = Engine("-c", "-nolog", folder=folder)
    engine.send("mkbook")
    engine.wait_for("done")
    assert engine.quit() == 0
    os.rename(os.path.join(folder, "book.opn"), os.path.join(folder, "vrel.opn"))


class Storm:
    def __init__(self, folder, seed, workers, *arguments):
        self.engine = Engine("-nolog", "-threads", str(workers), *arguments, folder=folder)
        self.random = random.Random(seed)
        self.workers = workers
        self.book = False  # a search may be answered at once
        self.commands = 0
        self.sent = 0      # `go`s
        self.doubtful = 0  # `stop`s that may have come when the search was over
        self.replies = 0   # `bestmove`s

    def send(self, text):
        r = self.random
        line = text.format(d=r.randint(1, 6), t=r.randint(1, 60), n=r.randint(1, 20000), h=r.choice([0, 1, 3, 16]),
                           w=r.randint(1, self.workers), m=r.randint(1, 4), o=r.randint(0, 30),
                           b=r.choice(["true", "false"]))
        if "OwnBook" in line:
            self.book = line.endswith("true")
        self.book = self.book and line != "uci"
        self.commands += 1
        self.engine.send(line)
        time.sleep(r.uniform(0, 0.02))

    def go(self, line, positions):
        self.send("position " + self.random.choice(positions))
        self.sent += 1
        self.send(line)

    def stop(self, certain=False):
        self.doubtful += not certain
        self.send("stop")

    def interrupt(self, most=3):
        """What may come while a search runs and ends or leaves it, without a second reply."""
        for _ in range(self.random.randint(0, most)):
            self.send(self.random.choice(OTHERS + OPTIONS))

    def timed(self):
        self.go(self.random.choice(TIMED), POSITIONS)
        self.interrupt()
        if self.random.random() < 0.3:
            self.stop()
            self.interrupt()

    def endless(self):
        self.go("go infinite", ENDLESS)
        # Nothing else ends this search than what is sent here.
        ending = self.random.choice(["stop", "stop", "ucinewgame"] + ENDING)
        if ending == "stop":
            self.stop(certain=not self.book)
        else:
            self.send(ending)
            self.stop()

    def pondering(self):
        """`ponderhit` and `stop` in any order, with anything between, and at last one that surely ends it."""
        self.go(self.random.choice(["go ponder", "go ponder wtime 50 btime 50", "go ponder depth {d}",
                                    "go ponder nodes {n}"]), POSITIONS)
        for _ in range(self.random.randint(0, 4)):
            kind = self.random.randint(0, 3)
            if kind == 0:
                self.stop()
            elif kind == 1:
                self.interrupt(1)
            else:
                self.send(self.random.choice(["ponderhit", "ucinewgame"]))
        self.stop()

    def one_after_the_other(self):
        for _ in range(self.random.randint(2, 5)):
            self.go(self.random.choice(TIMED + ["go infinite", "go ponder"]), ENDLESS)
            self.interrupt(1)
        self.go("go depth 2", ENDLESS)

    def round(self):
        self.random.choice([self.timed, self.endless, self.pondering, self.one_after_the_other])()

    def count(self, line):
        assert line is not None, ("the engine ended", self.engine.seen[-10:])
        self.replies += line.startswith("bestmove")

    def check(self):
        assert self.sent <= self.replies <= self.sent + self.doubtful, \
            (self.sent, self.doubtful, self.replies, self.engine.seen[-30:])

    def settle(self):
        """Everything asked for is answered, and nothing more."""
        deadline = time.monotonic() + HANG
        while self.replies < self.sent:
            self.count(self.engine.read_line(max(0.0, deadline - time.monotonic())))
        self.send("isready")
        while True:
            line = self.engine.read_line(HANG)
            self.count(line)
            if line == "readyok" and self.engine.lines.empty():
                break
        self.check()
        self.sent = self.replies  # what was doubtful is settled
        self.doubtful = 0

    def console(self, rounds):
        """The commands of the console: after any of them the next are still handled."""
        for i in range(rounds):
            for _ in range(self.random.randint(1, 8)):
                self.send(self.random.choice(CONSOLE))
            self.send(f"level 1 {1000 + i} 0")
            self.engine.wait_for(f"set level to 1 moves in {1000 + i}.00", HANG)
            self.send("level 1 0.1 0")

    def end(self, quits):
        """The program ends in the middle of anything: at once, or at the end of its input with all answers given."""
        start = time.monotonic()
        if quits:
            self.engine.send("quit")
        else:
            self.engine.close_input()
        assert self.engine.wait(HANG) == 0
        assert time.monotonic() - start < HANG
        self.replies = sum(line.startswith("bestmove") for line in self.engine.seen)
        if not quits:
            self.check()


def main():
    rounds = int(sys.argv[1]) if len(sys.argv) > 1 else 40
    workers = int(sys.argv[2]) if len(sys.argv) > 2 else 4
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    with tempfile.TemporaryDirectory() as folder:
        make_book(folder)
        storm = Storm(folder, seed, workers)
        for _ in range(rounds):
            storm.round()
            storm.settle()
        storm.end(quits=True)
        commands, answers = storm.commands, storm.replies
        for i in range(rounds // 5):
            storm = Storm(folder, 1000 * seed + i, workers)
            storm.round()
            storm.end(quits=i % 2 == 0)
            commands += storm.commands
            answers += storm.replies
        storm = Storm(folder, seed, workers, "-c", "-hash", "4")
        storm.console(rounds)
        storm.end(quits=True)
        commands += storm.commands
    print(f"{2 * rounds} rounds, {rounds // 5} endings, {commands} commands, {answers} replies")


if __name__ == "__main__":
    main()
