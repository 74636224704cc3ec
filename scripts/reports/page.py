"""The page: one file that holds its style, its scripts and what it shows, and asks for nothing else."""
import base64
import hashlib
import html
import json
import os
import re

from reports import engine, games

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "page")
MODULES = ["board.js", "curve.js", "evaluation.js", "page.js"]  # each uses those before it


def _read(name):
    with open(os.path.join(FOLDER, name), encoding="utf-8") as file:
        return file.read()


def _script():
    """The modules as one script, in which no file has to be fetched."""
    return "".join(re.sub(r"^import .*\n|^export ", "", _read(name), flags=re.M) for name in MODULES)


def _hash(text):
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode() + "'"


def _page(title, data):
    """What is shown stands in the page as data that can't end its element; the scripts make nothing but text of it."""
    style, script = "\n" + _read("drawings.css") + _read("page.css"), "\n" + _script()
    shown = json.dumps(data, separators=(",", ":"), ensure_ascii=False).replace("<", "\\u003c")
    parts = {"TITLE": html.escape(title), "STYLE": style, "SCRIPT": script, "DATA": shown,
             "POLICY": f"default-src 'none'; style-src {_hash(style)}; script-src {_hash(script)}"}
    return re.sub(r"\{\{(\w+)\}\}", lambda found: parts[found[1]], _read("page.html"))


def _changes(before, after):
    """The squares that differ, each with what stands there now: "e2.e4P"."""
    return "".join(engine.square_name(i) + after[i] for i in range(64) if before[i] != after[i])


def _game(game, fens):
    boards = [engine.squares(fen) for fen in fens]
    moves = []
    for ply, (move, before, after) in enumerate(zip(game.moves, boards, boards[1:])):
        entry = {"number": games.number_of(game, ply), "text": games.move_text(move, before, after),
                 "changes": _changes(before, after)}
        if move.score is not None:
            entry["score"] = move.score
        if move.doubtful:
            entry["doubtful"] = True
        moves.append(entry)
    return {"title": game.title, "tags": list(game.tags.items()), "board": boards[0], "moves": moves}


def of_games(name, lines, played, chosen):
    """A page with the games, the chosen one shown first, below what the report says."""
    name = games.as_text(os.path.basename(name).encode("utf-8", "replace"))
    entries = [_game(game, fens) for game, fens in zip(played, games.positions(played))]
    return _page(name, {"name": name, "report": lines, "games": entries, "chosen": chosen})


def of_position(evaluation):
    """A page with the evaluation as a picture."""
    keys = "fen board eval qscore stage draw_adj in_check hung pinned free terms surplus shares parts".split()
    shown = {key: getattr(evaluation, key) for key in keys}
    return _page("Evaluation", {"name": "Evaluation", "report": evaluation.lines, "evaluation": shown})
