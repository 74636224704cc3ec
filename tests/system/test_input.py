"""Lines as they may arrive: together, torn, long, with any line end, and none at all any more."""
import os
import subprocess
import tempfile
import time
import unittest

from vrel_process import HANG, Engine

LIMIT = 65536  # characters of a line


class Lines(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.engine = Engine("-nolog", "-hash", "1", folder=self.folder.name)

    def tearDown(self):
        self.assertEqual(self.engine.quit(), 0)
        self.folder.cleanup()

    def option(self, line, end=b"\n"):
        """Sends bytes that end with a line that is answered; what comes up to its answer."""
        self.engine.send_bytes(line + b"setoption name MultiPV value 5" + end)
        return self.engine.wait_for("info string MultiPV set to 5")[:-1]

    def test_any_line_end(self):
        for end in [b"\n", b"\r\n", b"\0", b"@", b"\r\r\n", b"\r\nX"[:2] + b"\n\n"]:
            with self.subTest(end):
                self.assertEqual(self.option(b"isready" + end + b"isready" + end, end), ["readyok", "readyok"])

    def test_the_first_line_end_cuts(self):
        self.assertEqual(self.option(b"isready\rstop\n"), ["readyok"])

    def test_empty_lines_are_nothing(self):
        self.assertEqual(self.option(b"\n\n\r\n \n\0\0@@ @\n"), [])

    def test_a_flood_of_empty_lines_is_passed_over(self):
        self.assertEqual(self.option(b"\n" * 3000000), [])

    def test_lines_in_one_chunk_are_all_handled(self):
        self.assertEqual(self.option(b"isready\nfoo\nisready\n" * 50), ["readyok"] * 100)

    def test_a_line_may_come_in_pieces(self):
        for piece in [b"is", b"read", b"y", b"\r"]:
            self.engine.send_bytes(piece)
            time.sleep(0.02)
        self.assertTrue(self.engine.lines.empty())
        self.engine.send_bytes(b"\n")
        self.assertEqual(self.engine.wait_for("readyok"), ["readyok"])

    def test_a_line_of_the_greatest_length_is_handled(self):
        line = b"setoption name MultiPV value 3"
        self.engine.send_bytes(line + b" " * (LIMIT - len(line)) + b"\n")
        self.assertEqual(self.engine.wait_for("info"), ["info string MultiPV set to 3"])

    def test_a_longer_line_is_refused_whole(self):
        for length in [LIMIT + 1, LIMIT + 2, 2 * LIMIT, 2 * LIMIT + 1, 3 * LIMIT, 1000000]:
            with self.subTest(length):
                line = b"setoption name MultiPV value 3"
                answer = self.option(line + b" " * (length - len(line) - 8) + b" isready\nisready\n")
                self.assertEqual(len(answer), 2, answer)
                self.assertTrue(answer[0].startswith("info string line of more than"))
                self.assertEqual(answer[1], "readyok")

    def test_the_queue_may_overflow_without_loss(self):
        lines = b"position startpos moves" + b" g1f3 g8f6 f3g1 f6g8" * 2500 + b"\nisready\n"
        self.assertEqual(self.option(lines * 20), ["readyok"] * 20)

    def test_any_byte_may_come(self):
        noise = bytes(i for i in range(256) if i not in b"\n\0@") * 50
        self.assertEqual(self.option(noise + b"\nisready\n"), ["readyok"])


class End(unittest.TestCase):
    """The end of the input, in every state of the engine."""

    def run_script(self, script, *arguments):
        with tempfile.TemporaryDirectory() as folder:
            result = subprocess.run([os.environ["VREL"], "-nolog", "-hash", "1", *arguments], input=script.encode(),
                                    stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=HANG, cwd=folder,
                                    check=True)
        self.assertEqual(result.stderr, b"")
        return result.stdout.decode().splitlines()

    def replies(self, script, *arguments):
        return [line for line in self.run_script(script, *arguments) if line.startswith("bestmove")]

    def test_nothing_at_all(self):
        self.assertEqual(self.run_script(""), [])

    def test_lines_received_are_handled(self):
        self.assertEqual(self.run_script("isready\nisready"), ["readyok", "readyok"])

    def test_a_search_with_an_end_is_finished(self):
        lines = self.run_script("position startpos moves e2e4\ngo depth 7\n")
        self.assertTrue(any(line.startswith("info depth 7") for line in lines))
        self.assertTrue(lines[-1].startswith("bestmove"))

    def test_a_search_without_an_end_is_stopped_and_answered(self):
        for search in ["go infinite", "go ponder", "go ponder depth 2", "go movetime 999999999999",
                       "go wtime 999999999999", "go infinite\nposition startpos moves e2e4"]:
            with self.subTest(search):
                replies = self.replies("position startpos\n" + search)
                self.assertEqual(len(replies), 1)
                self.assertNotEqual(replies[0], "bestmove null")

    def test_every_go_is_answered(self):
        self.assertEqual(len(self.replies("go infinite\ngo ponder\ngo depth 2\ngo infinite\n")), 4)

    def test_what_waits_for_a_free_engine_is_handled(self):
        lines = self.run_script("go infinite\nisready\nsetoption name Threads value 3\nsetoption name Hash value 2\n"
                                "ucinewgame\nisready\ngo depth 2")
        rest = [line for line in lines if not line.startswith("info ") or "string" in line]
        self.assertEqual([line.split()[0] for line in rest],
                         ["readyok", "bestmove", "info", "info", "readyok", "bestmove"])

    def test_an_analysis_is_stopped(self):
        lines = self.run_script("an\n", "-c")
        self.assertEqual(len([line for line in lines if line.startswith("move= ")]), 1)

    def test_a_game_against_itself_is_played_to_its_end(self):
        lines = self.run_script("fen 7k/8/5K2/8/8/8/8/R7 w - -\ndepth 5\nself\n", "-c")
        self.assertEqual(len([line for line in lines if line.startswith("move= null")]), 1)

    def test_a_tool_waits_in_line_behind_a_game_against_itself(self):
        lines = self.run_script("fen 7k/8/5K2/8/8/8/8/R7 w - -\ndepth 5\nself\nperft 2\n", "-c")
        self.assertEqual(len([line for line in lines if line.startswith("visited ")]), 1)
        self.assertEqual(len([line for line in lines if line.startswith("move= null")]), 1)

    def test_an_edit_ends(self):
        lines = self.run_script("edit\n#\nw Ke1 Rh1\nb Ke8", "-c")
        self.assertIn("4k3/8/8/8/8/8/8/4K2R b K -", lines)

    def test_a_null_device_and_a_closed_input(self):
        with tempfile.TemporaryDirectory() as folder:
            for shell in ["< /dev/null", "<&-"]:
                subprocess.run(["sh", "-c", '"$VREL" -nolog ' + shell], timeout=HANG, cwd=folder, check=True)

    def test_a_file_is_read_to_its_end(self):
        with tempfile.TemporaryDirectory() as folder:
            script = os.path.join(folder, "script")
            with open(script, "w", encoding="ascii") as file:
                file.write("position startpos\ngo depth 3\nisready")
            result = subprocess.run(["sh", "-c", '"$VREL" -nolog < script'], timeout=HANG, cwd=folder, check=True,
                                    stdout=subprocess.PIPE)
            self.assertEqual(result.stdout.count(b"bestmove"), 1)
            self.assertEqual(result.stdout.count(b"readyok"), 1)


class Output(unittest.TestCase):
    def test_a_full_disk_is_no_reason_to_end(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["sh", "-c", 'printf "uci\\ngo depth 3\\nquit\\n" | "$VREL" > /dev/full'], timeout=HANG,
                           cwd=folder, check=True)

    def test_an_output_that_does_not_block_loses_nothing(self):
        read, write = os.pipe()
        os.set_blocking(write, False)
        with tempfile.TemporaryDirectory() as folder:
            engine = subprocess.Popen([os.environ["VREL"], "-nolog"], stdin=subprocess.PIPE, stdout=write, cwd=folder)
            os.close(write)
            engine.stdin.write(b"uci\n" * 300)
            engine.stdin.close()
            time.sleep(1)  # the pipe is full by now
            with open(read, "rb") as output:
                self.assertEqual(output.read().count(b"\nuciok\n"), 300)
            self.assertEqual(engine.wait(HANG), 0)


if __name__ == "__main__":
    unittest.main()
