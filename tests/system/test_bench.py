#!/usr/bin/env python3
"""The bench counts the same nodes in every process, and its total is the sum of its lines."""

import os
import re
import subprocess
import unittest

BENCH = os.path.join(os.path.dirname(os.environ["VREL"]), "vrel_bench")
DEPTH = "5"


def run(*arguments):
    return subprocess.run([BENCH, *arguments], stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)


def counts(lines):
    return [int(line.split()[0]) for line in lines]


class Bench(unittest.TestCase):
    def test_two_runs_agree(self):
        first, second = (run(DEPTH) for _ in range(2))
        self.assertEqual(first.returncode, 0, first.stderr)
        self.assertEqual(counts(first.stdout.splitlines()), counts(second.stdout.splitlines()))

    def test_total_is_the_sum(self):
        *positions, last = run(DEPTH).stdout.splitlines()
        self.assertRegex(last, r"^\d+ nodes \d+ nps$")
        self.assertGreater(len(positions), 20)
        self.assertEqual(sum(counts(positions)), int(re.match(r"\d+", last).group()))

    def test_bad_depths_are_refused(self):
        for depth in ("0", "-3", "67", "x"):
            with self.subTest(depth=depth):
                done = run(depth)
                self.assertEqual((done.returncode, done.stdout), (2, ""))


if __name__ == "__main__":
    unittest.main()
