"""A program under test, on pipes or on a terminal, as an interface or a person meets it."""
import atexit
import os
import pty
import select
import subprocess
import termios
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
VREL = os.environ.get("VREL") or os.path.join(ROOT, "build/release/vrel")
# A fault that a sanitizer finds must not pass for a run that has failed in order.
for sanitizer in ("ASAN_OPTIONS", "UBSAN_OPTIONS"):
    os.environ[sanitizer] = os.environ.get(sanitizer, "") + ":exitcode=99"
# Under Wine there are neither terminals nor named pipes of this system, and some of its signals reach Wine itself.
ON_WINDOWS = "WINEPREFIX" in os.environ
# Under Node a table has at most 2000 megabytes, and no program can mark a file for itself.
ON_NODE = "VREL_ON_NODE" in os.environ
HANG = float(os.environ.get("HANG", 300))  # seconds: longer than anything that is still to come


def quiet_terminal():
    """A pseudo-terminal that neither echoes nor changes line ends."""
    master, slave = pty.openpty()
    mode = termios.tcgetattr(slave)
    mode[1] &= ~termios.OPOST
    mode[3] &= ~termios.ECHO
    termios.tcsetattr(slave, termios.TCSANOW, mode)
    return master, slave


class Program:
    def __init__(self, *arguments, folder=None, terminal=False, program=None, **options):
        self.terminal = terminal
        if terminal:
            self.to, inner_in = quiet_terminal()
            self.out, inner_out = os.dup(self.to), os.dup(inner_in)
        else:
            inner_in, self.to = os.pipe()
            self.out, inner_out = os.pipe()
        self.process = subprocess.Popen([program or VREL, *arguments], stdin=inner_in, stdout=inner_out,
                                        cwd=folder, **options)
        atexit.register(self.process.kill)
        os.close(inner_in)
        os.close(inner_out)
        os.set_blocking(self.to, False)
        self.buffer, self.ended, self.seen = b"", False, []

    def send(self, *lines):
        self.send_bytes("".join(line + "\n" for line in lines).encode("latin-1"))

    def send_bytes(self, data):
        """Sends everything, and takes in what comes meanwhile, so that neither side waits for the other."""
        while data and not self.ended:
            readable, writable, _ = select.select([self.out], [self.to], [], HANG)
            assert readable or writable, "nobody takes the input"
            try:
                if writable:
                    data = data[os.write(self.to, data):]
            except BrokenPipeError:
                return
            if readable:
                self._take()

    def _take(self):
        try:
            data = os.read(self.out, 1 << 16)
        except OSError:  # a terminal whose program has ended
            data = b""
        self.buffer += data
        self.ended = not data

    def read_line(self, patience=None):
        """The next line without its end, the rest at the end of the output, then None. With `patience` None as well if
        no line comes for so long."""
        deadline = time.monotonic() + (patience or HANG)
        while b"\n" not in self.buffer and not self.ended:
            if select.select([self.out], [], [], max(0.0, deadline - time.monotonic()))[0]:
                self._take()
            elif patience:
                return None
            else:
                raise AssertionError(f"nothing comes behind {self.seen[-3:]} {self.buffer[-200:]}")
        if not self.buffer:
            return None
        line, _, self.buffer = self.buffer.partition(b"\n")
        self.seen.append(line.decode("latin-1"))
        return self.seen[-1]

    def wait_for(self, start):
        """All lines up to the first that begins with `start`."""
        lines = []
        while not lines or not lines[-1].startswith(start):
            lines.append(self.read_line())
            assert lines[-1] is not None, f"the program ended: {lines[-5:]}"
        return lines

    def ready(self):
        self.send("isready")
        return self.wait_for("readyok")

    def close_input(self):
        if self.to >= 0 and self.terminal:
            self.send_bytes(b"\x04")
        elif self.to >= 0:
            os.close(self.to)
            self.to = -1

    def rest(self):
        """All lines that are still to come, up to the end of the output."""
        return list(iter(self.read_line, None))

    def wait(self):
        """The exit status, when everything has been read."""
        self.rest()
        status = self.process.wait(HANG)
        atexit.unregister(self.process.kill)
        for end in {self.out, self.to} - {-1}:
            os.close(end)
        return status

    def quit(self):
        self.send("quit")
        return self.wait()


def run(*arguments, script="", statuses=(0,), **options):
    """Runs the program on a script to its end, which has to be in order; the lines that it prints."""
    program = Program("-hash", "1", *arguments, **options)
    program.send_bytes(script.encode("latin-1"))
    program.close_input()
    status = program.wait()
    assert status in statuses, (arguments, script[:200], status, program.seen[-5:])
    return program.seen
