"""The line that tells how far long work has come: on a terminal alone, and without a trace on standard output."""
import os
import pty
import tempfile
import threading
import unittest

from program import ON_WINDOWS, Program
from transcript import without_clock

GAME = '[Event "x"]\n[Result "1-0"]\n\n1. e4 {+0.30/9} e5 {-0.20/9} 2. Nf3 {0.25/9} Nc6 {0.10/8} 1-0\n\n'
POSITION = '4k3/8/8/8/8/8/4P3/4K3 w - - bm e2e4; tune 0.8; id "one";\n'
RUNS = [
    ("-anepd in -d 3", "", POSITION * 40, r"\d+ %, 0\.\d of 2\.\d kB.*"),
    ("-tune in", "", POSITION * 40, r"0 %, 0 of 1350 slopes"),
    ("-scan_pgn1 in", "", GAME * 9000, r"16 %, 131\.1 of 819\.0 kB"),
    ("-scan_pgn2 in", "", GAME, r"100 %, 0\.1 of 0\.1 kB.*"),
    ("-c", "mkbook\n", GAME * 9000, r"16 %, 131\.1 of 819\.0 kB"),
    ("-match in", "quit\n", "", r"0 %, 0 of 8000 games"),
]


def run(arguments, script, text, stderr):
    with tempfile.TemporaryDirectory() as folder:
        for name in ("in", "book.pgn"):
            with open(os.path.join(folder, name), "w", encoding="ascii") as file:
                file.write(text)
        program = Program("-nolog", "-hash", "1", *arguments.split(), folder=folder, stderr=stderr)
        program.send_bytes(script.encode())
        program.close_input()
        status = program.wait()
        return status, [without_clock(line) for line in program.seen]


def run_at_terminal(*what):
    """The result of the run, and what came to the terminal."""
    master, slave = pty.openpty()
    seen = []

    def read():
        try:
            while data := os.read(master, 1 << 16):
                seen.append(data)
        except OSError:  # nobody has the other end any more
            pass

    reader = threading.Thread(target=read)
    reader.start()
    result = run(*what, slave)
    os.close(slave)
    reader.join()
    os.close(master)
    return result, b"".join(seen).decode()


@unittest.skipIf(ON_WINDOWS, "the terminal would be Wine's")
class Progress(unittest.TestCase):
    def test_a_terminal_sees_one_line_that_goes_and_a_pipe_sees_nothing(self):
        for *what, shown in RUNS:
            with self.subTest(what[0]), tempfile.TemporaryFile() as errors:
                result, seen = run_at_terminal(*what)
                lines = [line for line in seen.split("\r") if line.strip()]
                self.assertRegex("\n".join(lines), rf"(?m)^ *{shown} *$")
                self.assertRegex(seen, r"\r +\r(\n|[^%]*\r\n)?$")
                self.assertTrue(all(len(line) < 80 for line in lines), lines)
                if what[0].startswith("-anepd"):  # it stands below all that is shown for a position
                    self.assertGreater(lines.count(lines[0]), 10)
                self.assertEqual(result, run(*what, errors))
                errors.seek(0)
                self.assertNotIn(b"%", errors.read())


if __name__ == "__main__":
    unittest.main(failfast=True)
