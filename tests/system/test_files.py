"""Files that aren't there, can't be read or written, are something else, or change while they are read."""
import os
import resource
import subprocess
import tempfile
import threading
import unittest

from vrel_process import FAULT, HANG, Engine

GAMES = '[Event "x"]\n[Result "1-0"]\n\n1. e4 {+0.30/9} e5 {-0.20/9} 2. Nf3 {0.25/9} Nc6 {0.10/8} 1-0\n\n'
SUITE = "4k3/8/8/8/8/8/4P3/4K3 w - - bm e2e4; tune 0.8; id \"one\";\n"

# Arguments, input, the file that is read (None for none), the files that are written.
RUNS = {
    "start": ([], "uci\nsetoption name OwnBook value true\nsetoption name Log value true\ngo depth 2\n", "vrel.opn",
              ["vrel.log"]),
    "log of a console": (["-c"], "go 3\nbook\n", "vrel.opn", ["vrel.log"]),
    "get": (["-c"], "get one\nget two\n", "test.epd", []),
    "load": (["-c"], "load in.pgn 1\nload in.pgn two\n", "in.pgn", []),
    "save": (["-c"], "e4\ne5\nsave\nsave\n", None, ["tmp.pgn"]),
    "mkbook": (["-c"], "mkbook\nbook\n", "book.pgn", ["book.opn", "tmp.opn", "tmp__0.opn"]),
    "tune one": (["-c"], "tune hung 30\n", "tune.epd", []),
    "trace": (["-c"], "trace 3\ngo 4\n", None, ["trace.txt"]),
    "suite": (["-anepd", "in.epd", "-d", "2"], "", "in.epd", ["unsolved.epd"]),
    "suite on the workers": (["-anepd", "in.epd", "-d", "6", "-threads", "2"], "", "in.epd", ["unsolved.epd"]),
    "static suite": (["-anepd", "in.epd", "-d", "0", "-quiet"], "", "in.epd", []),
    "listing": (["-scan_pgn1", "in.pgn"], "", "in.pgn", ["tmp.pgn"]),
    "targets": (["-scan_pgn2", "in.pgn"], "", "in.pgn", ["tmp.epd"]),
    "positions": (["-scan_pgn3", "in.pgn"], "", "in.pgn", ["tmp.epd"]),
    "tune": (["-tune", "in.epd"], "", "in.epd", ["tune.log"]),
    "match": (["-match", "out.pgn"], "quit\n", "player2.par", ["out.pgn"]),
}


def contents(name):
    """What a file of that name usually holds."""
    if name.endswith(".opn"):
        return b"\x80\x00\x34\x12\x78\x56\x05\x00\x01\x00\x02\x00\x00\x00" * 300
    if name.endswith(".par"):
        return b"# heavier\nknight_value_op 345\n"
    return (GAMES * 60 if name.endswith("pgn") else SUITE * 60).encode()


def limit_files():
    resource.setrlimit(resource.RLIMIT_FSIZE, (40, 40))


class Files(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.number = 0

    def new_folder(self):
        self.number += 1
        self.folder = os.path.join(self.temporary.name, str(self.number))
        os.mkdir(self.folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)

    def run_engine(self, arguments, script, before=None):
        command = [os.environ["VREL"], "-hash", "1", *arguments]
        result = subprocess.run(command, input=script.encode(), check=False, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, timeout=3 * HANG, cwd=self.folder, preexec_fn=before)
        self.assertIn(result.returncode, (0, 1))
        self.assertIsNone(FAULT.search(result.stderr.decode("latin-1")))
        return result.stdout

    # What may stand in the place of a file that is read.

    def nothing(self, name):
        pass

    def a_folder(self, name):
        os.mkdir(self.path(name))

    def a_circle(self, name):  # can't be opened, whoever tries
        os.symlink(name, self.path(name))

    def an_empty_file(self, name):
        self.write(name, b"")

    def noise(self, name):
        self.write(name, os.urandom(5000) + b"\n" + os.urandom(100))

    def one_long_line(self, name):
        self.write(name, b"K" * 300000)

    def half_of_it(self, name):
        whole = contents(name)
        self.write(name, whole[:len(whole) // 2 - 3])

    # What may keep a file from being written.

    def a_full_disk(self, name):
        os.symlink("/dev/full", self.path(name))

    def a_missing_place(self, name):
        os.symlink("nowhere/file", self.path(name))

    def a_folder_with_files(self, name):
        os.mkdir(self.path(name))
        self.write(os.path.join(name, "x"), b"")

    def test_whatever_stands_in_the_place_of_a_file_that_is_read(self):
        for name, (arguments, script, read, _) in RUNS.items():
            for obstacle in (self.nothing, self.a_folder, self.a_circle, self.an_empty_file, self.noise,
                             self.one_long_line, self.half_of_it) if read else ():
                with self.subTest(name, obstacle=obstacle.__name__):
                    self.new_folder()
                    obstacle(read)
                    self.run_engine(arguments, script)

    def test_whatever_keeps_a_file_from_being_written(self):
        for name, (arguments, script, read, written) in RUNS.items():
            for obstacle in (self.a_folder, self.a_folder_with_files, self.a_circle, self.a_full_disk,
                             self.a_missing_place):
                for target in written:
                    with self.subTest(name, target=target, obstacle=obstacle.__name__):
                        self.new_folder()
                        if read:
                            self.write(read, contents(read))
                        obstacle(target)
                        self.run_engine(arguments, script)

    def test_a_disk_that_fills_up(self):
        for name, (arguments, script, read, written) in RUNS.items():
            with self.subTest(name):
                self.new_folder()
                if read:
                    self.write(read, contents(read))
                self.run_engine(arguments, script, before=limit_files)
                for target in written:
                    if os.path.exists(self.path(target)):
                        self.assertLessEqual(os.path.getsize(self.path(target)), 40)

    def test_a_file_that_changes_while_it_is_read(self):
        for name, (arguments, script, read, _) in RUNS.items():
            if not read:
                continue
            with self.subTest(name):
                self.new_folder()
                self.write(read, contents(read) * 5)
                over = threading.Event()
                changer = threading.Thread(target=self.change, args=(read, over))
                changer.start()
                try:
                    self.run_engine(arguments, script)
                finally:
                    over.set()
                    changer.join()

    def change(self, name, over):
        """Lets a file grow, shrink, vanish and come back."""
        step = 0
        while not over.wait(0.001):
            step += 1
            if step % 40 == 0:
                os.unlink(self.path(name))
            elif step % 10 == 0:
                self.write(name, contents(name)[:step * 37 % 900])
            elif step < 2000:
                with open(self.path(name), "ab") as file:
                    file.write(contents(name) * 2)


class BrokenPipe(unittest.TestCase):
    def test_every_kind_of_run_ends_when_nobody_reads(self):
        for arguments, script in [(["-c"], "go 4\n" * 20 + "self\n"), (["-c"], "perft 5\nbd\n"), (["-c"], "edit\n"),
                                  ([], "uci\n" * 10), ([], "go infinite\n"),
                                  ([], "go movetime 100000\n"), (["-anepd", "in.epd", "-d", "8"], ""),
                                  (["-match", "x.pgn"], ""), (["-tune", "in.epd"], "")]:
            with self.subTest(arguments=arguments, script=script), tempfile.TemporaryDirectory() as folder:
                with open(os.path.join(folder, "in.epd"), "w", encoding="ascii") as file:
                    file.write(SUITE * 500)
                engine = subprocess.Popen([os.environ["VREL"], *arguments], stdin=subprocess.PIPE,
                                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=folder)
                engine.stdout.close()
                engine.stdin.write(script.encode())
                engine.stdin.flush()
                self.assertIn(engine.wait(2 * HANG), (0, 1))
                self.assertIsNone(FAULT.search(engine.stderr.read().decode("latin-1")))
                engine.stderr.close()
                try:
                    engine.stdin.close()
                except BrokenPipeError:
                    pass


class Surroundings(unittest.TestCase):
    def test_output_that_is_closed_goes_nowhere(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["sh", "-c", '"$VREL" -c -nolog >&-'], input=b"e4\ntrace 1\ngo 2\nsave\n", timeout=HANG,
                           cwd=folder, check=True)
            for name in os.listdir(folder):
                with open(os.path.join(folder, name), encoding="ascii") as file:
                    self.assertNotIn("black", file.read())

    def test_several_programs_in_one_folder(self):
        """Each works; the log belongs to the first."""
        with tempfile.TemporaryDirectory() as folder:
            engines = [Engine(folder=folder) for _ in range(4)]
            for engine in engines:
                engine.send("position startpos", "go depth 4")
            for engine in engines:
                engine.wait_for("bestmove")
            for engine in reversed(engines):
                self.assertEqual(engine.quit(), 0)


if __name__ == "__main__":
    unittest.main()
