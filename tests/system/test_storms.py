"""Commands in every order with random delays: each `go` gets exactly one reply, and nothing hangs.

    test_storms.py [ROUNDS [WORKERS [SEED]]]
"""
import random
import sys
import tempfile
import time

from vrel_process import Engine

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
OPTIONS = ["setoption name Hash value {h}", "setoption name Threads value {w}", "setoption name MultiPV value {m}",
           "setoption name Clear Hash", "setoption name Communication Overhead value {o}",
           "setoption name Ponder value true", "setoption name OwnBook value true", "setoption name Log value false",
           "setoption name Nonsense value 7", "setoption name Hash"]


class Storm:
    def __init__(self, engine, seed, workers):
        self.engine = engine
        self.random = random.Random(seed)
        self.workers = workers
        self.sent = 0     # `go`s
        self.replies = 0  # `bestmove`s

    def fill(self, text):
        r = self.random
        return text.format(d=r.randint(1, 9), t=r.randint(1, 60), n=r.randint(0, 20000), h=r.choice([0, 1, 3, 16]),
                           w=r.randint(1, self.workers), m=r.randint(1, 4), o=r.randint(0, 30))

    def send(self, line):
        self.engine.send(line)
        time.sleep(self.random.uniform(0, 0.02))

    def go(self, line, positions):
        self.send("position " + self.random.choice(positions))
        self.sent += 1
        self.send(line)

    def interrupt(self):
        """What may come while a search runs and ends or leaves it, without a second reply."""
        for _ in range(self.random.randint(0, 3)):
            self.send(self.random.choice(["isready", "position startpos", "uci", "ponderhit", "xyzzy",
                                          self.fill(self.random.choice(OPTIONS))]))

    def round(self):
        kind = self.random.randint(0, 4)
        if kind == 0:
            self.go(self.fill(self.random.choice(TIMED)), POSITIONS)
            self.interrupt()
        elif kind == 1:
            # Nothing else ends this search than what is sent here.
            self.go("go infinite", ENDLESS)
            self.send(self.random.choice(["stop", self.fill(self.random.choice(OPTIONS[:2])), "ucinewgame"]))
        elif kind == 2:
            self.go("go ponder wtime 50 btime 50", ENDLESS)
            self.send(self.random.choice(["stop", "ponderhit"]))
        elif kind == 3:
            for _ in range(self.random.randint(2, 5)):
                self.go(self.fill(self.random.choice(TIMED + ["go infinite", "go ponder"])), ENDLESS)
            self.send("position startpos")
            self.sent += 1
            self.send("go depth 2")
        else:
            self.go("go ponder", ENDLESS)
            self.interrupt()
            self.go("go depth 3", ENDLESS)

    def settle(self):
        """Everything asked for is answered, and nothing more."""
        deadline = time.monotonic() + 15
        while self.replies < self.sent:
            line = self.engine.read_line(max(0.0, deadline - time.monotonic()))
            self.count(line)
        self.engine.send("isready")
        while True:
            line = self.engine.read_line(15)
            self.count(line)
            if line == "readyok" and self.engine.lines.empty():
                break
        assert self.replies == self.sent, (self.sent, self.replies, self.engine.seen[-30:])

    def count(self, line):
        assert line is not None, ("the engine ended", self.engine.seen[-10:])
        self.replies += line.startswith("bestmove")


def main():
    rounds = int(sys.argv[1]) if len(sys.argv) > 1 else 60
    workers = int(sys.argv[2]) if len(sys.argv) > 2 else 4
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    with tempfile.TemporaryDirectory() as folder:
        engine = Engine("-nolog", folder=folder)
        storm = Storm(engine, seed, workers)
        for _ in range(rounds):
            storm.round()
            storm.settle()
        assert engine.quit() == 0
    print(f"{rounds} rounds, {storm.sent} searches, {storm.replies} replies")


if __name__ == "__main__":
    main()
