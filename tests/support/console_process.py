"""The engine as a person at the console meets it: over a pipe or on a real terminal, compared byte for byte."""
import os
import pty
import re
import select
import subprocess
import termios
import time

HANG = 60.0  # seconds: longer than any output that is still to come
START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"


def board(fen):
    """What the console shows for a position of four fields."""
    rows, side = fen.split()[:2]
    text = fen + "\n"
    for rank, row in zip(range(7, -1, -1), rows.split("/")):
        squares = []
        for letter in row:
            if letter.isdigit():
                squares += "?" * int(letter)
            else:
                squares += "o" if letter == "p" else letter
        for file, square in enumerate(squares):
            if square == "?":
                squares[file] = "+" if (rank + file) % 2 == 0 else "-"
        text += "  " + " ".join(squares) + "\n"
    return text + ("white\n\n" if side == "w" else "black\n\n")


def quiet_terminal():
    """A pseudo-terminal that neither echoes nor changes line ends."""
    master, slave = pty.openpty()
    mode = termios.tcgetattr(slave)
    mode[1] &= ~termios.OPOST
    mode[3] &= ~termios.ECHO
    termios.tcsetattr(slave, termios.TCSANOW, mode)
    return master, slave


class Console:
    def __init__(self, *arguments, terminal=False, folder="."):
        command = [os.environ["VREL"], "-c", *arguments]
        if terminal:
            self.to, slave = quiet_terminal()
            self.out = os.dup(self.to)
            self.process = subprocess.Popen(command, stdin=slave, stdout=slave, stderr=subprocess.PIPE, cwd=folder)
            os.close(slave)
        else:
            self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                            stderr=subprocess.PIPE, cwd=folder)
            self.to, self.out = os.dup(self.process.stdin.fileno()), os.dup(self.process.stdout.fileno())
            self.process.stdin.close()
            self.process.stdout.close()
        self.terminal = terminal
        self.buffer = ""
        self.ended = False

    def send(self, *lines):
        data = "".join(line + "\n" for line in lines).encode("latin-1")
        while data:
            data = data[os.write(self.to, data):]

    def _more(self, deadline):
        """Reads what comes next. False at the end of the output."""
        left = deadline - time.monotonic()
        if self.ended:
            return False
        if not select.select([self.out], [], [], max(0.0, left))[0]:
            raise AssertionError("no more output behind " + repr(self.buffer[-500:]))
        try:
            data = os.read(self.out, 65536)
        except OSError:  # a terminal whose program has ended
            data = b""
        self.ended = not data
        self.buffer += data.decode("latin-1")
        return not self.ended

    def read(self, length):
        """The next characters, fewer at the end of the output."""
        deadline = time.monotonic() + HANG
        while len(self.buffer) < length and self._more(deadline):
            pass
        text, self.buffer = self.buffer[:length], self.buffer[length:]
        return text

    def read_line(self):
        """The next line without its end; what is left at the end of the output."""
        deadline = time.monotonic() + HANG
        while "\n" not in self.buffer and self._more(deadline):
            pass
        line, _, self.buffer = self.buffer.partition("\n")
        return line

    def read_until(self, pattern):
        """All lines up to the first that matches from its start."""
        lines = []
        while True:
            lines.append(self.read_line())
            if re.match(pattern, lines[-1]):
                return lines
            assert not (self.ended and not self.buffer), "the engine ended: " + repr(lines[-5:])

    def close_input(self):
        os.close(self.to)
        self.to = -1

    def wait(self):
        """Exit status, and all output that was still to come."""
        deadline = time.monotonic() + HANG
        while self._more(deadline):
            pass
        status = self.process.wait(HANG)
        errors = self.process.stderr.read().decode("latin-1")
        assert not errors, errors
        return status, self.buffer

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.process.stderr.close()
        os.close(self.out)
        if self.to >= 0:
            self.close_input()
