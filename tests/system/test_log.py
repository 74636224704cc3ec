"""The log file: what goes into it, when it is made, and who may have it."""
import os
import subprocess
import tempfile
import unittest

from vrel_process import HANG, Engine


class Log(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = os.path.join(self.folder.name, "vrel.log")

    def tearDown(self):
        self.folder.cleanup()

    def run_script(self, script, *arguments):
        result = subprocess.run([os.environ["VREL"], "-hash", "1", *arguments], input=script.encode(), check=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=HANG, cwd=self.folder.name)
        self.assertEqual(result.stderr, b"")
        return result.stdout.decode().splitlines()

    def log(self):
        with open(self.path, encoding="latin-1") as file:
            return file.read().splitlines()

    def test_every_start_begins_a_new_one(self):
        with open(self.path, "w", encoding="ascii") as file:
            file.write("old\n")
        self.assertEqual(self.run_script(""), [])
        self.assertEqual(self.log(), [])

    def test_it_holds_what_is_shown_and_how_a_search_starts(self):
        shown = self.run_script("isready\nposition startpos moves e2e4\ngo depth 2\n")
        self.assertEqual(shown[:2], ["CMD: isready", "readyok"])
        start = ["info string fen rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3",
                 "info string ply= 1, trg_time= 600.000 sec"]
        log = self.log()
        self.assertEqual([line for line in log if line not in start], shown)
        self.assertEqual([line for line in log if line in start], start)

    def test_an_interface_turns_it_off_and_on(self):
        shown = self.run_script("uci\nisready\nsetoption name Log value true\nisready\n")
        self.assertEqual(shown[0], "CMD: uci")
        self.assertEqual(shown[-5:],
                         ["uciok", "readyok", "info string Log set to 1", "CMD: isready", "readyok"])
        self.assertEqual(self.log()[-3:], shown[-3:])
        self.assertNotIn("uciok", self.log())

    def test_options_turn_it_off(self):
        for option in ["-nolog", "-quiet"]:
            self.assertEqual(self.run_script("isready\n", option), ["readyok"])
            self.assertEqual(self.log(), [])

    def test_it_shows_a_held_line_once(self):
        shown = self.run_script("go infinite\nsetoption name Hash value 2\n")
        self.assertEqual(shown.count("CMD: setoption name Hash value 2"), 1)

    def test_it_belongs_to_one_running_program(self):
        first = Engine(folder=self.folder.name)
        first.ready()
        self.assertEqual(self.run_script("isready\n", "-nolog"), ["log file in use", "", "readyok"])
        first.ready()
        self.assertEqual(first.quit(), 0)
        self.assertEqual(self.log().count("readyok"), 2)
        self.assertEqual(self.run_script("isready\n", "-nolog"), ["readyok"])

    def test_what_stands_in_its_place_does_no_harm(self):
        os.mkdir(self.path)
        with open(os.path.join(self.path, "x"), "w", encoding="ascii"):
            pass
        self.assertEqual(self.run_script("isready\n", "-nolog"), ["log file in use", "", "readyok"])
        os.remove(os.path.join(self.path, "x"))
        os.rmdir(self.path)
        os.mkfifo(self.path)
        self.assertEqual(self.run_script("isready\n", "-nolog"), ["readyok"])


if __name__ == "__main__":
    unittest.main()
