#!/usr/bin/env python3
"""Holds the program to transcripts of conversations with it.

    transcript.py [--update] [--terminal] FILE...

Lines of a transcript that begin with one of these signs say what happens, in an empty folder:

    ; words          nothing: a remark
    $ program words  the program is started with these arguments
    > line           the line is sent
    >> bytes         the same without a line end, with escapes as in "\\r"
    ^D               the input ends
    ! line           a line that the program writes to standard error, at some time up to its end
    < name           the lines up to the next "<" become a file of that name
    < name = path    a file of tests/data becomes a file of that name
    = name           when the program has ended, the lines up to the next "=" are what the file holds
    = name = path    the same with what a file of tests/data holds
    - name           when the program has ended, there is no such file

All other lines are what the program prints next. "~" stands there for any characters but blanks, "~~" for any
characters, a line "..." for any lines or none. What depends on the clock is shown as "~": times, speeds; the lines that
tell of the progress of a long search are left out. At the end of its part the program's input ends. An exit status other
than 0 shows as a last line "(exit status 1)". A file whose last line has no end shows "(no line end)" behind it.

--update writes what the program does into the transcripts; read the difference.
"""
import os
import re
import sys
import tempfile

from program import ROOT, VREL, Program

DATA = os.path.join(ROOT, "tests/data")
PATIENCE = 0.4  # seconds that --update waits for a further line
NO_END = "(no line end)"
SIGN = re.compile(r"([;$><=!-]|>>|\^D)( |$)")

PROGRESS = re.compile(r"info (depth \d+ time \d+ nodes \d+ nps \d+ hashfull|currmove )")
CLOCK = [(re.compile(pattern), r"\1~") for pattern in (
    r"^(info .*?depth \d+ time )\d+", r"^(info .* nps )\d+", r"^(\d\d\] \d\d[. ]) +\d+\.\d", r"(?<!Target )\b((?:time|nps)= )[\d.]+",
    r"^(move= .* nodes= \d+, )\d+(?=K nps)", r"^(node_rate= )\d+", r"^(visited \d+ nodes in )\d+\.\d+",
    r"^(\d+ nodes )\d+(?= nps)")]


def without_clock(line):
    for pattern, shown in CLOCK:
        line = pattern.sub(shown, line)
    return line


def matches(pattern, line):
    parts = re.split("(~~?)", pattern)
    return re.fullmatch("".join({"~": r"\S*", "~~": ".*"}.get(part, re.escape(part)) for part in parts), line)


def read_file(path):
    with open(path, encoding="latin-1", newline="") as file:
        return file.read()


def write_file(path, text):
    with open(path, "w", encoding="latin-1", newline="") as file:
        file.write(text)


def lines_of(text):
    lines = text.split("\n")
    return lines[:-1] if lines[-1] == "" else lines + [NO_END]


def text_of(lines):
    return "".join(line + "\n" for line in lines).removesuffix(f"\n{NO_END}\n")


class Step:
    """A line with a sign, and the lines behind it."""

    def __init__(self, line):
        self.line, self.body, self.gone = line, [], False
        self.sign, _, self.text = line.partition(" ")
        self.name, _, self.data = self.text.partition(" = ")
        self.holds_file = self.sign in ("<", "=") and not self.data

    def lines(self):
        if self.gone:
            return self.body
        return [self.line, *self.body] + ([self.sign] if self.holds_file else [])


def read_steps(path):
    steps, inside = [Step("; ")], False
    for line in lines_of(read_file(path)):
        if inside and line == steps[-1].sign:
            inside = False
        elif not inside and SIGN.match(line):
            steps.append(Step(line))
            inside = steps[-1].holds_file
        else:
            steps[-1].body.append(line)
    return steps[1:]


class Player:
    def __init__(self, update, terminal):
        self.update, self.terminal = update, terminal
        self.program, self.last = None, None
        self.any = False  # lines of any kind may come before the next that is told
        self.errors, self.told = None, []  # standard error, and what is told of it

    def program_line(self, patience=None):
        """The next line that is to be told, None at the end or, with patience, after a while."""
        while True:
            line = self.program.read_line(patience)
            if line is None and self.program.ended and self.program.to is not None:
                status, self.program.to = self.program.wait(), None
                return f"(exit status {status})" if status else None
            if line is None or not PROGRESS.match(line):
                return line and without_clock(line)

    def follow(self, step, next_line, rest):
        """Reads what the step tells. `rest` reads what has come beyond it. With --update the step is made to tell all."""
        read, fault = [], None
        for pattern in step.body:
            if pattern == "...":
                self.any = True
                continue
            while True:
                line = next_line()
                read += [] if line is None else [line]
                told = line is not None and matches(pattern, line)
                if told or line is None or not self.any:
                    break
            if not told:
                fault = f"comes not\n  {pattern}\nbut\n  {line}"
                break
            self.any = False
        more = list(iter(rest, None)) if fault or not self.any else []
        if more and not fault:
            fault = "comes more:\n  " + "\n  ".join(more[:5])
        if fault and self.update:
            step.body, self.any = read + more, False
        assert self.update or not fault, f"Behind the line\n  {step.line}\n{fault}"

    def settle(self, after):
        """With --update, what is left open ends before a step that tells nothing yet."""
        if self.update and self.program and self.any and not after.body:
            list(iter(lambda: self.program_line(PATIENCE), None))
            self.any = False

    def finish(self):
        """Ends the program, if one runs. It has nothing more to say but what is left open."""
        if self.program is None:
            return
        if self.program.to is not None:
            self.program.close_input()
        rest = list(iter(self.program_line, None))
        self.program = None
        self.errors.seek(0)
        errors = self.errors.read().decode("latin-1").splitlines()
        if self.update and not self.any:
            self.last.body += rest
        if self.update:
            self.last.body += [f"! {line}" for line in errors]
        assert self.update or errors == self.told, f"Standard error, behind\n  {self.last.line}\nis {errors}"
        assert self.update or self.any or not rest, f"In the end, behind\n  {self.last.line}\ncomes\n  " + "\n  ".join(rest)
        self.any = False

    def look_at_file(self, step):
        assert os.path.exists(step.name) == (step.sign == "="), f"Behind the end {step.line}"
        if step.sign == "-":
            return
        if step.data:
            path = os.path.join(DATA, step.data)
            if self.update:
                write_file(path, read_file(step.name))
            assert read_file(step.name) == read_file(path), f"{step.name} isn't {step.data}"
        else:
            lines = map(without_clock, lines_of(read_file(step.name)))
            self.follow(step, lambda: next(lines, None), lambda: next(lines, None))
            self.any = False

    def do(self, step):
        if step.sign == "$":
            self.finish()
            name, *arguments = step.text.split()
            path = os.path.join(os.path.dirname(VREL), name)
            self.errors, self.told = tempfile.TemporaryFile(), []
            self.program = Program(*arguments, program=path, terminal=self.terminal, stderr=self.errors)
        elif step.sign == ">":
            self.program.send(step.text)
        elif step.sign == ">>":
            self.program.send_bytes(step.text.encode("latin-1").decode("unicode_escape").encode("latin-1"))
        elif step.sign == "!":
            self.told.append(step.text)
            step.gone = self.update
        elif step.sign == "^D":
            self.program.close_input()
        elif step.sign == "<":
            write_file(step.name, read_file(os.path.join(DATA, step.data)) if step.data else text_of(step.body))
            return
        elif step.sign in ("=", "-"):
            self.finish()
            self.look_at_file(step)
            return
        if self.program:
            self.last = step
            self.follow(step, self.program_line,
                        lambda: self.program_line(PATIENCE) if self.update else None)


def main():
    options = [word for word in sys.argv[1:] if word.startswith("--")]
    update = "--update" in options
    for path in sys.argv[1 + len(options):]:
        steps, player = read_steps(path), Player(update, "--terminal" in options)
        with tempfile.TemporaryDirectory() as folder:
            place = os.getcwd()
            path = os.path.abspath(path)
            os.chdir(folder)
            for step, after in zip(steps, steps[1:] + [Step("^D")]):
                player.do(step)
                player.settle(after)
            player.finish()
            os.chdir(place)
        if update:
            write_file(path, text_of(line for step in steps for line in step.lines()))


if __name__ == "__main__":
    try:
        main()
    except AssertionError as fault:
        sys.exit(str(fault))
