"""Numbers of any size from everywhere: options and limits of UCI, the command line, suites, games and player files.

The console's are in test_console.py. The undefined behaviour sanitizer watches that none overflows.
"""
import os
import re
import subprocess
import tempfile
import unittest

from vrel_process import HANG, Engine

NUMBERS = ["-1", "0", "1", "2147483647", "-2147483648", "2147483648", "9223372036854775807", "-9223372036854775808",
           "9223372036854775808", "1" + "0" * 60, "1e400", "-1e400", "nan", "0x7f", "--1", "+1", ""]

# Options with a number: what is shown for the lowest and the highest. A large table costs nothing until it is used.
OPTIONS = {"Hash": ("Hash size set to 0M bytes", "Hash size set to 8192M bytes"),
           "Threads": ("Threads set to 1", "Threads set to 64"),
           "MultiPV": ("MultiPV set to 1", "MultiPV set to 20"),
           "Communication Overhead": ("Communication Overhead set to 0", "Communication Overhead set to 5000")}
LIMITS = ["wtime", "btime", "winc", "binc", "movestogo", "depth", "nodes", "movetime", "mate"]
FLAGS = ["-noise", "-d", "-t", "-threads", "-hash"]

WEIGHTS = """pawn_value_op pawn_value_en knight_value_op knight_value_en bishop_value_op bishop_value_en rook_value_op
rook_value_en queen_value_op queen_value_en bishop_pair knight_mobility bishop_mobility rook_mobility queen_mobility
ppawn_r7 pawn_doubled pawn_backward pawn_isolated pawn_weak pawn_candidate knight_outpost bishop_trapped rook_open_file
rook_half_open_file rook_rank7 rook_trapped queen_rank7 king_safety pawn_shield pawn_storm PST_P_op PST_P_en PST_N_op
PST_N_en PST_B_op PST_B_en PST_R_op PST_Q_op PST_Q_en PST_K_op PST_K_en hung pinned tune""".split()
SETTINGS = "SE NMP_depth RP_depth CNP_depth LMP_depth LMR_depth".split()


class Uci(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.engine = Engine("-nolog", "-hash", "1", folder=self.folder.name)

    def tearDown(self):
        self.assertEqual(self.engine.quit(), 0)

    def test_options_are_clamped(self):
        for name, (lowest, highest) in OPTIONS.items():
            for number in NUMBERS:
                with self.subTest(name, number=number):
                    self.engine.send(f"setoption name {name} value {number}")
                    shown = self.engine.wait_for("info string " + name)[-1]
                    value = int(re.match(r"\s*[-+]?\d+|", number).group() or 0)
                    low, high = (int(re.search(r"\d+", text).group()) for text in (lowest, highest))
                    self.assertEqual(shown, "info string " + re.sub(r"\d+", str(min(max(value, low), high)), lowest))
                    self.engine.send("go depth 2")
                    self.engine.wait_for("bestmove")
            self.engine.send("setoption name Threads value 1", "setoption name Hash value 1")

    def test_limits_of_a_search(self):
        """Every `go` gets its answer, by itself or from the next one."""
        count = 0
        for side in ["", " moves e2e4"]:
            for number in NUMBERS:
                for word in LIMITS + ["wtime 100 btime 100 movestogo", "wtime 100 btime 100 winc"]:
                    self.engine.send("position startpos" + side, f"go {word} {number}", "go infinite", "go depth 1")
                    count += 3
        replies = 0
        while replies < count:
            replies += self.engine.read_line().startswith("bestmove")
        self.assertEqual(self.engine.ready(), ["readyok"])

    def test_an_interface_that_gives_no_time_at_all(self):
        for number in ["-1", "0", "1", "-9223372036854775809"]:
            self.engine.send("position startpos", f"go wtime {number} btime {number} winc {number} movestogo {number}")
            self.assertNotEqual(self.engine.wait_for("bestmove")[-1], "bestmove null")


class Elsewhere(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def write(self, name, text):
        with open(os.path.join(self.folder.name, name), "w", encoding="ascii") as file:
            file.write(text)

    def run_engine(self, *arguments, script=""):
        result = subprocess.run([os.environ["VREL"], "-nolog", *arguments], input=script.encode(), check=False,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=3 * HANG,
                                cwd=self.folder.name)
        self.assertEqual((result.returncode, result.stderr), (0, b""), arguments)
        return result.stdout.decode()

    def test_command_line(self):
        for flag in FLAGS:
            for number in NUMBERS:
                with self.subTest(flag, number=number):
                    shown = self.run_engine(flag, number, script="go infinite\ngo depth 2\n")
                    self.assertEqual(shown.count("bestmove"), 2)
        self.run_engine("-d", "-1", "-t", "1e999", "-hash", "0", "-threads", "64", script="go\ngo depth 1\n")

    def test_suites(self):
        board = "4k3/8/8/8/8/8/4P3/4K3 w - - bm e2e4; tune "
        self.write("in.epd", "".join(f"{board}{number}; ce {number}; {number}\n"
                                     for number in NUMBERS + ["1e308", "-1e308", "9e99", "inf", "-inf"]))
        for depth in ["0", "3"]:
            self.assertIn("avg error= ", self.run_engine("-anepd", "in.epd", "-d", depth, "-quiet"))
        # Slopes between such errors are no numbers to move a weight by.
        self.assertEqual(self.run_engine("-tune", "in.epd").count("pass= "), 30)
        self.write("tune.epd", board + "1e308\n" + board + "-1e308\n")
        shown = self.run_engine("-c", script="".join(f"tune hung {number}\n" for number in NUMBERS))
        self.assertEqual(shown.count("done!"), len(NUMBERS) - 1)

    def test_games(self):
        moves = ["e4", "e5", "Nf3", "Nc6", "Bb5", "a6", "Ba4", "Nf6", "O-O", "Be7"]
        for number in NUMBERS:
            comments = [f"{number}/12", f"+{number}/{number}", f"[%eval {number},{number}]", f"{number}.{number}/1"]
            self.write("in.pgn", f'[Event "{number}"]\n[Round "{number}"]\n[Game {number}]\n[Result "{number}-{number}"]\n'
                       + " ".join(f"{number}. {move} {{{comments[i % 4]}}} ${number}" for i, move in enumerate(moves)))
            for kind in "123":
                self.run_engine("-scan_pgn" + kind, "in.pgn")
        self.write("book.pgn", "".join(f'[Result "1-0"]\n{number}. e4 ${number} {number}\n' for number in NUMBERS))
        self.assertIn("done", self.run_engine("-c", script=f"mkbook\nload in.pgn {number}\n"))

    def test_players(self):
        """Weights and settings at their limits play; beyond them the file is refused."""
        for number, fits in [("0", True), ("1", True), ("-1", True), ("127", True), ("-128", True), ("32767", False),
                             ("-32768", False), ("32768", None), ("-32769", None), ("9223372036854775808", None),
                             ("1e3", None), ("0x10", None)]:
            with self.subTest(number):
                settings = SETTINGS if fits else []
                self.write("player2.par", "".join(f"{name} {number}\n" for name in WEIGHTS + settings))
                shown = self.run_engine("-match", "out.pgn", script="quit\n")
                self.assertEqual("no valid number" in shown, fits is None)


if __name__ == "__main__":
    unittest.main()
