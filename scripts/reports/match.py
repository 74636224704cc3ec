"""A match: the games of two players, and what they say about the difference between them."""
from reports import elo
from reports.games import RESULTS


class Match:
    """Results are seen from the first player's side: the first in alphabetical order."""

    def __init__(self, name, games, text):
        self.players = sorted({game.tag(side) for game in games for side in ("White", "Black")})
        self.games = [game for game in games if game.result in RESULTS]
        self.name = name
        self.unfinished = len(games) - len(self.games)
        self.without_move = text.count("a1a1")  # what a match writes when there is none to play
        self.points = [RESULTS[game.result][game.tag("White") != self.players[0]] for game in self.games]

    def counts(self, points=None):
        """Wins, draws and losses."""
        points = self.points if points is None else points
        return [points.count(value) for value in (1, 0.5, 0)]

    def by_colour(self, colour):
        return [point for point, game in zip(self.points, self.games) if game.tag(colour) == self.players[0]]

    @property
    def different(self):
        return len({tuple(move.text for move in game.moves) for game in self.games})


def is_match(games):
    """True for several games of two players with names, not all of them without a result."""
    names = {game.tag(side) for game in games for side in ("White", "Black")}
    return len(games) > 1 and len(names) == 2 and "?" not in names and any(game.result in RESULTS for game in games)


def _share_text(counts):
    return f"{elo.share(*counts):.3f}" if sum(counts) else "    -"


def _elo_text(value):
    return "all of it" if value in (float("inf"), float("-inf")) else f"{value:+.1f}"


def _players(match):
    yield f"{'':20} games   wins  draws losses  share  as white  as black"
    counts = match.counts()
    white, black = (match.counts(match.by_colour(colour)) for colour in ("White", "Black"))
    for player, of, shares in ((match.players[0], counts, (white, black)),
                               (match.players[1], counts[::-1], (black[::-1], white[::-1]))):
        figures = "".join(f"{n:7}" for n in (sum(of), *of))
        yield f"{player[:19]:19}{figures}  {_share_text(of)}     {_share_text(shares[0])}     {_share_text(shares[1])}"


def _strength(match, bounds):
    wins, draws, losses = counts = match.counts()
    part, margin = elo.share(*counts), elo.margin(*counts)
    low, high = (_elo_text(elo.difference(value)) for value in (part - margin, part + margin))
    yield f"share of {match.players[0]}: {part:.3f} +/- {margin:.3f} (95 %)"
    yield f"difference in Elo: {_elo_text(elo.difference(part))}, between {low} and {high} (95 %)"
    yield f"likelihood that {match.players[0]} is the stronger one: {100 * elo.superiority(wins, losses):.1f} %"
    low, high = elo.sprt_bounds(bounds.alpha, bounds.beta)
    ratio = elo.likelihood_ratio(*counts, bounds.elo0, bounds.elo1)
    verdict = "it is" if ratio >= high else "it isn't" if ratio <= low else "not decided yet"
    yield (f"SPRT, stronger by {bounds.elo1:g} rather than by {bounds.elo0:g} Elo: {verdict}; "
           f"log of the likelihood ratio {ratio:.2f}, decided at {low:.2f} and {high:.2f}")


def _endings(match):
    results = [game.result for game in match.games]
    lengths = [(len(game.moves) + 1) // 2 for game in match.games]
    yield f"lengths in moves: {min(lengths)} to {max(lengths)}, {sum(lengths) / len(lengths):.1f} in the mean"
    drawn = f"{results.count('1/2-1/2')} drawn"
    if match.without_move:
        drawn += f", of which {match.without_move} where no move was left to play or a position came back"
    yield f"ends: white won {results.count('1-0')}, black won {results.count('0-1')}, {drawn}"
    reasons = [game.tags["Termination"] for game in match.games if "Termination" in game.tags]
    for reason in sorted(set(reasons), key=lambda reason: (-reasons.count(reason), reason)):
        yield f"{reasons.count(reason):7}  {reason}"
    if match.unfinished:
        yield f"left out: {match.unfinished} without a result"


def lines(match, bounds):
    """The report, line by line."""
    yield f"{match.name}: {len(match.games)} games, {match.different} of them different"
    yield from _players(match)
    yield from _strength(match, bounds)
    yield from _endings(match)
