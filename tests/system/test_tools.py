"""The offline tools as a user runs them, and the way from a match to tuned weights."""
import os
import re
import subprocess
import tempfile
import time
import unittest

from vrel_process import HANG, Engine

SUITE = """r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - bm Bxa6; tune 0.6;
6k1/5ppp/8/8/8/8/8/K3R3 w - - bm Re8+ ; id "mate"; tune 1.0;
# a comment that is as long as a position
8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - bm b4f4;
rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - bm dc=Q;
k7/2Q5/8/8/8/8/8/K7 b - - tune 0.5;
"""


class ToolCase(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = self.temporary.name

    def tearDown(self):
        self.temporary.cleanup()

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="ascii") as file:
            file.write(text)

    def read(self, name):
        with open(self.path(name), encoding="ascii") as file:
            return file.read()

    def run_tool(self, *arguments, script=""):
        result = subprocess.run([os.environ["VREL"], "-nolog", "-hash", "4", *arguments], input=script.encode(),
                                check=False, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=10 * HANG,
                                cwd=self.folder)
        self.assertIn(result.returncode, (0, 1))
        return result.stdout.decode("latin-1")


class Suites(ToolCase):
    def check_summary(self, depth, shown, positions):
        """Every figure of the summary against the lines of the single positions."""
        moves = re.findall(r"^move= (\S+), time= (\S+), score= (-?\d+), nodes= (\d+), \d+K nps$", shown, re.M)
        self.assertEqual(len(moves), positions)
        nodes = sum(int(row[3]) for row in moves)
        spent = sum(float(row[1]) for row in moves)
        targets = [float(m.group(1)) if (m := re.search("tune (.{1,7})", line.replace(";", " "))) else 0.5
                   for line in re.findall(r"^pos= \d+\n(.*)$", shown, re.M)]
        error = sum(abs(target - 1 / (1 + 10 ** (-0.002625 * int(row[2])))) for target, row in zip(targets, moves))

        def figure(pattern):
            return re.search(pattern, shown, re.M).groups()

        total = float(figure(r"^total nodes= (\d+)$")[0])
        self.assertEqual(total, nodes)
        seconds = float(figure(r"^total time= (\d+\.\d\d) seconds$")[0])
        self.assertAlmostEqual(seconds, spent, delta=0.006 + 0.0005 * positions)
        self.assertAlmostEqual(float(figure(r"^avg nodes= (\d+\.\d)$")[0]), nodes / positions, delta=0.051)
        rate = float(figure(r"^node_rate= (\d+)$")[0])
        self.assertLessEqual(total / (seconds + 0.006 + 0.01), rate + 1)
        self.assertGreaterEqual(total / (max(seconds - 0.006, 0) + 0.01), rate - 1)
        self.assertAlmostEqual(float(figure(r"^avg error= (\d+\.\d{5})$")[0]), error / positions, delta=0.00001)
        self.assertGreaterEqual(float(figure(r"^avg bf= (\d+\.\d\d)$")[0]), 1.0)
        if depth <= 1:
            self.assertEqual(figure(r"^avg depth= (\d+\.\d)$")[0], "0.0" if depth == 0 else "1.0")
        return figure(r"^(\d+) / (\d+) correct best moves$"), [row[0] for row in moves]

    def test_every_figure_of_the_summary(self):
        self.write("suite.epd", SUITE)
        for depth in (0, 1, 6):
            with self.subTest(depth=depth):
                shown = self.run_tool("-anepd", "suite.epd", "-d", str(depth))
                (correct, positions), moves = self.check_summary(depth, shown, 5)
                self.assertEqual(positions, "5")
                if depth == 0:
                    self.assertEqual((correct, moves), ("0", ["null"] * 5))
                    self.assertFalse(os.path.exists(self.path("unsolved.epd")))
                    continue
                expected = ["e2a6", "e1e8", "b4f4", "d7c8q", "null"]
                solved = [move == best for move, best in zip(moves, expected)]
                self.assertEqual(int(correct), sum(solved))
                self.assertTrue(solved[1] and solved[4])  # the mate, and no move where there is none
                lines = [line for line in SUITE.splitlines() if not line.startswith("#")]
                unsolved = [line for line, found in zip(lines, solved) if not found]
                self.assertEqual(self.read("unsolved.epd").splitlines(), unsolved)

    def test_a_quiet_run_shows_the_summary_alone(self):
        self.write("suite.epd", SUITE)
        shown = self.run_tool("-anepd", "suite.epd", "-d", "2", "-quiet").splitlines()
        self.assertEqual(shown[0], "Analyzing suite.epd...")
        self.assertEqual([line.split("=")[0] for line in shown[2:]],
                         ["total nodes", "total time", "avg depth", "avg nodes", "node_rate", "avg bf", "avg error", ""])

    def test_two_threads_and_a_time_limit(self):
        self.write("suite.epd", SUITE)
        shown = self.run_tool("-anepd", "suite.epd", "-d", "8", "-threads", "2", "-quiet")
        self.assertIn("/ 5 correct best moves\n", shown)
        self.write("suite.epd", SUITE.splitlines()[0])
        shown = self.run_tool("-anepd", "suite.epd", "-t", "0.2", "-quiet")
        self.assertIn("1 / 1 correct best moves\n", shown)

    def test_quit_ends_a_run_in_order(self):
        self.write("suite.epd", SUITE * 200)
        engine = Engine("-nolog", "-hash", "4", "-anepd", "suite.epd", "-d", "8", "-threads", "2", folder=self.folder)
        engine.wait_for("pos= 3")
        engine.send("quit")
        self.assertEqual(engine.wait(), 0)
        counts = [line for line in engine.seen if line.endswith("correct best moves")]
        positions = len([line for line in engine.seen if line.startswith("pos= ")])
        self.assertEqual(len(counts), 1)
        self.assertEqual(int(counts[0].split()[2]), positions)
        self.assertLess(positions, 1000)


class BadFiles(ToolCase):
    def test_a_match_needs_a_file_and_a_second_player_it_can_read(self):
        self.assertIn("can't open folder/x.pgn\n", self.run_tool("-match", "folder/x.pgn"))
        self.write("player2.par", "hung -20\nqueen_value 900\n")
        shown = self.run_tool("-match", "match.pgn")
        self.assertIn("player2.par, line 2: ", shown)
        self.assertFalse(os.path.exists(self.path("match.pgn")))


class RoundTrip(ToolCase):
    def play(self, games):
        engine = Engine("-nolog", "-hash", "1", "-match", "match.pgn", folder=self.folder)
        # Positions set up meanwhile are none of the match's business.
        engine.send("position fen 4k3/8/8/8/8/8/8/4K2R w - -", "ucinewgame")
        deadline = time.monotonic() + 10 * HANG
        while time.monotonic() < deadline:
            time.sleep(0.2)
            if os.path.exists(self.path("match.pgn")) and self.read("match.pgn").count("[Event ") >= games:
                break
        engine.send("quit")
        self.assertEqual(engine.wait(), 0)
        return engine.seen

    def test_a_match_gives_positions_and_these_tune(self):
        self.write("player2.par", "# heavier knights\nknight_value_op 345\nknight_value_en 335\n")
        shown = self.play(3)
        self.assertIn("Player2: knight_value_op 335 -> 345", shown)
        self.assertIn("Starting match...", shown)
        pgn = self.read("match.pgn")
        games = pgn.count("[Event selfplay]\n")
        self.assertGreaterEqual(games, 3)
        self.assertTrue(pgn.endswith("\n\n"))
        self.assertRegex(pgn, r'\[White "Player[12]"\]\n\[Black "Player[12]"\]\n\[Result "(1-0|0-1|1/2-1/2)"\]\n'
                              r'[a-h][1-8][a-h][1-8] \{-?\d+\.\d\d/\d+\}   [a-h][1-8]')

        scanned = self.run_tool("-scan_pgn2", "match.pgn")
        epd = self.read("tmp.epd").splitlines()
        positions = len([line for line in epd if line])
        self.assertIn(f"games= {games}, positions= {positions}\n", scanned)
        self.assertGreater(positions, 0)
        for line in epd[:-1]:
            self.assertRegex(line, r"^\S+ [wb] \S+ \S+ bm \S+; ce -?\d+; tune 0\.\d{3};$")

        # Every game could be replayed to its end, but for promotions, which its moves don't tell.
        self.run_tool("-scan_pgn1", "match.pgn")
        replayed = len(re.findall(r"^.{6}[a-h][1-8][a-h][1-8]", self.read("tmp.pgn"), re.M))
        self.assertGreater(replayed, 0.5 * len(re.findall(r"[a-h][1-8][a-h][1-8] \{", pgn)))

        self.run_tool("-tune", "tmp.epd")
        errors = [float(line[5:]) for line in self.read("tune.log").splitlines() if line.startswith("err= ")]
        self.assertEqual(len(errors), 31)
        self.assertLess(errors[-1], errors[0])


if __name__ == "__main__":
    unittest.main()
