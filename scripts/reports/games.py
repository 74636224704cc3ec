"""Games of a PGN file as the engine's scanner reads them: tags, moves, scores, doubtful moves; and their positions."""
import os
import re
import tempfile
from dataclasses import dataclass, field

from reports import Fault, engine

TAG = re.compile(r'\s*\[\s*(\w+)\s+(?:"((?:\\.|[^"\\])*)"?|([^\]]*))')
MOVE = re.compile(r"(?: *\d+\. |     ) (\S+) *  \{ *(-?\d+\.\d\d)?( \? .*)?\}$")
COORDINATES = re.compile(r"[a-h][1-8][a-h][1-8]")
RESULTS = {"1-0": (1, 0), "0-1": (0, 1), "1/2-1/2": (0.5, 0.5)}
PLIES_HELD = 600  # of a game the console can take back so many


@dataclass
class Move:
    text: str
    score: int | None  # centipawns, as white sees it
    doubtful: bool


@dataclass
class Game:
    tags: dict = field(default_factory=dict)
    moves: list = field(default_factory=list)
    fen_line: str = ""  # the line that tells where it starts

    def tag(self, name, default="?"):
        return self.tags.get(name) or default

    @property
    def result(self):
        return self.tag("Result", "*")

    @property
    def title(self):
        return f"{self.tag('White')} - {self.tag('Black')}  {self.result}"


def as_text(raw):
    """Text from a file that may be in UTF-8, without characters that would steer a terminal."""
    text = raw if isinstance(raw, bytes) else raw.encode("latin-1")
    try:
        decoded = text.decode("utf-8")
    except UnicodeDecodeError:
        decoded = text.decode("latin-1")
    return "".join(c if c.isprintable() else "?" for c in decoded)


def _take_tag(games, line):
    name, quoted, plain = TAG.match(line).groups()
    if not games or games[-1].moves or (name == "Event" and "Event" in games[-1].tags):
        games.append(Game())
    game = games[-1]
    if name == "FEN":
        game.fen_line = line
    value = plain if quoted is None else re.sub(r"\\(.)", r"\1", quoted)
    if name != "Tag":  # the scanner's own
        game.tags.setdefault(as_text(name), as_text(value.strip()))


def read(path):
    """The games of the file that have moves."""
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(os.path.abspath(path), os.path.join(folder, "in.pgn"))
        engine.run("-scan_pgn1", "in.pgn", folder=folder)
        try:
            with open(os.path.join(folder, "tmp.pgn"), encoding="latin-1", newline="\n") as file:
                lines = file.read().split("\n")
        except OSError as fault:
            raise Fault(f"{path}: the engine can't read it") from fault
    games = []
    for line in lines:
        if TAG.match(line):
            _take_tag(games, line)
        elif found := MOVE.match(line):
            text, score, doubtful = found.groups()
            if not games:
                games.append(Game())
            text = text.upper() if text.lower().startswith("o-o") else as_text(text)
            games[-1].moves.append(Move(text, score and round(float(score) * 100), bool(doubtful)))
    return [game for game in games if game.moves]


def _script(folder, game, number):
    """Has the console go backwards through the game, from as many starts as its memory asks for."""
    script = []
    for first in range(0, len(game.moves), PLIES_HELD):
        last = min(first + PLIES_HELD, len(game.moves))
        name = f"{number}_{first}"
        with open(os.path.join(folder, name), "w", encoding="latin-1") as file:
            moves = " ".join(move.text for move in game.moves[:last])
            file.write(f'[Event "x"]\n{game.fen_line}\n\n{moves}\n')
        script.append(f"load {name} 1\n" + "[\n" * (last - first))
    return script


def positions(games):
    """For each game the positions from its start to its end."""
    with tempfile.TemporaryDirectory() as folder:
        scripts = [_script(folder, game, number) for number, game in enumerate(games)]
        lines = engine.run("-c", script="".join(sum(scripts, [])) + "quit\n", folder=folder)
    parts, part = [], []
    for line in lines:
        if line.startswith("loading "):
            part = []
            parts.append(part)
        part.append(line)
    backwards = iter([engine.fens(part)[::-1] for part in parts])
    result = []
    for script in scripts:
        fens = next(backwards)
        for _ in script[1:]:
            fens += next(backwards)[1:]
        result.append(fens)
    return result


def move_text(move, before, after):
    """A move as people write it: coordinates get the letter of the piece and a sign for what is taken."""
    if not COORDINATES.match(move.text):
        return move.text
    names = [move.text[:2], move.text[2:4]]
    at = [(8 - int(name[1])) * 8 + "abcdefgh".index(name[0]) for name in names]
    piece = before[at[0]].upper()
    pieces = [len(board.replace(".", "")) for board in (before, after)]
    if piece == "K" and abs(at[0] - at[1]) == 2:
        return "O-O" if at[1] > at[0] else "O-O-O"
    text = ("" if piece == "P" else piece) + names[0] + ("x" if pieces[1] < pieces[0] else "-") + names[1]
    new = after[at[1]].upper()
    return text if new == piece else text + "=" + new


def number_of(game, ply):
    """What stands in front of the move of a ply, counted from 0."""
    first = 1 if re.search(r'"[^"]* b ', game.fen_line) else 0
    return f"{(ply + first) // 2 + 1}{'...' if (ply + first) % 2 else '.'}"


def lines(name, games, chosen):
    """The report, line by line: all games, and the scores of the chosen one."""
    yield f"{name}: {len(games)} game{'s' if len(games) > 1 else ''} with moves"
    for number, game in enumerate(games, 1):
        doubtful = sum(move.doubtful for move in game.moves)
        note = f", {doubtful} doubtful" if doubtful else ""
        yield f"{number:5}  {game.title}, {(len(game.moves) + 1) // 2} moves{note}"
    game = games[chosen]
    yield f"game {chosen + 1}, scores as white sees them:"
    for ply, move in enumerate(game.moves):
        score = "" if move.score is None else f"{move.score / 100:+8.2f}"
        yield f"{number_of(game, ply):>7} {move.text:7}{score}{'  doubtful' if move.doubtful else ''}".rstrip()
