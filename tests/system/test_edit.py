"""The dialogue that sets up a position piece by piece."""
import os
import subprocess
import tempfile
import unittest

from vrel_process import HANG

START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR"

# Name, lines of the dialogue, position afterwards.
DIALOGUES = [
    ("nothing", ["."], START + " w KQkq -"),
    ("words behind the dot", [". now"], START + " w KQkq -"),
    ("an empty board", ["#", "."], "8/8/8/8/8/8/8/8 w - -"),
    ("the side of the last line moves", ["#", "w Ke1 Rh1", "b Ke8", "."], "4k3/8/8/8/8/8/8/4K2R b K -"),
    ("a side alone", ["b", "."], START + " b KQkq -"),
    ("long words for the sides", ["#", "white Ke1", "black Ke8", "w", "."], "4k3/8/8/8/8/8/8/4K3 w - -"),
    ("letters of either case", ["#", "w pa2 Pb2 kC1 kc1", "."], "8/8/8/8/8/8/PP6/8 w - -"),
    ("a square is emptied", ["w Xa2 -b2", "."], "rnbqkbnr/pppppppp/8/8/8/8/2PPPPPP/RNBQKBNR w KQkq -"),
    ("a piece is replaced", ["b qd1", "."], "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBqKBNR b KQkq -"),
    ("a wrong square ends the line", ["#", "w Ka1 Pi2 Pb2", "."], "8/8/8/8/8/8/8/K7 w - -"),
    ("a short word ends the line", ["#", "w Ka1 P Pb2", "."], "8/8/8/8/8/8/8/K7 w - -"),
    ("other lines are passed over", ["#", "", "x Ka1", "quit", "   ", "."], "8/8/8/8/8/8/8/8 w - -"),
    ("rights need king and rook", ["w Xh1", "b Xe8", "."], "rnbq1bnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBN1 b Q -"),
    ("a foreign rook gives no right", ["b ra1 rh1", "."], "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/rNBQKBNr b kq -"),
    ("rights are never added", ["#", "w Ke1 Rh1 Ra1", "b Ke8 Ra8 Rh8", ".", "edit", "w Xh1 Rh1", "."],
     "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -"),
    ("the long line goes on", ["#", "w " + "Xa1 " * 18 + "Xa1  Kb1", "."], "8/8/8/8/8/8/8/8 w - -"),
    ("any number of kings", ["#", "w" + "".join(f" K{f}1 K{f}2" for f in "abcdefgh"), "."],
     "8/8/8/8/8/8/KKKKKKK1/KKKKKKKK w - -"),
]


class Edit(unittest.TestCase):
    def run_console(self, lines):
        with tempfile.TemporaryDirectory() as folder:
            result = subprocess.run([os.environ["VREL"], "-c", "-nolog", "-hash", "1"], cwd=folder, timeout=HANG,
                                    input="".join(line + "\n" for line in lines).encode(), check=True,
                                    stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(result.stderr, b"")
        return result.stdout.decode().splitlines()

    def test_dialogues(self):
        for name, lines, fen in DIALOGUES:
            with self.subTest(name):
                boards = [line for line in self.run_console(["edit", *lines]) if line.count("/") == 7]
                self.assertEqual(boards[-1], fen)

    def test_help_comes_first(self):
        lines = self.run_console(["edit", "."])
        at = lines.index(".                    end edit")
        self.assertEqual(lines[at - 3:at], ["", "", ""])
        self.assertEqual(lines[at + 1:at + 4], ["#                    clear board",
                                                "w  Pa2 Pb2 Kc2       white, pieces",
                                                "b  Pa7 Pb7 Kc7       black, pieces"])

    def test_the_past_of_the_game_is_gone(self):
        lines = self.run_console(["e2e4", "edit", ".", "undo", "bd"])
        boards = [line for line in lines if line.count("/") == 7]
        self.assertEqual(len(boards), 4)
        self.assertEqual(boards[1:], ["rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"] * 3)

    def test_a_search_goes_on_behind_it_and_is_reported_afterwards(self):
        lines = self.run_console(["an", "edit", "#", ".", "bd"])
        self.assertEqual(len([line for line in lines if line.startswith("move= ")]), 1)


if __name__ == "__main__":
    unittest.main()
