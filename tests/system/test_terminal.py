"""A person at a terminal: lines are typed, corrected and ended by the end-of-file key."""
import os
import pty
import select
import subprocess
import tempfile
import time
import unittest

from vrel_process import HANG


class Terminal(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.master, slave = pty.openpty()
        self.engine = subprocess.Popen([os.environ["VREL"], "-c", "-nolog", "-hash", "1"], stdin=slave, stdout=slave,
                                       cwd=self.folder.name)
        os.close(slave)
        self.text = ""

    def tearDown(self):
        self.engine.kill()
        self.engine.wait(HANG)
        os.close(self.master)
        self.folder.cleanup()

    def type(self, text):
        os.write(self.master, text.encode())

    def wait_for(self, text):
        """Everything shown up to the text, which is taken off."""
        deadline = time.monotonic() + HANG
        while text not in self.text:
            ready, _, _ = select.select([self.master], [], [], max(0.0, deadline - time.monotonic()))
            self.assertTrue(ready, "nothing came but " + self.text)
            self.text += os.read(self.master, 65536).decode().replace("\r\n", "\n")
        before, _, self.text = self.text.partition(text)
        return before

    def test_a_session(self):
        self.wait_for("R N B Q K B N R\nwhite\n")
        self.type("e2")
        time.sleep(0.05)  # half a line keeps nobody from thinking
        self.type("e4\n")
        self.wait_for("1. move e2e4\n")
        self.wait_for("black\n")
        self.type("an\n")
        self.wait_for("] 05")
        self.type(".\n")
        self.wait_for("Hash fill= ")
        self.type("undo\n")
        self.wait_for("white\n")
        self.type("quit\n")
        self.assertEqual(self.engine.wait(HANG), 0)

    def test_the_end_of_file_key_ends_the_program(self):
        self.wait_for("white\n")
        self.type("\x04")
        self.assertEqual(self.engine.wait(HANG), 0)

    def test_an_edit(self):
        self.wait_for("white\n")
        self.type("edit\n")
        self.wait_for("b  Pa7 Pb7 Kc7       black, pieces\n")
        self.type("#\n")
        self.type("w Ke1 Rh1\nb Ke8\n")
        self.type(".\n")
        self.wait_for("4k3/8/8/8/8/8/8/4K2R b K -\n")

    def test_a_terminal_that_goes_away_ends_the_program(self):
        self.wait_for("white\n")
        self.type("an\n")
        self.wait_for("] 03")
        os.close(self.master)
        self.engine.wait(HANG)
        self.master = os.open("/dev/null", os.O_RDONLY)

    def test_uci_can_be_typed(self):
        self.wait_for("white\n")
        self.type("uci\n")
        self.wait_for("uciok\n")
        self.type("go depth 3\n")
        self.wait_for("bestmove ")


if __name__ == "__main__":
    unittest.main()
