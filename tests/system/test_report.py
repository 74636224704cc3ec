"""Reports on long runs: their figures against worked ones, what they take from files, and files that are no results."""
import csv
import os
import random
import subprocess
import sys
import tempfile
import unittest

from program import ROOT, run

sys.path.insert(0, os.path.join(ROOT, "scripts"))
from reports import elo, engine, games, tuning  # noqa: E402

REPORT = os.path.join(ROOT, "scripts/report")
SUITE = os.path.join(ROOT, "tests/data/tactics.epd")
CAN_DRAW = subprocess.run(["/usr/bin/python3", "-c", "import matplotlib"], stderr=subprocess.DEVNULL,
                          check=False).returncode == 0


def game(white, black, result, moves="1. e4 {0.10/3} e5 {0.20/3}"):
    return f'[Event "x"]\n[White "{white}"]\n[Black "{black}"]\n[Result "{result}"]\n\n{moves} {result}\n\n'


class Figures(unittest.TestCase):
    def test_strength_and_share_as_tables_of_expected_scores_have_them(self):
        for difference, share in [(0, 0.5), (100, 0.64), (200, 0.76), (400, 10 / 11)]:
            self.assertAlmostEqual(elo.expected(difference), share, 2)
            self.assertAlmostEqual(elo.difference(elo.expected(difference)), difference, 6)
        self.assertAlmostEqual(elo.difference(0.75), 190.85, 2)
        self.assertEqual(elo.difference(1), float("inf"))

    def test_error_bars_as_of_polls(self):
        for games_played, margin in [(100, 0.098), (400, 0.049), (1000, 0.031)]:
            self.assertAlmostEqual(elo.margin(games_played // 2, 0, games_played // 2), margin, 3)
        # Half of the games drawn: half of the variance.
        self.assertAlmostEqual(elo.margin(250, 500, 250), elo.margin(500, 0, 500) / 2**0.5, 9)

    def test_superiority_as_it_was_worked_out_for_births(self):
        # 251,527 boys and 241,945 girls in Paris, 1745 to 1770: the chance that girls are no rarer.
        self.assertAlmostEqual(elo.superiority(241945, 251527) * 1e42, 1.146, 3)
        self.assertAlmostEqual(elo.superiority(3, 0), 15 / 16)
        self.assertAlmostEqual(elo.superiority(20, 20), 0.5)

    def test_the_sequential_test_as_a_handbook_of_quality_control_works_it_out(self):
        # Shares of 0.01 and 0.10, alpha 0.05, beta 0.10: yes up to -0.939 + 0.0397 n, no from 1.205 + 0.0397 n.
        few, many = elo.difference(0.01), elo.difference(0.10)
        low, high = elo.sprt_bounds(0.05, 0.10)
        for n in (12, 23, 24, 40, 49, 50, 100):
            for found in range(8):
                ratio = elo.likelihood_ratio(found, 0, n - found, few, many)
                self.assertEqual(ratio <= low, found <= -0.939 + 0.0397 * n, (n, found))
                self.assertEqual(ratio >= high, found >= 1.205 + 0.0397 * n, (n, found))

    def test_draws_carry_weight_in_the_sequential_test(self):
        even = elo.likelihood_ratio(100, 0, 100, 0, 10)
        self.assertLess(elo.likelihood_ratio(100, 800, 100, 0, 10), even)
        self.assertAlmostEqual(elo.likelihood_ratio(30, 50, 20, 0, 10), elo.likelihood_ratio(20, 50, 30, 0, -10), 6)
        # In long matches it comes close to that of a normal distribution.
        mean, variance = 0.55, 0.3 * 0.45**2 + 0.5 * 0.05**2 + 0.2 * 0.55**2
        low, high = elo.expected(0), elo.expected(5)
        normal = 100000 * (high - low) * (2 * mean - low - high) / (2 * variance)
        self.assertAlmostEqual(elo.likelihood_ratio(30000, 50000, 20000, 0, 5) / normal, 1, 1)


class Reports(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())
        return self.path(name)

    def report(self, *arguments, status=0):
        """What is printed; with a status of 1, the one line of complaint, and no file comes of it."""
        before = sorted(os.listdir(self.folder.name))
        done = subprocess.run([REPORT, *arguments], capture_output=True, text=True, cwd=self.folder.name, timeout=120,
                              check=False)
        self.assertEqual(done.returncode, status, done.stderr)
        if status:
            self.assertRegex(done.stderr, r"\Areport: .+\n\Z")
            self.assertEqual(sorted(os.listdir(self.folder.name)), before)
        return done.stderr if status else done.stdout

    def test_a_match(self):
        played = (game("A", "B", "1-0") * 6 + game("B", "A", "1-0", "1. d4 d5") * 2 + game("B", "A", "1/2-1/2") * 2 +
                  game("A", "B", "*"))
        text = self.report(self.write("m.pgn", played), "--elo0", "0", "--elo1", "200")
        for line in ["m.pgn: 10 games, 2 of them different",
                     "A                       10      6      2      2  0.700     1.000     0.250",
                     "share of A: 0.700 +/- 0.248 (95 %)", "difference in Elo: +147.2", "the stronger one: 91.0 %",
                     "by 200 rather than by 0 Elo: not decided yet", "white won 8, black won 0, 2 drawn",
                     "left out: 1 without"]:
            self.assertIn(line, text)

    def test_a_tuning_and_the_weights_of_its_best_pass_for_a_match(self):
        epd = ("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKB1R w KQkq - tune 0.1;\n"
               "4k3/pp6/8/8/8/8/6PP/R3K3 w - - tune 1.0;\n")
        run("-tune", self.write("in.epd", epd), folder=self.folder.name)
        with open(self.path("tune.log"), encoding="ascii") as file:
            log = file.read()
        self.assertIn("30 passes", self.report("tune.log", "--write", "player2.par"))
        told = run("-match", "m.pgn", script="quit\n", folder=self.folder.name)
        passes = tuning.Tuning("tune.log", log)
        changed = [row for row in passes.changes(passes.best) if row[3]]
        self.assertTrue(changed)
        self.assertEqual({f"Player2: {name} {start} -> {end}" for name, start, end, _ in changed},
                         {line for line in told if line.startswith("Player2:")})
        errors = [float(line[5:]) for line in log.split("\n") if line.startswith("err= ")]
        self.assertEqual(passes.best, errors.index(min(errors)))
        os.unlink(self.path("player2.par"))
        cut = self.write("cut.log", log[:log.rindex("** param_30")])
        self.assertIn("cut off behind pass 29", self.report(cut, "--write", "player2.par", status=1))
        self.report(self.write("early.log", log[:300]), status=1)

    def test_a_suite_by_theme_and_as_a_table(self):
        with open(SUITE, encoding="ascii") as file:
            lines = file.read().splitlines()
        themed = [line.split("id")[0] + f'id "{"fork" if i % 2 else "pin, deep"} {i}";'
                  for i, line in enumerate(lines[:20])]
        self.write("in.epd", "\n".join(themed) + "\n")
        output = run("-nolog", "-anepd", "in.epd", "-d", "5", folder=self.folder.name)
        self.write("suite.txt", "\n".join(output))
        text = self.report("suite.txt", "--csv", "table.csv")
        solved = next(int(line.split()[0]) for line in output if line.endswith("correct best moves"))
        self.assertIn(f"suite.txt: {solved} of 20 solved", text)
        self.assertRegex(text, r"pin, deep +\d+ +10\nfork +\d+ +10\n")
        with open(self.path("table.csv"), encoding="ascii", newline="") as file:
            rows = list(csv.DictReader(file))
        self.assertEqual(sum(int(row["solved"]) for row in rows), solved)
        self.assertEqual((rows[0]["id"], rows[0]["depth"]), ("pin, deep 0", "5"))
        os.unlink(self.path("table.csv"))
        cut = self.write("cut.txt", "\n".join(output[:-16]))
        self.assertIn("cut off behind position 19", self.report(cut, status=1))
        self.write("unsolved.epd", "")
        self.assertIn("another run", self.report("suite.txt", status=1))
        os.unlink(self.path("unsolved.epd"))
        self.assertIn("No such file", self.report("suite.txt", status=1))

    def test_positions_of_a_game_are_those_that_its_moves_lead_to(self):
        with open(os.path.join(ROOT, "tests/data/pgn/site.pgn"), encoding="ascii") as file:
            path = self.write("in.pgn", file.read() + game("A", "B", "*", "Nf3 Nf6 Ng1 Ng8 " * 195))
        played = games.read(path)
        boards = games.positions(played)
        for one, fens in zip(played, boards):
            console = run("-c", script="\n".join(move.text for move in one.moves) + "\n")
            self.assertEqual(fens, engine.fens(console))

    @unittest.skipUnless(CAN_DRAW, "matplotlib isn't installed, so no pictures are drawn")
    def test_pictures(self):
        self.write("m.pgn", game("A", "B", "1-0") * 12 + game("B", "A", "1-0") * 12)
        self.report("m.pgn", "--plot", "m.svg")
        self.report(os.path.join(ROOT, "tests/data/pgn/site.pgn"), "--plot", "g.PNG")
        with open(self.path("m.svg"), encoding="utf-8") as svg, open(self.path("g.PNG"), "rb") as png:
            self.assertIn("share of A", svg.read())
            self.assertTrue(png.read().startswith(b"\x89PNG"))

    def test_what_is_no_result_is_told_and_leaves_no_file(self):
        cases = {"empty": b"", "blank": b"\n \n", "noise": random.Random(1).randbytes(20000), "folder": None,
                 "missing": None, "words": b"This is a letter.\n",
                 "tags alone": b'[Event "x"]\n[Result "1-0"]\n\n1-0\n',
                 "foreign": b'[Event "x"]\n[Variant "Atomic"]\n\n1. e4 e5 *\n',
                 "no legal move": b'[Event "x"]\n\n1. e5 e5 *\n',
                 "log": b"** param_0, value= 80\n", "error alone": b"** param_\nerr= 0.12345\n"}
        os.mkdir(self.path("folder"))
        for name, content in cases.items():
            with self.subTest(name):
                if content is not None:
                    self.write(name, content)
                self.report(name, "--page", "page.html", status=1)

    def test_positions_that_are_none(self):
        for fen in ["", "x", "8/8/8/8/8/8/8/8 w - -", "4k3/8/8/8/8/8/8/8 w - -", "kk6/8/8/8/8/8/8/K7 w - -", 
                    "8/8/8/8/8/8/8/K1k5 w - -\nquit", "ü/8/8/8/8/8/8/K1k5 w - -", "K1k5/" * 40]:
            with self.subTest(fen):
                self.report("--position", fen, "--page", "page.html", status=1)

    def test_what_does_not_go_with_a_result_is_told(self):
        self.write("m.pgn", game("A", "B", "1-0"))
        for arguments in [("--write", "x"), ("--csv", "x"), ("--game", "2"), ("--page", "nowhere/page.html")]:
            with self.subTest(arguments):
                self.report("m.pgn", *arguments, status=1)

    def test_games_without_scores_or_results_are_shown_all_the_same(self):
        text = self.report(self.write("m.pgn", game("A\x1b[31m", "B", "*", "1. e4 e5 2. Nf3") + game("A", "B", "*")))
        self.assertIn("A?[31m - B  *, 2 moves", text)
        self.assertIn("2. Nf3", text)


if __name__ == "__main__":
    unittest.main()
