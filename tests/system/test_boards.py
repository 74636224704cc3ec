"""Boards that no game reaches and games without end, through everything that a person or an interface can ask."""
import os
import tempfile
import unittest

from program import ROOT, Program, run

PATIENCE = 0.1  # seconds for a search by depth, before it is told to stop
SHUFFLING = " g1f3 g8f6 f3g1 f6g8" * 300


def boards():
    for name in ["boards.txt", "positions.txt"]:
        with open(os.path.join(ROOT, "tests/data", name), encoding="ascii") as file:
            for line in file:
                fen = line.split("  #")[0]
                crowded = sum(c in "QRBNqrbn" for c in fen.split()[0]) > 16
                if not line.startswith("#") and (name == "boards.txt" or crowded):
                    yield fen.strip()


def search(program, line, stop, answer):
    """A search by depth, which a crowded board may keep busy for too long."""
    program.send(line)
    while (shown := program.read_line(PATIENCE)) is not None:
        if shown.startswith(answer):
            return
    program.send(stop)
    program.wait_for(answer)


class Boards(unittest.TestCase):
    def test_console(self):
        with tempfile.TemporaryDirectory() as folder:
            program = Program("-c", "-nolog", "-hash", "1", "-threads", "2", folder=folder)
            for fen in boards():
                program.send("fen " + fen, "bd", "swap", "ev")
                program.wait_for("eval= ")
                program.send("perft 2", "trace 2")
                program.wait_for("visited ")
                search(program, "go 6", ".", "move= ")
                program.send("trace 0", "book")
            self.assertEqual(program.quit(), 0)

    def test_searches_with_two_workers(self):
        program = Program("-nolog", "-hash", "1", "-threads", "2")
        for position in [f"fen {fen}" for fen in boards()] + ["startpos moves" + SHUFFLING]:
            program.send("position " + position, "go infinite", "stop")  # takes the limit of depth off
            program.wait_for("bestmove")
            program.send("go movetime 30")
            program.wait_for("bestmove")
            search(program, "go depth 6", "stop", "bestmove")
            program.ready()
        self.assertEqual(program.quit(), 0)

    def test_tools(self):
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "in.epd"), "w", encoding="ascii") as file:
                file.write("".join(f"{fen} bm a1a2; tune 0.7;\n" for fen in boards()))
            with open(os.path.join(folder, "book.pgn"), "w", encoding="ascii") as file:
                file.write(f'[Event "long"]\n[Result "1-0"]\n{SHUFFLING}\n\n' * 3)
            for arguments in ["-anepd in.epd -d 0", "-anepd in.epd -d 1", "-anepd in.epd -t 0.02 -threads 2",
                              "-scan_pgn1 book.pgn", "-scan_pgn2 book.pgn", "-scan_pgn3 book.pgn"]:
                run("-nolog", "-quiet", *arguments.split(), folder=folder)
            program = Program("-nolog", "-hash", "1", "-tune", "in.epd", folder=folder)
            program.wait_for("p0=")
            self.assertEqual(program.quit(), 0)
            lines = run("-c", "-nolog", folder=folder, script="mkbook\nload book.pgn 2\nsave\njump 500\nev\n")
            self.assertIn("done", lines)


if __name__ == "__main__":
    unittest.main(failfast=True)
