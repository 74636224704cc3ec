#!/usr/bin/env python3
"""The checker of the includes finds what it is there for."""

import os
import shutil
import tempfile
import unittest

import check_includes


class CheckIncludes(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        for header in ("platform/clock.h", "board/position.h", "board/keys.h", "eval/evaluate.h", "search/search.h",
                       "interface/messages.h", "interface/uci.h", "interface/pblock.h"):
            self.write(header, "#pragma once\n")

    def write(self, path, text):
        path = os.path.join(self.folder, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def faults(self, path, text):
        self.write(path, text)
        return check_includes.check_file(self.folder, path)

    def test_downward_is_fine(self):
        for path, header in [("search/node.cpp", "eval/evaluate.h"), ("eval/king.cpp", "board/keys.h"),
                             ("board/fen.cpp", "interface/pblock.h"), ("eval/king.cpp", "interface/messages.h"),
                             ("interface/main.cpp", "search/search.h"), ("search/root.cpp", "search/search.h")]:
            with self.subTest(path=path, header=header):
                self.assertEqual(self.faults(path, f'#include "{header}"\n'), [])

    def test_upward_needs_a_reason(self):
        self.assertTrue(self.faults("board/fen.cpp", '#include "interface/messages.h"\n'))
        self.assertTrue(self.faults("search/root.cpp", '#include "interface/uci.h"\n'))
        self.assertTrue(self.faults("eval/king.cpp", '#include "search/search.h"\n'))
        self.assertFalse(self.faults("board/fen.cpp", '#include "interface/messages.h"  // tells of a bad board\n'))

    def test_records_lean_on_records_only(self):
        self.assertFalse(self.faults("search/search_thread.h", '#pragma once\n#include "board/position.h"\n'))
        self.assertTrue(self.faults("search/search_thread.h", '#pragma once\n#include "board/keys.h"\n'))

    def test_platform_knows_nothing_above_it(self):
        self.assertTrue(self.faults("platform/file.cpp", '#include "board/position.h"\n'))

    def test_unknown_places(self):
        self.assertTrue(self.faults("board/fen.cpp", '#include "board/gone.h"\n'))
        self.assertTrue(self.faults("misc/fen.cpp", "\n"))

    def test_header_without_guard(self):
        self.assertTrue(self.faults("board/fen.h", "\n"))

    def test_header_that_leans_on_its_includer(self):
        self.write("board/keys.h", "#pragma once\nuint64_t key;\n")
        _, faults = check_includes.check_tree(self.folder, os.environ.get("CXX", "g++"))
        self.assertEqual(len(faults), 1)
        self.assertIn("board/keys.h", faults[0])


if __name__ == "__main__":
    unittest.main()
