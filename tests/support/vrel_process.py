"""The engine as an interface sees it, for tests that talk to it over pipes."""
import os
import re
import queue
import subprocess
import threading
import time

HANG = 20.0  # seconds: longer than any reply that is still to come


# What a sanitizer or an assertion says; other words on standard error are the program's own.
FAULT = re.compile(r"Sanitizer|runtime error|Assertion|terminate called")


class Engine:
    """A process of the engine; its output lines are read by a thread of their own."""

    def __init__(self, *arguments, folder=None, program=None):
        self.process = subprocess.Popen(
            [program or os.environ["VREL"], *arguments],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=folder)
        self.lines = queue.Queue()
        self.seen = []
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(line.decode("latin-1").rstrip("\r\n"))
        self.lines.put(None)

    def send(self, *lines):
        self.send_bytes("".join(line + "\n" for line in lines).encode("latin-1"))

    def send_bytes(self, data):
        self.process.stdin.write(data)
        self.process.stdin.flush()

    def read_line(self, timeout=HANG):
        """The next line, None at the end of the output. Raises queue.Empty when none comes."""
        line = self.lines.get(timeout=timeout)
        if line is not None:
            self.seen.append(line)
        return line

    def wait_for(self, start, timeout=HANG):
        """All lines up to the first that begins with `start`."""
        deadline = time.monotonic() + timeout
        lines = []
        while True:
            line = self.read_line(max(0.0, deadline - time.monotonic()))
            assert line is not None, "the engine ended: " + repr(lines[-5:])
            lines.append(line)
            if line.startswith(start):
                return lines

    def ready(self):
        self.send("isready")
        return self.wait_for("readyok")

    def close_input(self):
        self.process.stdin.close()

    def wait(self, timeout=HANG):
        """Exit status; all remaining lines are in `seen` afterwards."""
        status = self.process.wait(timeout)
        self.reader.join(timeout)
        while not self.lines.empty():
            line = self.lines.get()
            if line is not None:
                self.seen.append(line)
        errors = self.process.stderr.read().decode("latin-1")
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            try:
                stream.close()
            except BrokenPipeError:
                pass
        assert not FAULT.search(errors), errors
        return status

    def quit(self):
        self.send("quit")
        return self.wait()
