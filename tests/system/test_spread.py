"""Work in pieces gives what one run over the whole gives, whatever happens to a piece meanwhile."""
import os
import re
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

from program import ROOT, VREL

SPREAD = os.path.join(ROOT, "scripts/spread")
DATA = os.path.join(ROOT, "tests/data")

# Does to the piece that holds the word what the file "fate" says, in the middle of its work.
UNLUCKY = """#!/bin/sh
grep -q unlucky ../in 2>/dev/null || exec {vrel} "$@"
read fate <{folder}/fate
case $fate in
once) echo never >{folder}/fate; {vrel} "$@" & sleep 0.05; kill -9 $! $$ ;;
always) echo "no luck" >&2; exit 3 ;;
slow) sleep 60 ;;
esac
exec {vrel} "$@"
"""


def without_times(text):
    return re.sub(r"((time|node_rate)= |nodes= \d+, )[\d.]+", r"\1~", re.sub(r"( time| nps) \d+", r"\1 ~", text))


@unittest.skipUnless(shutil.which("parallel"), "GNU parallel isn't installed")
class Spread(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.folder = place.name
        shutil.copy(os.path.join(DATA, "tactics.epd"), self.path("suite.epd"))
        with open(self.path("suite.epd"), "a", encoding="ascii") as file:
            file.write('# no position\nshort\n4k3/8/8/8/8/8/4P3/4K3 w - - bm e4; tune 0.7; id "unlucky";')
        self.program = self.path("unlucky")
        with open(self.program, "w", encoding="ascii") as file:
            file.write(UNLUCKY.format(vrel=VREL, folder=self.folder))
        os.chmod(self.program, stat.S_IRWXU)

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name):
        with open(self.path(name), encoding="latin-1") as file:
            return file.read()

    def start(self, *words, fate="never"):
        if fate:
            with open(self.path("fate"), "w", encoding="ascii") as file:
                file.write(fate + "\n")
        return subprocess.Popen([sys.executable, SPREAD, *words], cwd=self.folder, stdin=subprocess.DEVNULL, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, env={**os.environ, "VREL": self.program})

    def spread(self, *words, status=0, **options):
        process = self.start(*words, **options)
        out, err = process.communicate(timeout=300)
        self.assertEqual(process.returncode, status, err)
        return without_times(out) if status == 0 else err

    def whole(self, *words):
        done = subprocess.run([VREL, "-nolog", *words], cwd=self.folder, stdin=subprocess.DEVNULL, text=True, check=True,
                              stdout=subprocess.PIPE)
        return without_times(done.stdout)

    def left(self):
        return [name for name in os.listdir(self.folder) if name.startswith("spread.") or "epd." in name]

    def test_suite(self):
        for depth in ("3", "0"):
            expected = [self.whole("-anepd", "suite.epd", "-d", depth), self.read("unsolved.epd")]
            for words in (["-j", "1", "--piece", "1000"], ["-j", "2", "--piece", "9"]):
                os.unlink(self.path("unsolved.epd"))
                for fate in ("never", "once"):
                    out = self.spread(*words, "epd", "suite.epd", "-d", depth, fate=fate)
                    self.assertEqual(out, expected[0])
                if depth == "3":
                    self.assertEqual(self.read("unsolved.epd"), expected[1])
                else:
                    self.assertFalse(os.path.exists(self.path("unsolved.epd")))
                    shutil.copy(self.path("suite.epd"), self.path("unsolved.epd"))
        self.assertEqual(self.left(), [])

    def test_what_is_finished_is_kept(self):
        command = ["-j", "2", "--piece", "9", "epd", "suite.epd", "-d", "3", "-quiet"]
        expected = self.whole("-anepd", "suite.epd", "-d", "3", "-quiet"), self.read("unsolved.epd")
        os.unlink(self.path("unsolved.epd"))
        err = self.spread(*command, fate="always", status=1)
        self.assertIn("failed 3 times: status 3 no luck\n", err)
        self.assertIn("are kept in spread.epd.suite.epd", err)
        self.assertFalse(os.path.exists(self.path("unsolved.epd")))
        # The folder belongs to this work alone.
        self.assertIn("another run", self.spread("epd", "suite.epd", "-d", "2", status=1))
        # Broken off from outside.
        process = self.start(*command, fate="slow")
        time.sleep(1)
        process.send_signal(signal.SIGTERM)
        self.assertIn("broken off", process.communicate(timeout=60)[1])
        self.assertEqual(process.returncode, 1)
        self.assertEqual((self.spread(*command), self.read("unsolved.epd")), expected)
        self.assertEqual(self.left(), [])

    def test_scans_are_cut_where_games_begin(self):
        # Tags that belong together, tags in comments, what looks like a tag behind the longest line that is read.
        fen = '[FEN "rnb1kbnr/pppppppp/8/8/8/8/PPPPPPPP/RNB1KBNR w KQkq - 0 1"]'
        game = " ".join(f"{file}{white} {{0.3/9}} {file}{black} {{0.1/8}}"
                        for white, black in ("36", "45") for file in "abcdefgh")
        games = "\n".join([
            game, '[Event "a"]', "", ' [Round "1"]', fen, '[White "w"]', '[Result "1-0"]', "\t", game + " 1-0", "", "{ open",
            '[Event "b"]', f"\t{fen}\r", '[Result "0-1"]', "", game + " { a", '[Event "c" ]', ' [Event "d"]', "} 0-1",
            "[%clk 3]", game, fen, '[Result "0-1"]', game + " { c", "d", '[Event"i"]', "} 0-1", '[Event "e"]', '[Event "f"]',
            fen, "x" * 65537 + f'[Event "g"] {game}', game,
            '[Event\t"h"]', fen, game])
        with open(self.path("games.pgn"), "w", encoding="ascii", newline="") as file:
            file.write(games + "\n" + games)
        for kind in "23":
            expected = self.whole(f"-scan_pgn{kind}", "games.pgn"), self.read("tmp.epd")
            self.assertGreater(len(expected[1]), 1000)
            for words in (["-j", "1", "--piece", "1000000"], ["-j", "2", "--piece", "1"]):
                os.unlink(self.path("tmp.epd"))
                self.assertEqual((self.spread(*words, f"scan{kind}", "games.pgn"), self.read("tmp.epd")), expected)
        self.assertEqual(self.left(), [])

    def test_match(self):
        with open(self.path("player2.par"), "w", encoding="ascii") as file:
            file.write("queen_value_op 0\nqueen_value_en 0\n")
        shutil.copy(os.path.join(ROOT, "data/vrel.opn"), self.folder)
        lines = self.spread("-j", "2", "--piece", "2", "match", "5").splitlines()
        self.assertEqual(lines[0], "Player2: queen_value_op 1000 -> 0")
        self.assertEqual(lines[-1], "5 games, 5 of them different")
        wins, losses, draws = map(int, re.match(r"   5 games, +(\d) +(\d) +(\d)  ", lines[-2]).groups())
        games = self.read("match.pgn").split("[Event selfplay]\n")[1:]
        self.assertEqual([game.splitlines()[0] for game in games], [f"[Game {i}]" for i in range(1, 6)])
        won = [re.search(r'White "Player1"[^{]*"1-0"|Black "Player1"[^{]*"0-1"', game) is not None for game in games]
        self.assertEqual((sum(won), wins + losses + draws), (wins, 5))

    def test_what_cannot_be_done_is_told(self):
        open(self.path("empty.epd"), "w", encoding="ascii").close()
        for words, told in [(["epd", "missing.epd"], "missing.epd: No such file"), (["scan2", "."], "a directory"),
                            (["scan3", "empty.epd"], "is empty"), (["match", "0"], "number of games"),
                            (["--sshlogin", "nobody@host.invalid", "epd", "suite.epd"], "nobody@host.invalid")]:
            if "--sshlogin" in words and not (shutil.which("rsync") and shutil.which("ssh")):
                continue
            self.assertIn(told, self.spread(*words, status=1))
        self.assertEqual(self.left(), [])


if __name__ == "__main__":
    unittest.main(failfast=True)
