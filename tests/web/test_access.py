"""The page for those who don't see it, or only large and dark: nothing that axe-core finds, nothing beyond the edge."""
import json
import os
import sys
import unittest

import browser
import webhost
from program import ROOT

AXE = os.path.join(ROOT, "build/web/tools/node_modules/axe-core/axe.min.js")
PROMOTION = {"fen": "7k/P7/8/8/8/8/8/K7 w - - 0 1", "moves": []}
MATE = {"fen": "7k/R7/8/8/8/8/8/KR6 w - - 0 1",
        "moves": [{"uci": "b1b8", "text": "Rb8#", "fen": "1R5k/R7/8/8/8/8/8/K7 b - -"}]}


class Access(webhost.Visit):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        with open(AXE, encoding="utf-8") as file:
            cls.axe = file.read()

    def open(self, game=None, place="#play"):
        self.browser.open(self.site.address + "icon.svg")
        self.browser.value(f"localStorage.setItem('vrel.play', {json.dumps(json.dumps({'game': game}))})")
        self.browser.open(self.site.address + place)
        self.browser.wait("document.querySelector('.mode:not([hidden])')")

    def look(self, what):
        """In both colour schemes, on a phone and on a desk."""
        for scheme in ("light", "dark"):
            for width in (360, 1280):
                with self.subTest(what, scheme=scheme, width=width):
                    self.browser.look(width=width, height=740, scheme=scheme)
                    self.assertEqual(self.findings(), [])
                    self.assertLessEqual(self.browser.value("document.documentElement.scrollWidth"), width)

    def findings(self):
        run = """
            const done = arguments[0];
            const words = each => each.nodes.map(node => `${each.id}: ${node.html} ${node.failureSummary}`);
            axe.run().then(found => done(found.violations.flatMap(words)), error => done([String(error)]));"""
        return self.browser.ask("/execute/async", {"script": self.axe + run, "args": []})

    def test_the_game(self):
        self.open()
        self.browser.wait("document.querySelector('.movable')")
        self.look("the start")
        self.browser.click('[aria-label^="e2"]')
        self.look("a piece taken up")
        self.open(PROMOTION)
        self.browser.wait("document.querySelector('.movable')")
        self.browser.click('[aria-label^="a7"]')
        self.browser.click('[aria-label^="a8"]')
        self.look("a promotion")
        self.open(MATE)
        self.browser.wait("document.querySelector('.state.over')")
        self.look("the end")

    def test_the_dialogs(self):
        self.open()
        self.browser.wait("document.querySelector('.movable')")
        self.browser.click(".actions button")
        self.look("a new game")
        self.browser.click(".choices > button")
        self.browser.click(".setup .row button")
        self.browser.click(".setup .main")
        self.browser.wait("document.querySelector('.setup .trouble').textContent")
        self.look("a position set up")

    def test_the_analysis(self):
        self.open(place="#analyse")
        self.look("the analysis")


if __name__ == "__main__":
    if not browser.HERE or not webhost.HERE or not os.path.exists(AXE):
        print("Chromium, its driver, the built site or axe-core isn't here, so nobody looks for obstacles")
        sys.exit(77)
    unittest.main()
