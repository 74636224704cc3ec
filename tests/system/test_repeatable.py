"""Two processes given the same commands print the same lines, but for time."""
import re
import tempfile

from vrel_process import Engine


def session():
    with tempfile.TemporaryDirectory() as folder:
        engine = Engine("-nolog", folder=folder)
        for position in ("startpos", "fen r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -"):
            engine.send("ucinewgame", "position " + position, "go depth 10")
            engine.wait_for("bestmove", 120)  # a build with sanitizers takes its time
        assert engine.quit() == 0
        # Progress lines come only when a search takes seconds, and so depend on the clock.
        lines = [line for line in engine.seen if " pv " in line or line.startswith("bestmove")]
        return [re.sub(r" (time|nps) \d+", "", line) for line in lines]


first = session()
assert first == session()
assert sum(line.startswith("info depth 10 ") for line in first) >= 2, first
