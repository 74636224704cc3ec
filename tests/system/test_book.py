"""A book built from a PGN, renamed to the name that is read at the start, and played from."""
import os
import tempfile
import unittest

from vrel_process import Engine

LINE = ["e2e4", "e7e5", "g1f3", "b8c6", "f1b5", "a7a6"]
# Won by either side in turn, so that every move of the line has done its player good.
GAME = '[Event "x"]\n[Result "{}"]\n\n1. e4 e5 2. Nf3 Nc6 {{the Spanish}} 3. Bb5 a6 {}\n\n'


class BookPlay(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def build(self):
        with open(self.path("book.pgn"), "w", encoding="ascii") as pgn:
            for result in ["1-0", "0-1"] * 20:
                pgn.write(GAME.format(result, result))
        engine = Engine("-c", "-nolog", folder=self.folder.name)
        engine.send("mkbook")
        engine.wait_for("done")
        self.assertEqual(engine.quit(), 0)
        os.rename(self.path("book.opn"), self.path("vrel.opn"))

    def test_book_moves_come_first_and_the_search_takes_over(self):
        self.build()
        engine = Engine("-nolog", folder=self.folder.name)
        engine.send("uci", "setoption name OwnBook value true")
        for ply in range(len(LINE)):
            engine.send("position startpos moves " + " ".join(LINE[:ply]), "go depth 2")
            lines = engine.wait_for("bestmove")
            self.assertIn("info string book move", lines)
            self.assertEqual(lines[-1], "bestmove " + LINE[ply])  # and no ponder move
        engine.send("position startpos moves " + " ".join(LINE), "go depth 3")
        lines = engine.wait_for("bestmove")
        self.assertNotIn("info string book move", lines)
        self.assertTrue(any(line.startswith("info depth 3") for line in lines))
        # With the option off the same position is searched.
        engine.send("setoption name OwnBook value false", "position startpos", "go depth 2")
        self.assertTrue(any(line.startswith("info depth") for line in engine.wait_for("bestmove")))
        self.assertEqual(engine.quit(), 0)


if __name__ == "__main__":
    unittest.main()
