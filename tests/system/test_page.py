"""The page of a report, driven in a browser: stepping, the curve, the evaluation's figures, text that would be more."""
import os
import subprocess
import sys
import tempfile
import unittest

import browser
from program import ROOT, run

REPORT = os.path.join(ROOT, "scripts/report")
SITE = os.path.join(ROOT, "tests/data/pgn/site.pgn")
POSITION = "r3r1k1/p3qpp1/1p5p/n1pP4/2B5/2Q2N1P/PP3PP1/3RR1K1 b - -"
HOSTILE = '{{DATA}}</script><script>document.title = "taken"</script><img src=x onerror="document.title=1">'


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.browser = browser.Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.folder.cleanup()

    def show(self, *arguments, text=None, **look):
        page = os.path.join(self.folder.name, "page.html")
        if text is not None:
            arguments = [os.path.join(self.folder.name, "in.pgn")]
            with open(arguments[0], "w", encoding="utf-8") as file:
                file.write(text)
        subprocess.run([REPORT, *arguments, "--page", page], check=True, stdout=subprocess.DEVNULL, timeout=60)
        self.browser.open(page, **look)

    def now(self):
        return self.browser.texts(".now")[0]

    def test_a_game_is_stepped_through_by_key_button_move_and_curve(self):
        self.show(SITE)
        board = "document.querySelector('.board').getAttribute('aria-label')"
        start = self.browser.value(board)
        self.assertIn("king e1", start)
        for act, shown in [(lambda: self.browser.press("ArrowRight"), "1. e4, +0.19"),
                           (lambda: self.browser.press("ArrowRight", "ArrowRight", "ArrowLeft"), "1... e5, +0.12"),
                           (lambda: self.browser.press("End", "ArrowRight"), "24. Bxe7"),
                           (lambda: self.browser.click(".steps button:nth-child(2)"), "23... Kf8"),
                           (lambda: self.browser.click(".moves li:nth-child(22) button"), "11... b5, +0.39, doubtful"),
                           (lambda: self.browser.press("ArrowRight"), "12. Qxb5, +0.47")]:
            act()
            self.assertEqual(self.now(), shown)
        self.assertEqual(self.browser.texts("[aria-current]"), ["12. Qxb5+0.47"])
        self.assertEqual(self.browser.value("document.activeElement.textContent"), "12. Qxb5+0.47")
        self.assertIn("queen b5", self.browser.value(board))
        self.browser.press("Home")
        self.assertEqual((self.now(), self.browser.value(board)), ("Start", start))

    def test_the_curve_has_a_point_for_each_score_and_a_click_goes_there(self):
        self.show(SITE)
        label = self.browser.value("document.querySelector('.curve').getAttribute('aria-label')")
        self.assertIn("47 plies, from +0.19 to +0.97; doubtful: 11... b5, 14... Bb7", label)
        points = self.browser.value("document.querySelector('.curve .line').getAttribute('points')").split()
        self.assertEqual(len(points), 39)
        at = [float(x) for x in points[21].split(",")]
        scale = self.browser.value("document.querySelector('.curve').getBoundingClientRect().width") / 600
        self.browser.click(".curve", right=round((at[0] - 300) * scale), down=round((at[1] - 90) * scale))
        self.assertEqual(self.now(), "11... b5, +0.39, doubtful")

    def test_another_game_is_chosen_by_keyboard(self):
        games = "".join(f'[Event "x"]\n[White "A"]\n[Black "B"]\n[FEN "{POSITION}"]\n\n{move} *\n\n'
                        for move in ("Qxe1", "Rad8"))
        self.show(text=games)
        self.browser.value("document.querySelector('select').focus()")
        self.browser.press("ArrowRight")
        self.assertEqual(self.now(), "1... Qxe1")
        self.browser.click("option:nth-child(2)")
        self.browser.press("ArrowRight")
        self.assertEqual(self.now(), "1... Rad8")

    def test_nothing_of_a_file_is_more_than_text(self):
        tags = f'[Event "{HOSTILE}"]\n[White "{HOSTILE}"]\n[Black "&lt;b&gt; ü"]\n'
        self.show(text=tags + "\n1. e4 e5 *\n")
        title = self.browser.texts("h2")[0]
        self.assertTrue(title.startswith(HOSTILE.split('"', 1)[0]), title)
        page = self.browser.value("[document.title, document.images.length, document.scripts.length]")
        self.assertEqual(page, ["in.pgn", 0, 2])
        self.assertEqual(self.browser.complaints(), [])

    def test_a_long_game_is_shown_to_the_end_of_what_is_read(self):
        self.show(text='[Event "x"]\n\n' + "Nf3 Nf6 Ng1 Ng8 " * 250 + "*\n")
        self.browser.press("End")
        self.assertEqual(self.now(), "400... Ng8")
        self.assertIn("knight g8", self.browser.value("document.querySelector('.board').getAttribute('aria-label')"))

    def test_the_evaluation_shows_the_figures_of_the_console(self):
        self.show("--position", POSITION)
        console = run("-c", script=f"fen {POSITION}\nev\n")
        row = next(i for i, line in enumerate(console) if line.startswith("mtl="))
        sums = [[int(n) for n in line.split("=")[1].split("(")[0].split()] for line in console[row:row + 9]]
        cells = [int(text) for text in self.browser.texts(".terms td:not(.bars)")]
        self.assertEqual([cells[i:i + 3] for i in range(0, 27, 3)], sums)
        shares = [share for line in console[row + 9:row + 17] for share in line[20:].split() if share != "-"]
        self.assertEqual(self.browser.texts(".share"), shares)
        self.assertEqual(self.browser.value("document.querySelectorAll('.hung, .pinned, .path').length"), 2)
        self.assertTrue(self.browser.texts("dd")[0].startswith("-447 centipawns for black"))

    def test_phones_and_dark_rooms_see_all_of_it(self):
        for scheme, paper in [("light", "rgb(251, 250, 247)"), ("dark", "rgb(22, 24, 28)")]:
            for what in ([SITE], ["--position", POSITION]):
                with self.subTest(scheme, what=what):
                    self.show(*what, width=360, scheme=scheme)
                    self.assertLessEqual(self.browser.value("document.documentElement.scrollWidth"), 360)
                    self.assertEqual(self.browser.value("getComputedStyle(document.body).backgroundColor"), paper)
                    self.assertEqual(self.browser.complaints(), [])


if __name__ == "__main__":
    if not browser.HERE:
        print("Chromium and its driver aren't installed, so nobody looks at the page")
        sys.exit(77)
    unittest.main()
