"""Lines in masses, of any length and in any state of the program, and terminals."""
import os
import re
import shutil
import tempfile
import unittest

from program import HANG, ON_WINDOWS, ROOT, Program, run

LIMIT = 65536  # characters of a line
MATE_IN_FEW = "fen 7k/8/5K2/8/8/8/8/R7 w - -\ndepth 5\nself\n"


class Lines(unittest.TestCase):
    def setUp(self):
        self.program = Program("-nolog", "-hash", "1")

    def tearDown(self):
        self.assertEqual(self.program.quit(), 0)

    def answers(self, data):
        """What comes up to the answer to a line behind the bytes."""
        self.program.send_bytes(data + b"setoption name MultiPV value 5\n")
        return self.program.wait_for("info string MultiPV set to 5")[:-1]

    def test_a_flood_of_empty_lines_is_passed_over(self):
        self.assertEqual(self.answers(b"\n" * 3000000), [])

    def test_lines_in_one_chunk_are_all_handled(self):
        self.assertEqual(self.answers(b"isready\nfoo\nisready\n" * 50), ["readyok"] * 100)

    def test_the_queue_may_overflow_without_loss(self):
        lines = b"position startpos moves" + b" g1f3 g8f6 f3g1 f6g8" * 2500 + b"\nisready\n"
        self.assertEqual(self.answers(lines * 20), ["readyok"] * 20)

    def test_a_line_longer_than_the_greatest_is_refused_whole(self):
        for length in [LIMIT - 1, LIMIT, LIMIT + 1, LIMIT + 2, 2 * LIMIT, 2 * LIMIT + 1, 3 * LIMIT, 1000000]:
            with self.subTest(length):
                line = b"setoption name MultiPV value 3"
                answers = self.answers(line + b" " * (length - len(line) - 8) + b" isready\nisready\n")
                refused = f"info string line of more than {LIMIT} characters refused"
                self.assertEqual(answers, [refused if length > LIMIT else "info string MultiPV set to 3", "readyok"])


class End(unittest.TestCase):
    """The end of the input, in every state of the program."""

    def count(self, start, script, *arguments):
        return sum(line.startswith(start) for line in run("-nolog", *arguments, script=script))

    def test_a_search_without_an_end_is_stopped_and_answered(self):
        for search in ["go infinite", "go ponder", "go ponder depth 2", "go movetime 999999999999",
                       "go wtime 999999999999", "go infinite\nposition startpos moves e2e4"]:
            with self.subTest(search):
                replies = [line for line in run("-nolog", script="position startpos\n" + search) if "best" in line]
                self.assertEqual(len(replies), 1)
                self.assertNotEqual(replies[0], "bestmove null")

    def test_what_runs_is_finished(self):
        self.assertEqual(self.count("move= ", "an\n", "-c"), 1)
        self.assertEqual(self.count("move= null", MATE_IN_FEW, "-c"), 1)
        self.assertEqual(self.count("visited ", MATE_IN_FEW + "perft 2\n", "-c"), 1)
        self.assertEqual(self.count("move= ", "an\nedit\n#\n.\nbd\n", "-c"), 1)
        self.assertEqual(self.count("4k3/", "edit\n#\nb Ke8", "-c"), 1)

    def test_commands_within_a_command_come_to_an_end(self):
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "tune.epd"), "w", encoding="ascii") as file:
                file.write("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - bm b4f4;\n" * 40)
            script = "tune hung 20\n" + "tune hung 9\nperft 2\nev\nset\n" * 40 + "edit\n#\nw Ke1\nb Ke8\n.\n"
            lines = run("-c", "-nolog", script=script, folder=folder)
            self.assertEqual(lines.count("done!"), 41)
            self.assertEqual(sum(line.startswith("visited ") for line in lines), 40)
            self.assertIn("4k3/8/8/8/8/8/8/4K3 b - -", lines)


class Interruptions(unittest.TestCase):
    def searching(self, *lines):
        program = Program("-c", "-nolog", "-hash", "1")
        program.send("level 1 1000 0", *lines)
        program.wait_for("01] 03")
        return program

    def test_commands_that_need_a_free_engine_end_the_search(self):
        for command, reply in [("perft 1", "visited 20 "), ("tune x 1", "done!"), ("get x", "rnbq"), ("go 2", "move= "),
                               ("self", "Ply= "), ("mkbook", ""), ("xyz\ne4", "1. move e4")]:
            for search in ["an", "self"]:
                with self.subTest(command, search=search):
                    program = self.searching(search)
                    program.send(*command.split("\n"))
                    if not command.startswith("xyz"):
                        program.wait_for("move= ")
                    program.wait_for(reply)
                    self.assertEqual(program.quit(), 0)

    def test_commands_that_wait_for_an_analysis(self):
        for command, reply in [("ev", "eval= "), ("set SE 1", "SE set to 1"), ("book", "")]:
            for end in [".", "perft 1"]:  # or the end of the input
                with self.subTest(command, end=end):
                    program = self.searching("an")
                    program.send(command, "noise 0", end)
                    program.wait_for("move= ")
                    program.wait_for(reply)
                    if end == ".":
                        program.send("an", command)
                        program.close_input()
                        self.assertTrue(any(line.startswith("move= ") for line in program.rest()))
                        self.assertEqual(program.wait(), 0)
                    else:
                        program.wait_for("visited 20 ")
                        self.assertEqual(program.quit(), 0)

    def test_debug_shows_the_board_when_the_search_is_over(self):
        program = self.searching("debug 1", "an")
        program.send("e4")
        for start in ["move= ", "1. move e4", "eval= "]:
            program.wait_for(start)
        self.assertEqual(program.quit(), 0)

    def test_lines_wait_for_a_suite(self):
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "in.epd"), "w", encoding="ascii") as file:
                file.write("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - bm b4f4;\n" * 3)
            lines = run("-nolog", "-d", "8", "-anepd", "in.epd", folder=folder,
                        script="setoption name Hash value 2\nsetoption name Threads value 3\nposition startpos\n"
                               "go infinite\nisready\n")
            self.assertEqual(lines.count("readyok"), 1)
            self.assertFalse([line for line in lines if line.startswith("info string")])
            self.assertIn("3 / 3 correct best moves", lines)
            lines = run("-nolog", "-d", "60", "-anepd", "in.epd", folder=folder, script="quit\n")
            self.assertTrue(any(line.endswith("/ 1 correct best moves") for line in lines), lines)
            with open(os.path.join(folder, "in.epd"), "a", encoding="ascii") as file:
                file.write("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - tune 0.7;\n" * 200)
            run("-nolog", "-tune", "in.epd", folder=folder, script="quit\n")
            with open(os.path.join(folder, "tune.log"), encoding="ascii") as file:
                self.assertRegex(file.read().splitlines()[-1], r"pass \d+ broken off$")

    def test_a_tool_that_is_to_end_ends(self):
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "tune.epd"), "w", encoding="ascii") as file:
                file.write("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - tune 0.7;\n" * 200)
            # What has been found up to there says nothing.
            lines = run("-c", "-nolog", folder=folder, script="tune knight_value_op 40\nquit\n")
            self.assertFalse([line for line in lines if line.startswith("best= ")])
            # Lines that come when it is over change nothing of it.
            lines = run("-c", "-nolog", folder=folder, script="tune hung 2\nnoise 0\ndepth 3\n")
            self.assertFalse([line for line in lines if line.startswith("pos= ")])
            match = ["-nolog", "-match", "x.pgn"]
            run(*match, folder=folder, script="position startpos\ngo infinite\n" * 100 + "quit\n")
            if not ON_WINDOWS:  # the terminal would be Wine's
                program = Program(*match, folder=folder, terminal=True)
                program.wait_for("Starting match")
                program.close_input()
                self.assertEqual(program.wait(), 0)

    def test_nodes_are_counted_when_there_is_a_line_of_depth_2(self):
        program = Program("-nolog", "-hash", "1", "-threads", "4")
        for _ in range(20):
            program.send("position fen r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", "go nodes 200")
            lines = program.wait_for("bestmove")
            self.assertTrue([line for line in lines if line.startswith("info depth 2 ")], lines)
        self.assertEqual(program.quit(), 0)


class Progress(unittest.TestCase):
    def test_a_long_search_shows_how_it_goes_on_unless_it_is_to_be_quiet(self):
        state = r"info depth \d+ time \d+ nodes \d+ nps \d+ hashfull \d+$"
        move = r"info currmove [a-h][1-8][a-h][1-8] currmovenumber \d+$"
        programs = [Program("-nolog", "-hash", "1", *arguments) for arguments in ([], ["-threads", "2"], ["-quiet"])]
        one, two, _ = programs
        for program in programs:
            program.send("position fen 8/p4k2/1p3p2/3p1Pp1/P2P2P1/1P2K3/8/8 w - -", "go infinite")
        for program in (one, two):
            while "hashfull" not in program.wait_for("info ")[-1]:
                pass
        one.wait_for("info currmove")
        for program, form in zip(programs, [state + "|" + move, state, "never"]):
            program.send("stop")
            program.wait_for("bestmove")
            lines = [line for line in program.seen if line.startswith("info ")]
            self.assertEqual([line for line in lines if not re.match(form, line) and (form == "never" or " pv " not in line)], [])
            self.assertEqual(program.quit(), 0)


class Chance(unittest.TestCase):
    def test_the_book_chooses_anew_in_every_program(self):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(os.path.join(ROOT, "tests/data/book/choice.opn"), os.path.join(folder, "vrel.opn"))
            shown = {tuple(run("-c", "-nolog", script="book\n", folder=folder)) for _ in range(6)}
            self.assertGreater(len(shown), 1)


@unittest.skipIf(ON_WINDOWS, "the terminal would be Wine's")
class Terminal(unittest.TestCase):
    def setUp(self):
        self.program = Program("-c", "-nolog", "-hash", "1", terminal=True)
        self.program.wait_for("white")

    def test_half_a_line_keeps_nobody_from_thinking(self):
        self.program.send("an")
        self.program.send_bytes(b"e2")
        self.program.wait_for("01] 05")
        self.program.send("e4")
        self.program.wait_for("1. move e2e4")
        self.assertEqual(self.program.quit(), 0)

    def test_the_end_of_file_key_ends_the_program(self):
        self.program.close_input()
        self.assertEqual(self.program.wait(), 0)

    def test_a_terminal_that_goes_away_ends_the_program(self):
        self.program.send("an")
        self.program.wait_for("01] 03")
        for end in (self.program.to, self.program.out):
            os.close(end)
        self.program.process.wait(HANG)


if __name__ == "__main__":
    unittest.main(failfast=True)
