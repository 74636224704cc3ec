"""The page's game, driven as people do: each way of moving, what they change their minds about, and what breaks in."""
import json
import os
import sys
import unittest

import browser
import webhost

LADDER = "8/8/8/7k/R7/1R6/8/K7 w - - 0 1"  # whatever black does, he is mate in four
LADDER_MOVES = ["b3b5", "a4a6", "b5b7", "a6a8"]
PAWN = "7k/P7/8/8/8/8/8/K7 w - - 0 1"
START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"
STRENGTH = {"way": "depth", "seconds": 1, "depth": 3, "minutes": 5, "increment": 0}


def square(name):
    return f'.mode:not([hidden]) [role=gridcell][aria-label^="{name}"]'


class Play(webhost.Visit):
    query = ""

    def setUp(self):
        self.keep("null")

    def open(self, **look):
        self.browser.open("about:blank")
        self.browser.open(self.site.address + self.query, **look)

    def keep(self, text):
        """Writes what an earlier visit would have left, where no page runs: a page that is left keeps its game."""
        self.browser.open(self.site.address + "icon.svg")
        self.browser.value(f"localStorage.setItem('vrel.play', {json.dumps(text)})")

    def begin(self, start=START, strength=None, moves=(), left=20000, **look):
        times = {"w": left, "b": 20000}
        game = {"fen": start, "ply": len(moves), "tags": {}, "scores": [], "doubtful": [],
                "moves": [dict(zip(("uci", "text", "fen"), move)) for move in moves]}
        self.keep(json.dumps({"side": "w", "strength": {**STRENGTH, **(strength or {})}, "now": times,
                              "times": [times] * (len(moves) + 1), "flagged": "", "turned": False, "game": game}))
        self.open(**look)

    def state(self, text):
        self.browser.wait(f"document.querySelector('.state')?.textContent.includes({json.dumps(text)})", 30)

    def moves(self):
        return [text.split()[-1] for text in self.browser.texts(".moves button")]

    def by_drag(self, move, pointer="mouse"):
        self.browser.drag(square(move[:2]), square(move[2:4]), pointer)

    def by_finger(self, move):
        self.by_drag(move, "touch")

    def by_clicks(self, move, pointer="mouse"):
        self.browser.click(square(move[:2]), pointer=pointer)
        self.assertIn("can be moved to", self.browser.value(f"document.querySelector('{square(move[2:4])}').ariaLabel"))
        self.browser.click(square(move[2:4]), pointer=pointer)

    def by_taps(self, move):
        self.by_clicks(move, "touch")

    def by_arrows(self, move):
        for name in (move[:2], move[2:4]):
            here = self.browser.value("document.activeElement.ariaLabel")[:2]
            steps = [ord(a) - ord(b) for a, b in zip(name, here)]
            for step, less, more in zip(steps, ("ArrowLeft", "ArrowDown"), ("ArrowRight", "ArrowUp")):
                self.browser.press(*[more if step > 0 else less] * abs(step))
            self.browser.press("Enter")

    def by_typing(self, move):
        self.browser.value("document.querySelector('.typed input').focus()")
        self.browser.press(*move, "Enter")

    def test_a_game_is_played_to_mate_by_each_way_of_moving(self):
        phone = {"width": 360, "height": 740}
        for way, look in [(self.by_drag, {}), (self.by_clicks, {}), (self.by_arrows, {}), (self.by_typing, {}),
                          (self.by_finger, phone), (self.by_taps, phone)]:
            with self.subTest(way.__name__):
                self.begin(LADDER, **look)
                self.state("Your move")
                self.browser.value(f"document.querySelector('{square('a1')}').focus()")
                for move in LADDER_MOVES[:-1]:
                    way(move)
                    self.state("Your move")
                way(LADDER_MOVES[-1])
                self.state("Checkmate: you win")
                self.assertEqual((len(self.moves()), self.moves()[-1]), (7, "Ra8#"))
                self.browser.wait("announcer.textContent.trim() === 'Checkmate: you win'")

    def test_a_new_game_is_set_up_by_hand_and_the_engine_begins(self):
        self.open()
        self.browser.click(".actions button:nth-child(1)")
        self.browser.click(".choice [value=b]")
        self.browser.click(".choice [value=depth]")
        self.browser.click(".choices > button")
        self.browser.click(".setup .row button")  # the empty board
        self.browser.click(".setup .row .main")
        self.browser.wait("document.querySelector('.setup .trouble').textContent.startsWith('This position can’t')")
        for piece, name in [("K", "a1"), ("k", "h8"), ("R", "b1"), ("R", "c2")]:
            self.browser.click(f".pieces [data-piece={piece}]")
            self.browser.click(f'.setup [aria-label^="{name}"]')
        self.browser.drag('.setup [aria-label^="c2"]', '.setup [aria-label^="c3"]')
        fen = self.browser.value("document.querySelector('.setup [name=fen]').value")
        self.assertEqual(fen, "7k/8/8/8/8/2R5/8/KR6 w - - 0 1")
        self.browser.click(".setup .row .main")
        self.browser.wait("!document.querySelector('.setup')")
        self.browser.click(".newgame .row .main")
        self.browser.wait("document.querySelectorAll('.moves button').length === 1")
        self.state("Your move")
        self.assertEqual(self.browser.texts(".player span")[0], "Vrel, depth 6")
        self.assertTrue(self.browser.value("announcer.textContent.startsWith('Vrel: ')"))

    def test_a_pawn_becomes_what_is_asked_for(self):
        for way, text in [(lambda: self.browser.click(".promotion button:nth-child(2)"), "a8=N"),
                          (lambda: self.browser.press("Enter"), "a8=Q+"), (lambda: self.browser.press("Escape"), None)]:
            with self.subTest(text):
                self.begin(PAWN)
                self.state("Your move")
                self.by_clicks("a7a8")
                way()
                if text:
                    self.browser.wait("document.querySelectorAll('.moves button').length")
                    self.assertEqual(self.moves()[0], text)
                self.assertFalse(self.browser.value("document.querySelectorAll('.promotion').length"))
        self.by_typing("a8=r")
        self.browser.wait("document.querySelectorAll('.moves button').length")
        self.assertEqual(self.moves()[0], "a8=R+")

    def test_what_is_no_move_is_told_and_changes_nothing(self):
        self.begin()
        self.state("Your move")
        self.by_drag("e2e5")
        self.by_typing("e5")
        self.browser.wait("announcer.textContent === '“e5” is no move here.'")
        self.browser.value(f"document.querySelector('{square('e1')}').focus()")
        self.browser.press("Enter")
        self.browser.wait("announcer.textContent === 'No move from e2 to e1'")
        self.assertEqual(self.moves(), [])

    def test_moves_are_taken_back_even_while_the_engine_thinks(self):
        self.begin()
        self.state("Your move")
        for move in ("e2e4", "d2d4"):
            self.by_clicks(move)
            self.state("Your move")
        self.browser.click(".actions button:nth-child(2)")
        self.state("Your move")
        self.assertEqual((len(self.moves()), self.moves()[0]), (2, "e4"))
        self.begin(strength={"way": "time", "seconds": 600})
        self.state("Your move")
        self.by_clicks("e2e4")
        self.state("Vrel is thinking")
        self.by_clicks_without_answer("g8f6")
        self.browser.click(".actions button:nth-child(2)")
        self.state("Your move")
        self.assertEqual(self.moves(), [])
        self.by_clicks("d2d4")
        self.state("Vrel is thinking, depth")

    def by_clicks_without_answer(self, move):
        for name in (move[:2], move[2:4]):
            self.browser.click(square(name))
        self.assertEqual(self.browser.texts("[aria-selected=true]"), [])

    def test_the_game_is_there_again_and_the_search_goes_on(self):
        self.begin(strength={"way": "time", "seconds": 600})
        self.state("Your move")
        self.by_clicks("e2e4")
        self.state("Vrel is thinking, depth")
        self.open()
        self.state("Vrel is thinking, depth")
        self.assertEqual(self.moves(), ["e4"])
        self.browser.value("location.hash = '#analyse'")
        self.browser.wait("document.querySelector('nav [aria-current]').textContent === 'Analyse'")
        self.browser.value("location.hash = '#play'")
        self.state("Vrel is thinking, depth")

    def test_a_clock_that_has_run_out_ends_the_game(self):
        moves = [("b3b5", "Rb5+", "8/8/8/1R5k/R7/8/8/K7 b - -"), ("h5g6", "Kg6", "8/8/6k1/1R6/R7/8/8/K7 w - -")]
        self.begin(LADDER, {"way": "clock"}, moves, left=300)
        self.state("Your time is up: a draw, a lone king can’t mate")
        self.by_drag("a4a6")
        self.assertEqual(len(self.moves()), 2)

    def test_the_engine_plays_by_its_clock(self):
        for strength in [{"way": "clock", "minutes": 0.5}, {"way": "time", "seconds": 0.5}]:
            with self.subTest(strength):
                self.begin(strength=strength)
                self.state("Your move")
                self.by_typing("e4")
                self.state("Your move")
                self.assertEqual(len(self.moves()), 2)

    def test_a_draw_is_told(self):
        self.begin("7k/8/6K1/8/8/8/8/5Q2 w - - 0 1")
        self.state("Your move")
        self.by_typing("Qf7")
        self.state("Stalemate: a draw")

    def test_a_second_tab_looks_on_until_it_takes_over(self):
        self.begin()
        self.state("Your move")
        first = self.browser.tabs()
        self.browser.new_tab()
        try:
            self.open()
            self.browser.wait("document.querySelector('.of-text .panel:not([hidden])')")
            second = [tab for tab in self.browser.tabs() if tab not in first][0]
            self.browser.to_tab(first[0])
            self.by_typing("e4")
            self.state("Your move")
            moves = self.moves()
            self.browser.to_tab(second)
            self.browser.wait("document.querySelectorAll('.moves button').length === 2")
            self.assertEqual(self.moves(), moves)
            self.browser.click(".panel .main")
            self.browser.wait("document.querySelector('.of-text .panel[hidden]')")
            self.by_typing("d4")
            self.browser.wait("document.querySelectorAll('.moves button').length === 4")
            moves = self.moves()
            self.browser.close_tab()
            self.browser.to_tab(first[0])
            self.browser.wait("!document.querySelector('.typed input').disabled")
            self.assertEqual(self.moves(), moves)
        finally:
            self.browser.to_tab(first[0])

    def test_what_was_kept_and_makes_no_sense_is_no_dead_page(self):
        empty = "8/8/8/8/8/8/8/8 w - - 0 1"
        jump = {"uci": "e2e5", "text": "e5", "fen": "rnbqkbnr/pppppppp/8/4P3/8/8/PPPP1PPP/RNBQKBNR b KQkq -"}
        for kept in ["{", "null", "[1]", '{"game": 3}', {"fen": empty, "moves": []}, {"fen": START, "moves": [jump]},
                     {"fen": "4k2R/8/8/8/8/8/8/4K3 w - - 0 1", "moves": []}]:
            with self.subTest(kept):
                self.keep(kept if isinstance(kept, str) else json.dumps({"game": kept}))
                self.open()
                self.state("Your move")
                self.by_typing("e4")
                self.browser.wait("document.querySelectorAll('.moves button').length === 2")


class WithoutSharedMemory(Play):
    """A host that can't send headers, to a browser in which no service worker puts them in."""
    host = {"shared": False, "missing": ("sw.js",)}


REFUSE = """
    const Memory = WebAssembly.Memory;
    WebAssembly.Memory = function (wish) {
        if (wish.shared) throw new RangeError('out of memory');
        return new Memory(wish);
    };"""


class Trouble(unittest.TestCase):
    def setUp(self):
        self.window = browser.Browser()
        self.addCleanup(self.window.close)

    def open(self, **host):
        site = webhost.Site(**host)
        self.addCleanup(site.close)
        self.window.open(site.address)

    def test_opened_from_a_file_the_page_says_what_is_missing(self):
        self.window.open(os.path.join(webhost.FOLDER, "index.html"))
        self.assertIn("opened from a file", self.window.wait("document.querySelector('#waiting').textContent"))

    def test_where_shared_memory_is_refused_the_game_goes_on_without_it(self):
        self.window.command("Page.addScriptToEvaluateOnNewDocument", source=REFUSE)
        self.open()
        self.window.wait("document.querySelector('.movable')")
        self.window.drag(square("e2"), square("e4"))
        self.window.wait("document.querySelectorAll('.moves button').length === 2")
        self.assertIn("no shared memory", self.window.texts("#notices")[0])

    def test_without_an_engine_the_page_says_so_and_keeps_the_board(self):
        self.open(missing=("module/vrel.wasm", "module/vrel-single.wasm"))
        self.window.wait("document.querySelector('.state').textContent.startsWith('The engine can’t go on')")
        self.assertEqual(self.window.value("document.querySelectorAll('.piece').length"), 32)


if __name__ == "__main__":
    if not browser.HERE or not webhost.HERE:
        print("Chromium, its driver or the built site isn't here, so nobody plays on the page")
        sys.exit(77)
    unittest.main()
