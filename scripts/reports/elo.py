"""What the results of a match say about the strength of its players. Wins, draws and losses are those of one player."""
import math

NORMAL_95 = 1.959964  # standard deviations to each side that hold 95 %
NEARLY_NOTHING = 1e-9


def share(wins, draws, losses):
    return (wins + draws / 2) / (wins + draws + losses)


def expected(elo):
    """The share that a player can expect who is so much stronger."""
    return 1 / (1 + 10 ** (-elo / 400))


def difference(part):
    """The difference in Elo that makes a player expect this share, infinite for nothing and all."""
    if not 0 < part < 1:
        return math.copysign(math.inf, part - 0.5)
    return 400 * math.log10(part / (1 - part))


def margin(wins, draws, losses):
    """The share lies so far to either side in 95 of 100 such matches."""
    games, mean = wins + draws + losses, share(wins, draws, losses)
    variance = (wins * (1 - mean) ** 2 + draws * (0.5 - mean) ** 2 + losses * mean**2) / games
    return NORMAL_95 * math.sqrt(variance / games)


def superiority(wins, losses):
    """The likelihood that the player is the stronger one, if before the match any strength was as likely as any other:
    the chance of at most so many wins in one decided game more between equals. Draws say nothing about it."""
    games = wins + losses + 1
    even = games * math.log(2)
    whole = math.lgamma(games + 1)
    return math.fsum(math.exp(whole - math.lgamma(k + 1) - math.lgamma(games - k + 1) - even) for k in range(wins + 1))


def sprt_bounds(alpha, beta):
    """Between these logarithms of the likelihood ratio a sequential test goes on."""
    return math.log(beta / (1 - alpha)), math.log((1 - beta) / alpha)


def _tilt(counts, mean):
    """How the frequencies have to be tilted so that the share is `mean` and the results as likely as they can be: each
    is divided by 1 + tilt * (result - mean)."""
    low, high = -1 / (1 - mean), 1 / mean
    for _ in range(200):
        tilt = (low + high) / 2
        slope = sum(n * (a - mean) / (1 + tilt * (a - mean)) for a, n in counts if n)
        low, high = (tilt, high) if slope > 0 else (low, tilt)
    return (low + high) / 2


def likelihood_ratio(wins, draws, losses, elo0, elo1):
    """The logarithm of how much likelier the results are if the player is stronger by `elo1` than if by `elo0`, with
    the draws as likely as suits each best."""
    counts = [(1.0, wins + NEARLY_NOTHING), (0.5, draws), (0.0, losses + NEARLY_NOTHING)]
    mean0, mean1 = expected(elo0), expected(elo1)
    tilt0, tilt1 = _tilt(counts, mean0), _tilt(counts, mean1)
    return math.fsum(n * math.log((1 + tilt0 * (a - mean0)) / (1 + tilt1 * (a - mean1))) for a, n in counts if n)
