"""The tuning build: each weight is an option, what its list says can be set, and a value counts from the next search on."""
import os
import re
import subprocess
import unittest

from program import VREL, Program

TUNE = os.path.join(os.path.dirname(VREL), "tests/vrel_tune")
SEARCH = ["position fen r2q1rk1/pp2bppp/2n1bn2/3p4/3N4/1BN1P3/PP3PPP/R1BQ1RK1 w - - 0 11", "go depth 8"]


def introduction(program):
    engine = Program("-nolog", program=program)
    engine.send("uci")
    lines = engine.wait_for("uciok")
    engine.quit()
    return lines


class Engine(Program):
    def __init__(self):
        super().__init__("-nolog", "-hash", "4", program=TUNE)
        self.send("uci")
        self.wait_for("uciok")

    def set(self, **values):
        self.send(*(f"setoption name {name} value {value}" for name, value in values.items()))
        return self.ready()[:-1]

    def search(self):
        self.send(*SEARCH)
        return [re.sub(r" (time|nps) \d+", "", line) for line in self.wait_for("bestmove")]


class TuningOptions(unittest.TestCase):
    def test_the_list_for_tuners_is_that_of_the_options(self):
        ordinary, tuning = introduction(VREL), introduction(TUNE)
        self.assertEqual(tuning[:len(ordinary) - 1], ordinary[:-1])
        options = [re.fullmatch(r"option name (\S+) type spin default (\S+) min (\S+) max (\S+)", line).groups()
                   for line in tuning[len(ordinary) - 1:-1]]
        listed = subprocess.run([TUNE, "tune_spec"], stdout=subprocess.PIPE, text=True, check=True, timeout=60).stdout
        rows = [line.split(", ") for line in listed.splitlines()]
        self.assertEqual([(row[0], *row[2:5]) for row in rows], options)
        for name, kind, *numbers in rows:
            value, least, most, step, rate = map(float, numbers)
            self.assertTrue(kind == "int" and least <= value <= most and 0 < step < most - least and 0 < rate < 1, name)
        self.assertEqual(subprocess.run([VREL, "tune_spec"], stderr=subprocess.DEVNULL, check=False).returncode, 1)

    def test_a_value_counts_at_once_and_leaves_nothing_behind(self):
        changes = {"queen_value_op": 300, "queen_value_en": 300, "hung": -3, "pawn_doubled": -20, "LMR_depth": 7}
        fresh = Engine()
        told = fresh.set(**changes)
        self.assertEqual(told, [f"info string {name} set to {value}" for name, value in changes.items()])
        changed = fresh.search()
        used, plain = Engine(), Engine().search()
        self.assertEqual(used.search(), plain)
        used.set(**changes)
        self.assertEqual(used.search(), changed)
        used.set(queen_value_op=1000, queen_value_en=1080, hung=-17, pawn_doubled=-5, LMR_depth=3)
        self.assertEqual(used.search(), plain)
        self.assertNotEqual(plain, changed)

    def test_all_values_at_their_ends_can_be_searched_with(self):
        listed = subprocess.run([TUNE, "tune_spec"], stdout=subprocess.PIPE, text=True, check=True, timeout=60).stdout
        for column, beyond in ((3, -99999), (4, 99999)):
            engine = Engine()
            rows = [line.split(", ") for line in listed.splitlines()]
            self.assertEqual(engine.set(**{row[0]: beyond for row in rows}),
                             [f"info string {row[0]} set to {row[column]}" for row in rows])
            self.assertTrue(engine.search()[-1].startswith("bestmove "))
            self.assertEqual(engine.quit(), 0)


if __name__ == "__main__":
    unittest.main(failfast=True)
