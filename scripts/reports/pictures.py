"""Pictures, by matplotlib: small ones, to stand in a text."""
import io
import os
import subprocess
import sys

from reports import Fault, elo
from reports.tuning import MOST_SHOWN

PACKAGE = "python3-matplotlib"
SYSTEM_PYTHON = "/usr/bin/python3"
SHORTEST = 0.001  # seconds
FIRST_GAMES = 10  # before them a share says nothing
INK, SECOND, DOUBT = "#1f4e79", "#c05a00", "#b00020"


def _can_draw(python):
    return os.path.exists(python) and not subprocess.run([python, "-c", "import matplotlib"], check=False,
                                                         stderr=subprocess.DEVNULL).returncode


def prepare():
    """Sees to matplotlib: this Python's, that of the system's Python, which then goes on with the work, or, where that
    may be installed, a new one. To be called before anything is printed."""
    if _can_draw(sys.executable):
        return
    if not _can_draw(SYSTEM_PYTHON) and os.path.exists("/usr/bin/apt-get") and os.geteuid() == 0:
        for step in (["update", "-qq"], ["install", "-y", "-qq", PACKAGE]):
            subprocess.run(["apt-get", *step], stdout=sys.stderr, stdin=subprocess.DEVNULL, check=False,
                           env={**os.environ, "DEBIAN_FRONTEND": "noninteractive"})
    if not _can_draw(SYSTEM_PYTHON):
        raise Fault(f"pictures need matplotlib: please install {PACKAGE}")
    os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, "-B", *sys.argv])


def _figure(panels=1):
    import matplotlib
    matplotlib.use("Agg")
    matplotlib.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "vrel", "font.size": 9,
                                "font.family": "sans-serif", "axes.spines.top": False, "axes.spines.right": False})
    from matplotlib.figure import Figure
    figure = Figure(figsize=(6.4, 3.0), layout="constrained")
    return figure, figure.subplots(1, panels)


def of_match(match):
    figure, axes = _figure()
    shares, margins = [], []
    for number in range(1, len(match.points) + 1):
        counts = match.counts(match.points[:number])
        shares.append(elo.share(*counts))
        margins.append(elo.margin(*counts) if number >= FIRST_GAMES else 0)
    first = min(FIRST_GAMES, len(shares)) - 1
    numbers = range(first + 1, len(shares) + 1)
    low = [share - margin for share, margin in zip(shares, margins)][first:]
    high = [share + margin for share, margin in zip(shares, margins)][first:]
    axes.fill_between(numbers, low, high, color=INK, alpha=0.2, linewidth=0, label="95 %")
    axes.plot(numbers, shares[first:], color=INK, linewidth=1.5)
    axes.axhline(0.5, color="gray", linewidth=0.8, linestyle="--")
    axes.set(xlabel="games", ylabel=f"share of {match.players[0]}", xlim=(first + 1, max(len(shares), first + 2)))
    axes.legend(frameon=False)
    return figure


def of_tuning(tuning):
    figure, (left, right) = _figure(2)
    errors = [entry.error for entry in tuning.passes]
    left.plot(range(len(errors)), errors, color=INK, marker="o", markersize=3)
    left.plot([tuning.best], [errors[tuning.best]], color=SECOND, marker="o")
    left.set(xlabel="pass", ylabel="error")
    left.ticklabel_format(useOffset=False)
    rows = [row for row in tuning.changes(tuning.best) if row[3]][:MOST_SHOWN][::-1]
    colours = [INK if row[3] > 0 else SECOND for row in rows]
    right.barh([row[0] for row in rows], [row[3] for row in rows], color=colours)
    right.axvline(0, color="gray", linewidth=0.8)
    right.set(xlabel="change")
    right.tick_params(axis="y", labelsize=7, length=0)
    return figure


def of_suite(suite):
    figure, axes = _figure()
    times = sorted(max(entry.time, SHORTEST) for entry in suite.entries if entry.solved)
    axes.step([SHORTEST, *times], range(len(times) + 1), where="post", color=INK)
    axes.set(xlabel="seconds for the position", ylabel=f"solved of {len(suite.entries)}", ylim=(0, None))
    axes.set_xscale("log")
    axes.set_xlim(SHORTEST, 2 * max(times, default=SHORTEST))
    return figure


def of_game(game):
    figure, axes = _figure()
    scored = [(i + 1, move.score / 100) for i, move in enumerate(game.moves) if move.score is not None]
    if not scored:
        raise Fault("the game has no scores to draw")
    axes.axhline(0, color="gray", linewidth=0.8)
    axes.plot([ply for ply, _ in scored], [max(-10, min(10, score)) for _, score in scored], color=INK)
    doubtful = [(ply, max(-10, min(10, score))) for ply, score in scored if game.moves[ply - 1].doubtful]
    if doubtful:
        axes.plot(*zip(*doubtful), "o", color=DOUBT, label="doubtful")
        axes.legend(frameon=False)
    axes.set(xlabel="plies", ylabel="score for white, pawns")
    return figure


def draw(figure, name):
    """The picture as SVG or PNG, by the ending of the name."""
    kind = os.path.splitext(name)[1].lower()
    data = io.BytesIO()
    figure.savefig(data, format=kind[1:], dpi=150, metadata={"Date": None} if kind == ".svg" else None)
    return data.getvalue()
