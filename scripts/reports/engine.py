"""The engine as it answers a person: all that needs the rules of chess is asked of its console."""
import os
import re
import shutil
import subprocess

from reports import Fault

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PATIENCE = 600  # seconds


def program():
    """The engine: what VREL names, the one built in this tree, or an installed one."""
    built = [os.path.join(ROOT, "build", preset, "vrel") for preset in ("release", "pgo", "debug")]
    for path in [os.environ.get("VREL"), *built, shutil.which("vrel")]:
        if path and os.path.isfile(path):
            return os.path.abspath(path)
    raise Fault("the engine isn't built: scripts/run builds it, or VREL names another one")


def run(*arguments, script="", folder):
    """What the engine prints, line by line, for a script on its input."""
    try:
        done = subprocess.run([program(), "-nolog", "-hash", "1", *arguments], input=script.encode("latin-1"),
                              cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=PATIENCE,
                              check=True)
    except (OSError, subprocess.SubprocessError) as fault:
        raise Fault(f"the engine failed: {fault}") from fault
    return done.stdout.decode("latin-1").split("\n")


def fens(lines):
    """The positions among the console's lines: each board has its text above it."""
    return [line for line in lines if line.count("/") == 7 and re.fullmatch(r"[1-8A-Za-z/]+ [wb] \S+ \S+", line)]


def squares(fen):
    """The board of a position as 64 letters, a8 first, with "." for an empty square."""
    return re.sub(r"\d", lambda digit: "." * int(digit[0]), fen.split(" ", 1)[0]).replace("/", "")


def square_name(index):
    return "abcdefgh"[index % 8] + "87654321"[index // 8]
