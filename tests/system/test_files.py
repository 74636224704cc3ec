"""Files that aren't there, can't be read or written, are something else, or change while they are read: every kind of
run gets through in order."""
import fcntl
import os
import re
import resource
import subprocess
import tempfile
import threading
import unittest

from program import HANG, ON_NODE, ON_WINDOWS, VREL, Program, run

GAMES = '[Event "x"]\n[Result "1-0"]\n\n1. e4 {+0.30/9} e5 {-0.20/9} 2. Nf3 {0.25/9} Nc6 {0.10/8} 1-0\n\n'
SUITE = '4k3/8/8/8/8/8/4P3/4K3 w - - bm e2e4; tune 0.8; id "one";\n'

# Arguments, input, the file that is read (None for none), the files that are written.
RUNS = [
    ("", "uci\nsetoption name OwnBook value true\nsetoption name Log value true\ngo depth 2\n", "vrel.opn", ["vrel.log"]),
    ("-c", "go 3\nbook\n", "vrel.opn", ["vrel.log"]),
    ("-c", "get one\nget two\n", "test.epd", []),
    ("-c", "load in.pgn 1\nload in.pgn two\n", "in.pgn", []),
    ("-c", "e4\ne5\nsave\nsave\n", None, ["tmp.pgn"]),
    ("-c", "mkbook\nbook\n", "book.pgn", ["book.opn", "tmp.opn", "tmp__0.opn", "tmp__1.opn", "book.lock"]),
    ("-c", "tune hung 30\n", "tune.epd", []),
    ("-c", "trace 3\ngo 4\n", None, ["trace.txt"]),
    ("-anepd in.epd -d 2", "", "in.epd", ["unsolved.epd"]),
    ("-anepd in.epd -d 6 -threads 2", "", "in.epd", ["unsolved.epd"]),
    ("-anepd in.epd -d 0 -quiet", "", "in.epd", []),
    ("-scan_pgn1 in.pgn", "", "in.pgn", ["tmp.pgn"]),
    ("-scan_pgn2 in.pgn", "", "in.pgn", ["tmp.epd"]),
    ("-scan_pgn3 in.pgn", "", "in.pgn", ["tmp.epd"]),
    ("-tune in.epd", "", "in.epd", ["tune.log"]),
    ("-match out.pgn", "quit\n", "player2.par", ["out.pgn"]),
]
TOO_LARGE = ".*" if ON_WINDOWS else "File too large"  # which Wine has no number for


def contents(name):
    """What a file of that name usually holds."""
    if name.endswith(".opn"):
        return b"\x80\x00\x34\x12\x78\x56\x05\x00\x01\x00\x02\x00\x00\x00" * 300
    if name.endswith(".par"):
        return b"# heavier\nknight_value_op 345\n"
    return (GAMES * 60 if name.endswith("pgn") else SUITE * 60).encode()


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


def folder_with_files(path):
    os.mkdir(path)
    write(os.path.join(path, "x"), b"")


# What may stand in the place of a file that is read, and what may keep one from being written.
IN_PLACE = {
    "nothing": lambda path: None,
    "a folder": os.mkdir,
    "a circle": lambda path: os.symlink(os.path.basename(path), path),
    "an empty file": lambda path: write(path, b""),
    "noise": lambda path: write(path, os.urandom(5000) + b"\n" + os.urandom(100)),
    "one long line": lambda path: write(path, b"K" * 300000),
    "half of it": lambda path: write(path, contents(path)[:len(contents(path)) // 2 - 3]),
}
# Only what the program opens on its own account has to be a regular file.
PIPE = {"a pipe": os.mkfifo}
GIVEN = ("in.epd", "in.pgn", "out.pgn")
IN_THE_WAY = {
    "a folder": os.mkdir,
    "a folder with files": folder_with_files,
    "a circle": IN_PLACE["a circle"],
    "a full disk": lambda path: os.symlink("/dev/full", path),
    "a missing place": lambda path: os.symlink("nowhere/file", path),
}


class Files(unittest.TestCase):
    def run_all(self, obstacles=None, written_ones=False, before=None, after=None, **options):
        """Runs everything once for each file and each obstacle in its way. `before` and `after` get the paths of the
        file that is read and of those that are written."""
        for arguments, script, read, written in RUNS:
            for target in written if written_ones else [read]:
                own = PIPE if obstacles and target not in GIVEN else {}
                for name, put in ({**obstacles, **own} if obstacles else {"": None}).items():
                    with self.subTest(arguments, script=script, target=target, obstacle=name), \
                            tempfile.TemporaryDirectory() as folder:
                        paths = [read and os.path.join(folder, read)], [os.path.join(folder, w) for w in written]
                        if read and (put is None or written_ones):
                            write(paths[0][0], contents(read))
                        if target and put:
                            put(os.path.join(folder, target))
                        end = before and read and before(paths[0][0])
                        run(*arguments.split(), script=script, folder=folder, statuses=(0, 1), **options)
                        if end:
                            end()
                        if after:
                            after(paths[1])

    def test_whatever_stands_in_the_place_of_a_file_that_is_read(self):
        self.run_all(IN_PLACE)

    def test_whatever_keeps_a_file_from_being_written(self):
        self.run_all(IN_THE_WAY, written_ones=True)

    def test_a_disk_that_fills_up(self):
        def look(written):
            for path in filter(os.path.isfile, written):
                with open(path, "rb") as file:
                    held = file.read()
                self.assertLessEqual(len(held), room)
                if path.endswith(".opn"):
                    self.assertEqual(len(held) % 14, 0, path)
                elif path.endswith("unsolved.epd"):
                    self.assertTrue(not held or held.endswith(SUITE.encode()), path)  # whole records

        for room in (40, 1000):
            self.run_all(after=look, restore_signals=not ON_WINDOWS,
                         preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (room, room)))

    def test_a_file_that_changes_while_it_is_read(self):
        def start(path):
            write(path, contents(path) * 5)
            over = threading.Event()
            changer = threading.Thread(target=change, args=(path, over))
            changer.start()
            return lambda: (over.set(), changer.join())

        self.run_all(before=start)


def change(path, over):
    """Lets a file grow, shrink, vanish and come back."""
    step = 0
    while not over.wait(0.001):
        step += 1
        if step % 40 == 0:
            os.unlink(path)
        elif step % 10 == 0:
            write(path, contents(path)[:step * 37 % 900])
        elif step < 2000:
            with open(path, "ab") as file:
                file.write(contents(path) * 2)


def complaints(*arguments, status=1, **options):
    """Runs the program, which is to end with this status; what it says on standard error, and what on standard output."""
    read, errors = os.pipe()  # not a file, whose size may be limited
    # Wine itself doesn't look after the signal of a write beyond the limit.
    lines = run(*arguments, statuses=(status,), stderr=errors, restore_signals=not ON_WINDOWS, **options)
    os.close(errors)
    with open(read, encoding="ascii") as file:
        return file.read().splitlines(), lines


def limit_files(size):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


class Losses(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def held(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def test_a_scan_counts_what_stands_in_the_file(self):
        write(self.path("in.pgn"), (GAMES * 3000).encode())
        for room in (100, 70000, 100000):
            errors, lines = complaints("-nolog", "-scan_pgn3", "in.pgn", folder=self.folder, preexec_fn=limit_files(room))
            self.assertRegex("\n".join(errors), f"^tmp.epd: {TOO_LARGE}$")
            positions = self.held("tmp.epd").decode().splitlines()
            self.assertEqual(len(positions) % 4, 0)
            self.assertTrue(all(line.endswith(";") for line in positions))
            self.assertEqual(lines[-1], f"games= {len(positions) // 4}, positions= {len(positions)}")
            if not ON_WINDOWS:  # where a write that fails isn't told how far it came
                self.assertLessEqual(room - len(self.held("tmp.epd")), 400)

    def test_a_book_that_is_given_up_leaves_the_old_one(self):
        write(self.path("book.opn"), b"old")
        write(self.path("book.pgn"), contents("book.pgn") * 40)
        given_up = "mkbook: broken off, book.opn stays as it was"
        console = ("-c", "-nolog")
        # Either line has arrived when the book is begun.
        self.assertEqual(complaints(*console, folder=self.folder, script="mkbook\nquit\n")[0], [given_up])
        errors, _ = complaints(*console, folder=self.folder, script="mkbook\n", preexec_fn=limit_files(20))
        self.assertRegex("\n".join(errors), f"^tmp__0.opn: {TOO_LARGE}\n{given_up}$")
        if not (ON_WINDOWS or ON_NODE):  # where marks of this system aren't seen
            with open(self.path("book.lock"), "wb") as file:
                fcntl.flock(file, fcntl.LOCK_EX)
                self.assertEqual(complaints(*console, folder=self.folder, script="mkbook\n")[0],
                                 ["book.lock: in use, another mkbook is at work in this folder"])
        program = Program(*console, folder=self.folder)
        program.send("mkbook")
        while not os.path.exists(self.path("book.lock")):
            pass
        program.process.kill()
        program.process.wait()
        self.assertIn(self.held("book.opn"), (b"old", self.book()))
        self.assertEqual(self.held("book.opn"), self.book())
        self.assertEqual(sorted(os.listdir(self.folder)), ["book.opn", "book.pgn", "vrel.log"])

    def book(self):
        """Builds the book, and shows the board behind it."""
        errors, lines = complaints("-c", "-nolog", status=0, folder=self.folder, script="e4\nmkbook\nbd\n")
        self.assertEqual(errors, [])
        self.assertIn("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", lines[lines.index("done"):])
        return self.held("book.opn")

    def test_positions_for_which_there_is_no_memory_are_read_again(self):
        write(self.path("tune.epd"), b"8/8/8/8/8/8/8/K6k w - - tune 0.75;\n" * 100000)
        program = Program("-c", "-nolog", "-hash", "1")
        program.wait_for("white")
        with open(f"/proc/{program.process.pid}/status", encoding="ascii") as file:
            memory = int(re.search(r"VmPeak:\s+(\d+)", file.read())[1]) * 1024
        self.assertEqual(program.quit(), 0)
        if memory > 1 << 40:
            self.skipTest("a sanitizer takes all the memory that there is")
        lines = run("-c", "-nolog", folder=self.folder, script="tune hung 1\ntune hung 1\n",
                    preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (memory + 20_000_000,) * 2))
        self.assertEqual(lines.count("best= -17, err= 2.50000e-01"), 2)


class Surroundings(unittest.TestCase):
    def test_names_are_utf8(self):
        with tempfile.TemporaryDirectory(suffix=" Ströbeck") as folder:
            write(os.path.join(folder, "象 один.epd"), SUITE.encode() * 2)
            self.assertIn("0 / 2 correct best moves", run("-anepd", "象 один.epd", "-d", "2", folder=folder))
            write(os.path.join(folder, "♞.pgn"), GAMES.encode())
            lines = run("-c", script="load ♞.pgn 1\n".encode().decode("latin-1"), folder=folder)
            self.assertIn("r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -", lines)
            run("openings", "ö.pgn", "3", folder=folder)
            self.assertIn("ö.pgn", os.listdir(folder))

    def test_every_kind_of_run_ends_when_nobody_reads(self):
        for arguments, script in [("-c", "go 4\n" * 20 + "self\n"), ("-c", "perft 5\nbd\n"), ("-c", "edit\n"),
                                  ("", "uci\n" * 10), ("", "go infinite\n"), ("", "go movetime 100000\n"),
                                  ("-anepd in.epd -d 8", ""), ("-match x.pgn", ""), ("-tune in.epd", "")]:
            with self.subTest(arguments, script=script), tempfile.TemporaryDirectory() as folder:
                write(os.path.join(folder, "in.epd"), SUITE.encode() * 500)
                program = Program(*arguments.split(), folder=folder)
                os.close(program.out)
                program.out = os.open(os.devnull, os.O_RDONLY)
                os.write(program.to, script.encode())
                self.assertIn(program.process.wait(HANG), (0, 1))

    def test_output_that_is_closed_or_full_is_no_reason_to_end(self):
        with tempfile.TemporaryDirectory() as folder:
            for way in [">&-", ">/dev/full"]:
                script = f'printf "e4\ntrace 1\ngo 2\nsave\n" | "{VREL}" -c -nolog {way}'
                subprocess.run(["sh", "-c", script], timeout=HANG, cwd=folder, check=True)
            for name in os.listdir(folder):
                with open(os.path.join(folder, name), encoding="ascii") as file:
                    self.assertNotIn("black", file.read())

    def test_an_output_that_does_not_block_loses_nothing(self):
        read, out = os.pipe()
        os.set_blocking(out, False)
        engine = subprocess.Popen([VREL, "-nolog"], stdin=subprocess.PIPE, stdout=out)
        os.close(out)
        engine.stdin.write(b"uci\n" * 300)
        engine.stdin.close()
        threading.Event().wait(0.5)  # the pipe is full by now
        with open(read, "rb") as output:
            self.assertEqual(output.read().count(b"\nuciok\n"), 300)
        self.assertEqual(engine.wait(HANG), 0)

    def test_a_null_device_and_a_closed_input_end_at_once(self):
        for way in ["</dev/null", "<&-"]:
            subprocess.run(["sh", "-c", f'"{VREL}" -nolog {way}'], timeout=HANG, check=True)

    def test_a_match_without_the_weights_that_are_asked_for_is_none(self):
        with tempfile.TemporaryDirectory() as folder:
            os.mkdir(os.path.join(folder, "player2.par"))
            lines = run("-nolog", "-match", "out.pgn", folder=folder, script="quit\n", statuses=(1,))
            self.assertEqual(lines, ["can't open player2.par"])
            self.assertFalse(os.path.exists(os.path.join(folder, "out.pgn")))

    @unittest.skipIf(ON_NODE, "nobody can mark a file")
    def test_the_log_belongs_to_the_first_of_several_programs(self):
        with tempfile.TemporaryDirectory() as folder:
            first = Program(folder=folder)
            first.ready()
            others = [Program(folder=folder) for _ in range(3)]
            for program in others:
                self.assertEqual(program.ready()[:2], ["log file in use", ""])
                program.send("position startpos", "go depth 4")
                program.wait_for("bestmove")
            first.ready()
            for program in [*others, first]:
                self.assertEqual(program.quit(), 0)
            with open(os.path.join(folder, "vrel.log"), encoding="ascii") as file:
                self.assertEqual(file.read().count("readyok"), 2)
            self.assertEqual(run(script="isready\n", folder=folder)[-1], "readyok")

    def test_what_stands_in_the_place_of_the_log_does_no_harm(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "vrel.log")
            folder_with_files(path)
            self.assertEqual(run("-nolog", script="isready\n", folder=folder), ["log file in use", "", "readyok"])
            os.remove(os.path.join(path, "x"))
            os.rmdir(path)
            if not ON_WINDOWS:
                os.mkfifo(path)
            self.assertEqual(run("-nolog", script="isready\n", folder=folder), ["readyok"])


if __name__ == "__main__":
    unittest.main(failfast=True)
