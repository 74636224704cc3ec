"""Games of the program against itself over pipes, every move and every line checked against the rules.

    test_games.py [GAMES BASE_MS INCREMENT_MS WORKERS SEED]

With numbers the clocks are watched as well, for which the machine must have nothing else to do.
"""
import os
import random
import re
import shutil
import sys
import tempfile
import time

from program import ROOT, VREL, Program

START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"
OPENING = 8  # random plies
LINE = re.compile(r"info (multipv \d+ )?depth \d+ time \d+ score cp (-?\d+) nodes \d+ nps \d+ pv((?: [a-h1-8qnbr]{4,5})+)$")
PROGRESS = re.compile(r"info (depth \d+ time \d+ nodes \d+ nps \d+ hashfull \d+|currmove \w{4} currmovenumber \d+)$")


class Rules:
    """The rules of chess, asked of a program that knows nothing else."""

    def __init__(self):
        self.program = Program(program=os.path.join(os.path.dirname(VREL), "tests/rules"))

    def after(self, moves):
        """The position behind moves from the start: FEN, quiet plies, number of legal moves, check."""
        self.program.send(f"{START} moves {' '.join(moves)}")
        answer = self.program.read_line()
        assert not answer.startswith("illegal"), (answer, moves)
        *fen, quiet, legal, check = answer.split()
        return " ".join(fen), int(quiet), int(legal), check == "1"

    def is_legal(self, moves):
        self.program.send(f"{START} moves {' '.join(moves)}")
        return not self.program.read_line().startswith("illegal")

    def random_opening(self, rng):
        moves = []
        while len(moves) < OPENING:
            files = "abcdefgh"
            move = f"{rng.choice(files)}{rng.randint(1, 8)}{rng.choice(files)}{rng.randint(1, 8)}"
            if self.is_legal(moves + [move]):
                moves.append(move)
        return moves


def is_over(rules, moves, seen):
    fen, quiet, legal, _ = rules.after(moves)
    seen.append(fen)
    bare = re.fullmatch(r"[^PRQprq]*", fen.split()[0]) and sum(c in "NBnb" for c in fen.split()[0]) <= 1
    return not legal or quiet >= 100 or seen.count(fen) >= 3 or bare


def check(rules, moves, lines):
    """All lines of an answer; the move."""
    for line in lines[:-1]:
        shown = LINE.match(line)
        assert shown or PROGRESS.match(line), line
        assert not shown or abs(int(shown[2])) <= 10000 and rules.is_legal(moves + shown[3].split()), (line, moves)
    reply = lines[-1].split()[1::2]
    assert rules.is_legal(moves + reply), (lines[-1], moves)
    return reply[0]


def longest(clock, increment, ply):
    """Seconds that a move may take by the engine's own rules, with every extension."""
    moves = 24 if ply > 25 else 36 - ply // 2
    target = clock / (moves + 1) * 1.1 + (increment * clock / (2 * increment + clock) if clock > 0.1 else 0)
    return max(min(target, clock * 0.65 - 0.1), 0.002) + 0.15 * clock


def play(rules, base, increment, workers, seed, folder):
    """One game. The number of plies, the most by which a move went beyond its time, and the least that a clock showed."""
    places = [os.path.join(folder, name) for name in ("white", "black")]
    for place in places:
        os.makedirs(place, exist_ok=True)
    players = [Program("-nolog", "-hash", "16", "-threads", str(workers), folder=place) for place in places]
    moves, seen, clocks, overrun = rules.random_opening(random.Random(seed)), [], [base, base], -base
    least = base
    while not is_over(rules, moves, seen) and len(moves) < 600:
        side = len(moves) % 2
        white, black = (max(int(clock * 1000), 1) for clock in clocks)
        players[side].send("position startpos moves " + " ".join(moves))
        began = time.monotonic()
        players[side].send(f"go wtime {white} btime {black} winc {int(increment * 1000)} binc {int(increment * 1000)}")
        lines = players[side].wait_for("bestmove")
        took = time.monotonic() - began
        overrun = max(overrun, took - longest(clocks[side], increment, len(moves)))
        clocks[side] -= took
        least = min(least, clocks[side])
        clocks[side] += increment
        moves.append(check(rules, moves, lines))
    assert all(player.quit() == 0 for player in players)
    return len(moves), overrun, least


def check_match(rules, folder):
    """A match against a player that counts no pieces: its games, their results and the score."""
    weights = [f"{piece}_value_{stage}" for piece in ("knight", "bishop", "rook", "queen") for stage in ("op", "en")]
    with open(os.path.join(folder, "player2.par"), "w", encoding="ascii") as file:
        file.write("".join(f"{weight} 0\n" for weight in weights))
    shutil.copy(os.path.join(ROOT, "tests/data/book/line.opn"), os.path.join(folder, "vrel.opn"))
    program = Program("-nolog", "-hash", "1", "-match", "match.pgn", folder=folder)
    # Positions set up meanwhile are none of the match's business.
    program.send("position fen 4k3/8/8/8/8/8/8/4K2R w - -", "ucinewgame", "setoption name Hash value 2")
    score = program.wait_for("  19 games, ")[-1]
    program.send("quit")
    total = program.rest()[-1]
    assert program.wait() == 0
    with open(os.path.join(folder, "match.pgn"), encoding="ascii") as file:
        games = file.read().split("[Event selfplay]\n")
    assert games[0] == "" and len(games) > 19
    results, colours, different = {"wins": 0, "losses": 0, "draws": 0}, set(), set()
    for number, game in enumerate(games[1:], 1):
        head = re.match(rf'\[Game {number}\]\n\[White "Player([12])"\]\n\[Black "Player([12])"\]\n'
                        r'\[Result "(1-0|0-1|1/2-1/2)"\]\n', game)
        assert head and head[1] != head[2], game[:200]
        moves = re.findall(r"(\w{4}) \{(-?\d+\.\d\d)/(\d+)\}", game)
        assert re.sub(r"\w{4} \{\S+\}(   \w{4} \{\S+\}(\n|$))?", "", game[head.end():]) == "\n\n", game
        from_book = [(score, depth) == ("0.00", "0") for _, score, depth in moves]
        assert all(from_book[:12]) and not any(from_book[12:]) and len(moves) > 12, game
        texts = [move for move, _, _ in moves]
        different.add(tuple(texts))
        played = texts[:-1]
        promotions = [i for i, move in enumerate(played) if not rules.is_legal(played[:i + 1])]
        assert not promotions or played[promotions[0]][3] in "18", game
        last, mover = float(moves[-1][1]), len(moves) % 2  # 1 if white found the last move
        expected = "1/2-1/2" if abs(last) <= 9 else "1-0" if (last > 9) == (mover == 1) else "0-1"
        assert head[3] == expected, game
        colours.add(head[1])
        if number <= 19:
            first_won = (head[3] == "1-0") == (head[1] == "1")
            results["draws" if "/" in head[3] else "wins" if first_won else "losses"] += 1
    rate = (results["wins"] + results["draws"] / 2) / 19
    assert results["wins"] > results["losses"] and len(colours) == 2, results
    assert total == f"{len(games) - 1} games, {len(different)} of them different", total
    assert score == f"  19 games,  {results['wins']:3} {results['losses']:3} {results['draws']:3}  {rate:.3f} (+/- 0.404)  "


def soak(rules, folder, games, base, increment, workers, seed):
    played = [play(rules, base / 1000, increment / 1000, workers, seed + i, folder) for i in range(games)]
    least = min(game[2] for game in played)
    print(f"{games} games, {sum(game[0] for game in played)} plies, the worst move "
          f"{1000 * max(game[1] for game in played):.1f} ms beyond its time, least clock {1000 * least:.1f} ms")
    sys.exit(least < 0)


def main():
    rules = Rules()
    with tempfile.TemporaryDirectory() as folder:
        if len(sys.argv) > 1:
            soak(rules, folder, *(int(word) for word in sys.argv[1:]))
        for workers in (1, 2):
            assert play(rules, 0.5, 0.01, workers, workers, folder)[0] > OPENING
        check_match(rules, folder)


if __name__ == "__main__":
    main()
