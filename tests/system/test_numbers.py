"""Numbers of any size from everywhere: options and limits of UCI, the console, the command line, suites, games and
player files. The undefined behaviour sanitizer watches that none overflows."""
import os
import re
import tempfile
import unittest

from program import ON_NODE, Program, run

NUMBERS = ["-1", "0", "1", "127", "128", "-129", "32768", "-32769", "2147483647", "-2147483648", "2147483648",
           "9223372036854775807", "-9223372036854775808", "9223372036854775808", "1" + "0" * 60, "1e400", "-1e400",
           "nan", "inf", "0x7f", "--1", "+1", ""]

# Options with a number: how the value is told, and the lowest and highest. A large table costs nothing until it is used.
OPTIONS = {"Hash": ("Hash size set to {}M bytes", 0, 2000 if ON_NODE else 8192), "Threads": ("Threads set to {}", 1, 64),
           "MultiPV": ("MultiPV set to {}", 1, 20), "Communication Overhead": ("Communication Overhead set to {}", 0, 5000)}
LIMITS = ["wtime", "btime", "winc", "binc", "movestogo", "depth", "nodes", "movetime", "mate",
          "wtime 100 btime 100 movestogo", "wtime 100 btime 100 winc"]
CONSOLE = ["level {0} {0} {0}", "level {0} {0}:{0} {0}", "depth {0}", "time {0}", "ponder {0}", "noise {0}", "hash {0}",
           "trace 0{0}", "debug {0}", "multipv {0}", "jump {0}", "load x {0}", "set SE {0}", "tune x {0}", "perft x{0}",
           "debug 0", "trace 0", "depth 2", "mv", "multipv 1", "noise 9999", "new"]


class Numbers(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = temporary.name

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="ascii") as file:
            file.write(text)

    def lines(self, *arguments, script=""):
        return run("-nolog", *arguments, script=script, folder=self.folder)

    def test_options_are_clamped(self):
        program = Program("-nolog", "-hash", "1")
        for name, (told, low, high) in OPTIONS.items():
            for number in NUMBERS:
                program.send(f"setoption name {name} value {number}")
                value = int(re.match(r"\s*[-+]?\d+|", number).group() or 0)
                shown = program.wait_for("info string " + name)[-1]
                self.assertEqual(shown, "info string " + told.format(min(max(value, low), high)), number)
                program.send("go depth 2")
                program.wait_for("bestmove")
            program.send("setoption name Threads value 1", "setoption name Hash value 1")
        self.assertEqual(program.quit(), 0)

    def test_limits_of_a_search(self):
        """Every `go` gets its answer, by itself or from the next one."""
        script = "".join(f"position startpos{side}\ngo {word} {number}\ngo infinite\ngo depth 1\n"
                         for side in ["", " moves e2e4"] for number in NUMBERS for word in LIMITS)
        replies = [line for line in self.lines(script=script) if line.startswith("bestmove")]
        self.assertEqual(len(replies), len(re.findall("^go ", script, re.M)))

    def test_an_interface_that_gives_no_time_at_all(self):
        for number in NUMBERS[:3] + NUMBERS[-1:]:
            lines = self.lines(script=f"go wtime {number} btime {number} winc {number} movestogo {number}\n")
            self.assertNotIn(lines[-1], ["bestmove null", "readyok"])

    def test_console(self):
        lines = self.lines("-c", "-quiet", script="".join(
            command.format(number) + "\n" for number in NUMBERS for command in CONSOLE) + "level 1 77 0\n")
        self.assertIn("set level to 1 moves in 77.00 seconds, inc 0.00", lines)

    def test_command_line(self):
        for flag in ["-noise", "-d", "-t", "-threads", "-hash"]:
            for number in NUMBERS:
                shown = self.lines(flag, number, script="go infinite\ngo depth 2\n")
                self.assertEqual(sum(line.startswith("bestmove") for line in shown), 2, (flag, number))

    def test_suites(self):
        board = "4k3/8/8/8/8/8/4P3/4K3 w - - bm e2e4; tune "
        self.write("in.epd", "".join(f"{board}{number}; ce {number}; {number}\n"
                                     for number in NUMBERS + ["1e308", "-1e308", "9e99", "-inf"]))
        for depth in ["0", "3"]:
            self.assertTrue(self.lines("-anepd", "in.epd", "-d", depth, "-quiet")[-2].startswith("avg error= "))
        # Slopes between such errors are no numbers to move a weight by.
        self.assertEqual(sum(line.startswith("pass= ") for line in self.lines("-tune", "in.epd")), 30)
        self.write("tune.epd", board + "1e308\n" + board + "-1e308\n")
        shown = self.lines("-c", script="".join(f"tune hung {number}\n" for number in NUMBERS))
        self.assertEqual(shown.count("done!"), len(NUMBERS) - 1)

    def test_games(self):
        moves = ["e4", "e5", "Nf3", "Nc6", "Bb5", "a6", "Ba4", "Nf6", "O-O", "Be7"]
        for n in NUMBERS:
            comments = [f"{n}/12", f"+{n}/{n}", f"[%eval {n},{n}]", f"{n}.{n}/1"]
            self.write("in.pgn", f'[Event "{n}"]\n[Round "{n}"]\n[Game {n}]\n[Result "{n}-{n}"]\n'
                       + " ".join(f"{n}. {move} {{{comments[i % 4]}}} ${n}" for i, move in enumerate(moves)))
            for kind in "123":
                self.lines("-scan_pgn" + kind, "in.pgn")
        self.write("book.pgn", "".join(f'[Result "1-0"]\n{n}. e4 ${n} {n}\n' for n in NUMBERS))
        self.assertIn("done", self.lines("-c", script="mkbook\nload in.pgn 1\n"))

    def test_players_at_the_limits_of_their_weights_play(self):
        weights = "pawn_value_op knight_mobility queen_value_en king_safety pawn_storm hung pinned tune PST_K_op".split()
        settings = "SE NMP_depth RP_depth CNP_depth LMP_depth LMR_depth".split()
        for number in ["0", "1", "-1", "127", "-128", "32767", "-32768"]:
            names = weights + (settings if len(number) < 5 else [])
            self.write("player2.par", "".join(f"{name} {number}\n" for name in names))
            self.assertIn("Starting match...", self.lines("-match", "out.pgn", script="quit\n"))


if __name__ == "__main__":
    unittest.main(failfast=True)
