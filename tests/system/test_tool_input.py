"""Lines that arrive while a tool or a long command has the main thread."""
import os
import subprocess
import tempfile
import unittest

from vrel_process import HANG

SUITE = """r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - bm e2a6;
8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - bm b4f4;
r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - bm h2h3;
rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - bm d7c8q;
"""


class ToolInput(unittest.TestCase):
    def run_script(self, script, *arguments):
        with tempfile.TemporaryDirectory() as folder:
            for name in ["suite.epd", "tune.epd"]:
                with open(os.path.join(folder, name), "w", encoding="ascii") as file:
                    file.write(SUITE * 10 if name == "tune.epd" else SUITE)
            result = subprocess.run([os.environ["VREL"], "-nolog", "-hash", "4", *arguments], input=script.encode(),
                                    check=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=5 * HANG,
                                    cwd=folder)
        self.assertEqual(result.stderr, b"")
        return result.stdout.decode().splitlines()

    def test_lines_wait_for_an_analysis(self):
        lines = self.run_script("setoption name Hash value 2\nsetoption name Threads value 3\nposition startpos\n"
                                "go infinite\nisready\n", "-d", "8", "-anepd", "suite.epd")
        self.assertEqual(lines.count("readyok"), 1)
        self.assertFalse([line for line in lines if line.startswith("info string")])
        self.assertTrue(any(line.startswith("info depth 8 ") for line in lines))
        self.assertTrue(any(line.endswith("4 correct best moves") for line in lines))

    def test_quit_ends_an_analysis(self):
        lines = self.run_script("quit\n", "-d", "60", "-anepd", "suite.epd")
        self.assertTrue(any("1 correct best moves" in line for line in lines))

    def test_commands_within_a_command_come_to_an_end(self):
        lines = self.run_script("tune hung 20\n" + "tune hung 9\nperft 2\nev\nset\n" * 40, "-c")
        self.assertEqual(len([line for line in lines if line == "done!"]), 41)
        self.assertEqual(len([line for line in lines if line.startswith("visited ")]), 40)

    def test_an_edit_within_a_command_gets_its_lines(self):
        lines = self.run_script("tune hung 20\nedit\n#\nw Ke1\nb Ke8\n.\n", "-c")
        self.assertIn("4k3/8/8/8/8/8/8/4K3 b - -", lines)
        self.assertEqual(lines.count("done!"), 1)


if __name__ == "__main__":
    unittest.main()
