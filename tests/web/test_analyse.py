"""The page's analysis, driven as people do: positions and games brought in, looked at, and taken away again."""
import json
import random
import sys
import unittest

import browser
import webhost

FOOLS = '[Event "A quick one"]\n[White "A"]\n[Black "B"]\n[Result "0-1"]\n\n1. f3 e5 2. g4 Qh4# 0-1\n'
ILLEGAL = '[White "A"]\n[Result "*"]\n\n1. e4 e5 2. Ke3 Nf6 *\n'
SCRIPT = '[White "<script>document.title=1</script><img src=x onerror=document.title=2>"]\n[Black "B"]\n\n1. d4 d5 *\n'
# White gives a pawn away in an even game.
BLUNDER = ('[White "A"]\n[Black "B"]\n[Result "0-1"]\n\n1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 4. Ba4 Nf6 5. O-O Be7 6. Re1 b5 7. Bb3 '
           "d6 8. c3 O-O 9. h3 Nb8 10. Bd5 Nxd5 11. exd5 Bb7 12. c4 bxc4 13. Nc3 Nd7 14. b3 cxb3 15. Qxb3 Nb6 16. a4 Bc8 0-1\n")
QUIET = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 3"
ENDING = "8/8/8/7k/R7/1R6/8/K7 w - - 0 1"
PASTE = """
    const bag = new DataTransfer();
    bag.setData('text', arguments[0]);
    document.body.dispatchEvent(new ClipboardEvent('paste', {clipboardData: bag, bubbles: true, cancelable: true}));"""
DROP = """
    const bag = new DataTransfer();
    bag.items.add(new File([new Uint8Array(arguments[0])], 'x.pgn'));
    document.body.dispatchEvent(new DragEvent('drop', {dataTransfer: bag, bubbles: true, cancelable: true}));"""


class Analyse(webhost.Visit):
    def setUp(self):
        self.open()

    def open(self, kept=None, settings=None, **look):
        self.browser.open(self.site.address + "icon.svg")
        for key, value in [("analyse", kept), ("analyse.settings", {"hash": 1, "threads": 1, **(settings or {})})]:
            self.browser.value(f"localStorage.setItem('vrel.{key}', {json.dumps(json.dumps(value))})")
        self.visit(**look)

    def visit(self, **look):
        self.browser.open(self.site.address + "#analyse", **look)
        self.browser.wait("document.querySelector('.mode:not([hidden]) .movable')")

    def paste(self, text):
        self.browser.ask("/execute/sync", {"script": PASTE, "args": [text]})

    def drop(self, contents):
        self.browser.ask("/execute/sync", {"script": DROP, "args": [list(contents)]})

    def moves(self):
        return [text.split()[-1] for text in self.browser.value(
            "[...document.querySelectorAll('.mode:not([hidden]) .moves button')].map(e => [...e.childNodes].find(n => n.nodeType === 3).data)")]

    def wait_for_moves(self, number):
        self.browser.wait(f"document.querySelectorAll('.moves button').length === {number}")

    def button(self, text):
        self.browser.value(f"[...document.querySelectorAll('.mode:not([hidden]) button, dialog button')]"
                           f".find(e => e.textContent === {json.dumps(text)}).click()")

    def test_a_position_has_as_many_lines_as_are_asked_for(self):
        self.paste(QUIET)
        self.browser.wait("document.querySelectorAll('.lines li').length === 2")
        self.assertRegex(self.browser.texts(".depth")[0], r"^Depth \d+(, .* nodes/s)?$")
        self.browser.value("(select => { select.value = 3; select.dispatchEvent(new Event('change')); })"
                           "(document.querySelector('.engine select'))")
        self.browser.wait("document.querySelectorAll('.lines li').length === 3")
        self.browser.value("document.querySelector('.lines li:first-child button:nth-of-type(2)').click()")
        self.wait_for_moves(2)
        self.paste(ENDING)
        self.browser.wait("document.querySelector('.lines .score')?.textContent === '#2'")
        self.assertEqual(self.browser.texts(".bar span"), ["#2"])
        self.button("Engine")
        self.browser.wait("!document.querySelectorAll('.lines li').length")

    def test_a_game_is_analysed_move_by_move(self):
        self.open(settings={"on": False, "limits": "depth 8"})
        self.drop(BLUNDER.encode())
        self.wait_for_moves(32)
        self.button("Analyse the game")
        told = self.browser.wait("announcer.textContent.startsWith('The game is analysed.') && announcer.textContent")
        self.assertIn("12. c4", told)
        self.assertIn("12. c4", self.browser.value("document.querySelector('.curve').ariaLabel"))
        self.assertIn("12. c4 ?", [text[:8] for text in self.browser.texts(".moves button")])
        scores = self.browser.texts(".moves .score")
        self.assertEqual(len(scores), 32)
        self.visit()
        self.wait_for_moves(32)
        self.assertEqual(self.browser.texts(".moves .score"), scores)

    def test_the_end_of_a_game_is_told(self):
        self.paste(FOOLS)
        self.wait_for_moves(4)
        self.assertEqual(self.moves(), ["f3", "e5", "g4", "Qh4#"])
        self.browser.press("End")
        self.browser.wait("document.querySelector('.mode:not([hidden]) .state').textContent === 'Checkmate'")
        self.assertEqual(self.browser.texts(".bar span"), ["−#1"])

    def test_a_game_that_was_played_is_taken_over_with_its_scores(self):
        self.open()
        self.browser.open(self.site.address + "icon.svg")
        game = {"fen": "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", "ply": 1, "doubtful": [],
                "tags": {"White": "A", "Black": "B"}, "scores": [{"centipawns": 31, "depth": 9}],
                "moves": [{"uci": "e2e4", "text": "e4", "fen": "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"}]}
        self.browser.value(f"localStorage.setItem('vrel.play', {json.dumps(json.dumps({'side': 'b', 'game': game}))})")
        self.browser.open(self.site.address + "#play")
        self.browser.wait("document.querySelector('.mode:not([hidden]) .movable')")
        self.button("Analyse")
        self.browser.wait("document.querySelector('.mode:not([hidden]) h2')?.textContent === 'A – B'")
        self.assertEqual(self.moves(), ["e4"])
        self.browser.press("Home")
        self.button("Copy, save")
        self.browser.value("navigator.clipboard.writeText = text => { window.copied = text; return Promise.resolve(); }")
        self.browser.click("[aria-label='Copy Game (PGN)']")
        self.assertIn("1. e4 {+0.31/9}", self.browser.wait("window.copied"))

    def test_a_run_that_is_left_is_taken_up_again(self):
        self.open(settings={"on": False, "limits": "depth 66 movetime 1000"})
        self.paste(FOOLS)
        self.wait_for_moves(4)
        self.button("Analyse the game")
        self.browser.wait("document.querySelectorAll('.moves .score').length === 1")
        self.browser.value("location.hash = '#play'")
        self.browser.wait("document.querySelector('nav [aria-current]').textContent === 'Play'")
        self.browser.value("location.hash = '#analyse'")
        self.browser.wait("announcer.textContent.startsWith('The game is analysed.')")
        self.assertEqual(len(self.browser.texts(".moves .score")), 4)

    def test_what_is_brought_in_and_makes_no_sense_gets_a_word(self):
        self.paste(FOOLS)
        self.wait_for_moves(4)
        noise = random.Random(1).randbytes(20000)
        for contents, word in [("8/8/8/8/8/8/8/8 w - - 0 1", "king"), (noise, ""), ("nothing of a game", "No game")]:
            with self.subTest(word):
                self.browser.value("document.querySelector('#notices button')?.click()")
                if isinstance(contents, str):
                    self.paste(contents)
                else:
                    self.drop(contents)
                self.browser.wait("document.querySelector('#notices p')")
                self.assertIn(word, self.browser.texts("#notices p")[0])
                self.assertEqual(len(self.moves()), 4)

    def test_texts_of_a_game_are_texts(self):
        self.paste(SCRIPT)
        self.wait_for_moves(2)
        self.assertIn("<script>", self.browser.texts(".mode:not([hidden]) h2")[0])
        self.assertEqual(self.browser.value("document.title.length > 1 && document.images.length"), 0)

    def test_a_move_against_the_rules_ends_the_game_there(self):
        self.paste(ILLEGAL)
        self.wait_for_moves(2)
        self.browser.wait("document.querySelector('.mode:not([hidden]) .state').textContent.includes('Ke3')")

    def test_one_game_of_many_is_chosen(self):
        self.drop((FOOLS + SCRIPT.replace("d4 d5", "c4 c5")).encode() * 100)
        self.browser.wait("document.querySelector('dialog.games')")
        self.assertEqual(self.browser.texts("dialog.games h2"), ["200 games"])
        self.browser.click("dialog.games input")
        self.browser.press(*"script")
        self.browser.wait("document.querySelectorAll('dialog.games option').length === 100")
        self.browser.click("dialog.games .main")
        self.wait_for_moves(2)
        self.assertEqual(self.moves(), ["c4", "c5"])

    def test_a_file_of_five_megabytes_leaves_the_page_alive(self):
        self.browser.ask("/execute/sync", {"script": """
            const bag = new DataTransfer();
            bag.items.add(new File([arguments[0].repeat(5e6 / arguments[0].length)], 'x.pgn'));
            document.body.dispatchEvent(new DragEvent('drop', {dataTransfer: bag, bubbles: true, cancelable: true}));""",
                                                "args": [FOOLS]})
        self.browser.wait("document.querySelector('dialog.games')")
        self.assertGreater(int(self.browser.texts("dialog.games h2")[0].split()[0]), 40000)
        self.button("Cancel")
        self.browser.wait("!document.querySelector('dialog')")

    def test_what_there_is_can_be_taken_away(self):
        self.paste(FOOLS)
        self.wait_for_moves(4)
        self.browser.value("document.querySelector('details.evaluation summary').click()")
        self.browser.press("End", "ArrowLeft")
        self.browser.wait("document.querySelector('.evaluation .terms')")
        self.browser.value("navigator.clipboard.writeText = text => { window.copied = text; return Promise.resolve(); }")
        self.button("Copy, save")
        self.browser.click("[aria-label='Copy Position (FEN)']")
        self.assertEqual(self.browser.wait("window.copied"), "rnbqkbnr/pppp1ppp/8/4p3/6P1/5P2/PPPPP2P/RNBQKBNR b KQkq g3 0 2")
        self.browser.click("[aria-label='Copy Game (PGN)']")
        pgn = self.browser.wait("window.copied.startsWith('[Event') && window.copied")
        self.assertIn("1. f3", pgn)
        self.assertIn("Qh4#", pgn)
        self.assertTrue(self.browser.value("!!document.querySelector('[aria-label=\"Save Evaluation (SVG)\"]')"))
        self.button("Close")
        self.paste(ENDING)
        self.browser.wait("!document.querySelectorAll('.moves button').length")
        self.paste(pgn)
        self.wait_for_moves(4)


class WithoutSharedMemory(Analyse):
    """A host that can't send headers, to a browser in which no service worker puts them in."""
    host = {"shared": False, "missing": ("sw.js",)}


if __name__ == "__main__":
    if not browser.HERE or not webhost.HERE:
        print("Chromium, its driver or the built site isn't here, so nobody analyses on the page")
        sys.exit(77)
    unittest.main()
