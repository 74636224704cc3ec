"""Sessions at the console: every text that the engine prints, over a pipe and on a terminal."""
import os
import re
import shutil
import tempfile
import unittest

from console_process import START, Console, board

E4 = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"
E4_E5 = "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6"
RUY = "r1bqkbnr/1ppp1ppp/p1n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R w KQkq -"
KINGS = "4k3/8/8/8/8/8/8/4K3 w - -"
EDIT_HELP = """


.                    end edit
#                    clear board
w  Pa2 Pb2 Kc2       white, pieces
b  Pa7 Pb7 Kc7       black, pieces
"""

TIME = r"\d+\.\d{3}"
PERCENT = r"\d+\.\d%"
MOVE = r"([a-h][1-8][a-h][1-8](=[QNBR])?|null)"
SUMMARY = rf"move= {MOVE}, time= {TIME}, score= -?\d+, nodes= \d+, nps= \d+K ebf= \d+\.\d\d$"
HASH_LINE = rf"Hash fill= {PERCENT}, Hash hits: main= {PERCENT}, pawn= {PERCENT}, eval= {PERCENT}$"
INFO = r"\d\d\] \d\d[ .]"
VISITED = rf"visited (\d+) nodes in {TIME} seconds, nps= \d+$"

ANNOTATED_GAME = """[Event "First"]
[White "Nobody"]

1. d4 d5 1/2-1/2

[Event "Second"]
[White "Somebody"]
[Black "Else"]

1. e4 { best by test } e5 {a comment
over two lines [not a tag]
and its end} 2.Nf3 Nc6 $1 3. Bb5 0-0 a6 *

[Event "Third"]

1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 4. O-O Nf6 5. Qh8 d6

[Event "Fourth"]
"""


class Session:
    """The tests, for either kind of input."""
    terminal = False

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)

    def start(self, *arguments):
        self.console = Console(*arguments, terminal=self.terminal, folder=self.folder)
        self.addCleanup(self.console.kill)
        self.expect(board(START))
        return self.console

    def write_file(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="latin-1", newline="") as file:
            file.write(text)

    def read_file(self, name):
        with open(os.path.join(self.folder, name), encoding="latin-1", newline="") as file:
            return file.read()

    def expect(self, text):
        self.assertEqual(self.console.read(len(text)), text)

    def ask(self, line, text):
        self.console.send(line)
        self.expect(text)

    def set_up(self, fen):
        self.ask("fen " + fen, board(fen))

    def expect_report(self, move=MOVE, score=r"-?\d+"):
        """The three lines that end a search; returns the lines before them."""
        lines = self.console.read_until("move= ")
        self.assertRegex(lines[-1], SUMMARY)
        self.assertRegex(lines[-1], rf"^move= {move}, .* score= {score},")
        self.assertRegex(self.console.read_line(), HASH_LINE)
        self.assertEqual(self.console.read_line(), "")
        return lines[:-1]

    def expect_evaluation(self, fen):
        """The report on a position; returns its lines from "eval=" on."""
        self.expect("fen " + fen + "\n")
        self.assertRegex(self.console.read_line(), r"^Ply= \d+, Clock= -?\d+\.\d\ds  Target time= \d+\.\d\ds$")
        self.expect("\n")
        lines = self.console.read_until("(white|black)$")
        self.expect("\n")
        self.assertRegex(lines[0], r"^eval= -?\d+, qscore= -?\d+, stage= \d+, draw_adj= \d\.\d\d$")
        return lines

    def quit(self):
        """Nothing more may have been printed."""
        self.console.send("quit")
        self.assertEqual(self.console.wait(), (0, ""))

    # Positions and games

    def test_set_up_by_fen(self):
        self.start()
        self.set_up("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -")
        self.set_up("8/8/8/8/8/8/8/8 b - -")
        self.console.send("fen " + KINGS + " 37 80")
        self.expect(board(KINGS))
        self.ask("new", board(START))
        self.quit()

    def test_set_up_by_edit(self):
        self.start()
        self.ask("e4", "1. move e4\n" + board(E4))
        self.ask("edit", EDIT_HELP)
        self.console.send("", "#", "w Ke1 Rh1 Pa2", "nonsense", "b Ke8 Pa7 xa2", "w Pi2 Pb2", "b", ".")
        self.expect(board("4k3/p7/8/8/8/8/8/4K2R b K -"))
        self.console.send("undo", "]")  # the past is gone
        self.ask("edit", EDIT_HELP)
        self.ask(".", board("4k3/p7/8/8/8/8/8/4K2R b K -"))
        self.quit()

    def test_moves_back_and_forth(self):
        self.start()
        self.console.send("undo", "[", "]")
        self.ask("e4", "1. move e4\n" + board(E4))
        self.ask("move e7e5", "1. move e7e5\n" + board(E4_E5))
        self.console.send("]", "move", "move e4", "exf5", "Qh5#", "nf3", "x" * 5000)
        self.ask("undo", board(E4))
        self.ask("[", board(START))
        self.console.send("[")
        self.ask("]", "1. move e2e4\n" + board(E4))
        self.ask("]", "1. move e7e5\n" + board(E4_E5))
        self.console.send("]")
        # Following the game keeps what is ahead, leaving it doesn't.
        self.ask("jump 0", board(START))
        self.ask("e2e4", "1. move e2e4\n" + board(E4))
        self.ask("]", "1. move e7e5\n" + board(E4_E5))
        self.ask("jump 0", board(START))
        self.ask("d4", "1. move d4\n" + board("rnbqkbnr/pppppppp/8/8/3P4/8/PPP1PPPP/RNBQKBNR b KQkq d3"))
        self.console.send("]")
        self.quit()

    def test_moves_as_people_write_them(self):
        self.start()
        fen = "4k3/1P6/8/8/8/5N2/8/1N2K2R w K -"
        rows = [("Nbd2", "Nbd2", "4k3/1P6/8/8/8/5N2/3N4/4K2R b K -"),
                ("N3d2+", "N3d2", "4k3/1P6/8/8/8/8/3N4/1N2K2R b K -"),
                ("O-O", "o-o", "4k3/1P6/8/8/8/5N2/8/1N3RK1 b - -"),
                ("0-0", "o-o", "4k3/1P6/8/8/8/5N2/8/1N3RK1 b - -"),
                ("b8q", "b8=Q", "1Q2k3/8/8/8/8/5N2/8/1N2K2R b K -"),
                ("b7b8n", "b7b8=N", "1N2k3/8/8/8/8/5N2/8/1N2K2R b K -")]
        for typed, shown, after in rows:
            with self.subTest(typed):
                self.set_up(fen)
                self.ask(typed, f"1. move {shown}\n" + board(after))
        self.set_up(fen)
        self.ask("Nd2", "ambiguous move\n")
        self.quit()

    def test_jump(self):
        self.start()
        self.ask("e4", "1. move e4\n" + board(E4))
        self.ask("e5", "1. move e5\n" + board(E4_E5))
        for ply, fen in (("0", START), ("1", E4), ("2", E4_E5), ("", START), ("99999999999", E4_E5), ("-3", START),
                         ("two", START), ("400", E4_E5)):
            self.ask("jump " + ply, board(fen))
        self.quit()

    def test_load(self):
        self.write_file("games.pgn", ANNOTATED_GAME)
        self.write_file("windows.pgn", ANNOTATED_GAME.replace("\n", "\r\n"))
        self.start()
        first = "rnbqkbnr/ppp1pppp/8/3p4/3P4/8/PPP1PPPP/RNBQKBNR w KQkq d6"
        castled = "r1bqkb1r/1ppp1ppp/p1n2n2/1B2p3/4P3/5N2/PPPP1PPP/RNBQ1RK1 w kq -"
        rows = [("", "", board(first)), ("1", "1", board(first)), ("0", "0", board(first)),
                ("1001", "1001", board(first)), ("-2", "-2", board(first)), ("2", "2", board(RUY)),
                ("Somebody", "Somebody", board(RUY)), ("$1", "$1", board(RUY)),
                ("3", "3", "can't parse move 'Qh8'\n" + board(castled)), ("4", "4", board(START)),
                ("17", "17", board(START)), ("unheard-of", "unheard-of", board(START))]
        for name in ("games.pgn", "windows.pgn"):
            for typed, tag, shown in rows:
                with self.subTest(name, tag=tag):
                    self.ask(f"load {name} {typed}", f"loading {name}, tag {tag}\n\n" + shown)
        self.ask("load games.pgn 2", "loading games.pgn, tag 2\n\n" + board(RUY))
        self.console.send("]")
        self.ask("jump 2", board(E4_E5))
        self.quit()

    def test_load_of_what_is_no_game(self):
        self.write_file("moves.pgn", "1. e4 e5\n")
        self.write_file("open.pgn", '[Event "?"]\n1. e4\n1... e5 2. Nf3 {and no end')
        self.write_file("noise.pgn", '[Event "?"]\n\0\1\2\n\xff\xfe {{{{ }}} \n[Event ')
        os.mkdir(os.path.join(self.folder, "folder"))
        self.start()
        self.ask("e4", "1. move e4\n" + board(E4))
        for name in ("missing.pgn", "folder", "", "/", "x" * 127):
            self.ask("load " + name, f"loading {name}, tag \n\n")
        self.ask("bd", board(E4))
        self.ask("load moves.pgn", "loading moves.pgn, tag \n\n" + board(START))
        self.ask("load open.pgn", "loading open.pgn, tag \n\n"
                 + board("rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -"))
        self.ask("load noise.pgn", "loading noise.pgn, tag \n\n" + board(START))
        self.quit()

    def test_load_of_a_long_game(self):
        shuffle = "Nf3 Nf6 Ng1 Ng8 "
        self.write_file("long.pgn", '[Event "?"]\n' + (shuffle + "\n") * 400 + "e4 e5\n")
        self.start()
        self.ask("load long.pgn", "loading long.pgn, tag \n\n" + board(E4_E5))
        # The last moves of a game beyond the record's room are kept.
        self.ask("[", board(E4))
        self.console.send("jump 9999")
        self.expect(board(E4_E5))
        self.console.send("go 3")
        self.expect_report()
        self.quit()

    def test_save(self):
        self.start()
        moves = "e4 e5 Nf3 Nc6 Bc4 Nf6 O-O Bc5 Bxf7 Kxf7 Ng5 Ke8".split()
        for move in moves:
            self.console.send(move)
            self.console.read_until("(white|black)$")
            self.expect("\n")
        self.console.send("[")
        self.console.read_until("(white|black)$")
        self.expect("\n")
        self.console.send("save", "save", "]")
        self.console.read_until(r"6\. move f7e8")
        self.console.read_until("white$")
        game = '[Event "Unknown"]\ne4 e5 Nf3 Nc6 Bc4 Nf6 o-o Bc5 Bxf7+ Kxf7 Ng5+ \n\n\n'
        self.assertEqual(self.read_file("tmp.pgn"), game * 2)
        self.expect("\n")
        self.ask("load tmp.pgn 2", "loading tmp.pgn, tag 2\n\n"
                 + board("r1bq3r/pppp1kpp/2n2n2/2b1p1N1/4P3/8/PPPP1PPP/RNBQ1RK1 b - -"))
        self.quit()

    def test_get(self):
        self.write_file("test.epd", "".join((
            '; id "one" isn\'t here\n',
            ' 8/8/8/8/8/8/8/8 w - - id "one";\n',
            RUY + ' bm Ba4; id "one";\r\n',
            KINGS + ' id "two words";\n',
            'id "five"\n')))
        self.start()
        self.ask("get one", RUY + ' bm Ba4; id "one";\n' + board(RUY))
        self.ask("get two", "\n" + board(RUY))
        self.ask("get five", 'id "five"\n' + board("8/8/8/8/8/8/8/8 w - -"))
        self.ask("get", "\n" + board("8/8/8/8/8/8/8/8 w - -"))
        os.remove(os.path.join(self.folder, "test.epd"))
        self.ask("get one", "\n" + board("8/8/8/8/8/8/8/8 w - -"))
        self.quit()

    # Searches

    def test_analysis_to_a_depth(self):
        self.start()
        self.set_up(RUY)
        self.console.send("go 8")
        self.expect(f"fen {RUY}\nPly= 0, Clock= 99999.00s  Target time= 99999.00s\n")
        lines = self.expect_report()
        self.assertTrue(any(line.startswith("01] 08 ") for line in lines), lines)
        self.assertRegex(lines[-1], INFO + r"|^ {20,}")
        self.ask("bd", board(RUY))
        self.quit()

    def test_analysis_without_a_depth_is_no_search(self):
        self.start()
        for command in ("go", "go 0", "go x"):
            self.console.send(command)
            self.assertEqual(len(self.expect_report(move="null", score="-10000")), 2)
        self.quit()

    def test_analysis_until_told_otherwise(self):
        self.start()
        self.console.send("an")
        self.console.read_until(INFO)
        self.console.send(".")
        self.expect_report()
        self.quit()

    def test_a_search_replaces_another(self):
        self.start()
        for command in ("go 70", "go 66", "go -1", "an"):
            with self.subTest(command):
                self.console.send("level 0 1000 0", command)
                self.console.read_until(INFO)
                self.console.send("go 4")
                self.expect_report()
                self.console.read_until("Ply= ")
                lines = self.expect_report()
                self.assertFalse(any(line.startswith("01] 05") for line in lines), lines)
        self.quit()

    def test_commands_that_need_a_free_engine_end_the_search(self):
        self.start()
        rows = [("perft 1", "visited 20 "), ("tune x 1", "done!"), ("get x", "rnbq")]
        for command, reply in rows:
            with self.subTest(command):
                self.console.send("an")
                self.console.read_until(INFO)
                self.console.send(command)
                self.expect_report()
                self.console.read_until(reply)
        self.console.send("quit")
        self.assertEqual(self.console.wait()[0], 0)

    def test_commands_that_wait_for_an_analysis(self):
        self.start()
        for command, reply in [("ev", "eval= "), ("set SE 1", "SE set to 1"), ("book", "")]:
            with self.subTest(command):
                self.console.send("an")
                self.console.read_until(INFO)
                self.console.send(command, "noise 0", ".")
                self.expect_report()
                self.console.read_until(reply)
        # Without a `.` the end of the input ends the analysis, or a line that needs the engine.
        self.console.send("an", "ev", "perft 1")
        self.expect_report()
        self.console.read_until("eval= ")
        self.console.read_until("visited 20 ")
        self.console.send("an", "ev", "quit")
        self.expect_report()
        self.console.read_until("eval= ")
        self.assertEqual(self.console.wait()[0], 0)

    def test_moves_during_a_search(self):
        self.start()
        self.console.send("an")
        self.console.read_until(INFO)
        self.console.send("xyz", "e4")
        self.console.read_until(r"1\. move e4$")
        self.expect(board(E4))
        self.expect_report()
        self.console.send("debug 1", "an")
        self.console.read_until(INFO)
        self.console.send("xyz", "e5")
        self.expect_report()
        self.console.read_until(r"1\. move e5$")
        self.expect_evaluation(E4_E5)
        self.quit()

    def test_thinking_moves_nothing(self):
        self.start("-t", "0.2")
        self.console.send("mv")
        self.expect(f"fen {START}\nPly= 0, Clock= 0.20s  Target time= 0.20s\n")
        self.expect_report()
        self.ask("bd", board(START))
        self.quit()

    def test_levels_and_clocks(self):
        self.start("-quiet")
        rows = [("40 5:00 1", "40 moves in 300.00 seconds, inc 1.00"), ("40 5 0", "40 moves in 5.00 seconds, inc 0.00"),
                ("0 0:05 0.25", "0 moves in 5.00 seconds, inc 0.25"), ("", "0 moves in 0.00 seconds, inc 0.00"),
                ("x y z", "0 moves in 0.00 seconds, inc 0.00"), ("7 1:x", "7 moves in 60.00 seconds, inc 0.00"),
                ("1 2.5", "1 moves in 2.50 seconds, inc 0.00")]
        for words, text in rows:
            self.ask("level " + words, f"set level to {text}\n")
        self.console.send("noise 0", "depth 1", "level 40 300")
        self.expect("set level to 40 moves in 300.00 seconds, inc 0.00\n")
        self.console.send("time 7", "mv")  # nobody's clock yet
        self.expect(f"fen {START}\nPly= 0, Clock= 300.00s")
        self.expect_report()
        self.console.send("time 7", "mv")
        self.expect(f"fen {START}\nPly= 0, Clock= 7.00s")
        self.expect_report()
        self.ask("new", board(START))
        self.console.send("time 9", "mv")
        self.expect(f"fen {START}\nPly= 0, Clock= 300.00s")
        self.expect_report()
        self.quit()

    def test_depth(self):
        self.start()
        for command, deepest in (("depth 3", "03"), ("sd 2", "02")):
            self.console.send(command, "mv")
            self.assertEqual(max(line[4:6] for line in self.expect_report() if re.match(INFO, line)), deepest)
        self.quit()

    def test_several_lines(self):
        self.start()
        self.console.send("xmultipvx 3", "go 6")
        first_moves = [line.split()[5] for line in self.expect_report() if line.startswith("01] 06.")]
        self.assertEqual(len(set(first_moves)), 3, first_moves)
        self.console.send("multipv 0", "go 4")
        self.expect_report()
        self.quit()

    def test_a_whole_game_of_self_play(self):
        self.start()
        self.console.send("level 1 0.02 0", "depth 4", "noise 1000", "self")
        self.console.read_until("set level")
        boards, side = 0, "white"
        while True:
            lines = self.console.read_until("move= |white$|black$")
            if lines[-1].startswith("move= null"):
                break
            if lines[-1] in ("white", "black"):
                boards += 1
                self.assertNotEqual(lines[-1], side)
                side = lines[-1]
        self.assertGreater(boards, 10)
        self.assertRegex(self.console.read_line(), HASH_LINE)
        self.expect("\n")
        self.console.send("tag")
        self.console.send("quit")  # nothing goes on by itself
        self.assertEqual(self.console.wait(), (0, ""))

    def test_commands_amid_self_play(self):
        self.start()
        self.console.send("level 1 2 0", "self")
        for command, reply in (("ev", "eval= "), ("perft 0", "visited 0 "), ("go 4", r"00\] 04"), ("self", "move= ")):
            self.console.send(command)
            self.console.read_until(reply)
        self.console.send("fen 7k/5Q2/6K1/8/8/8/8/8 b - -")
        self.console.read_until("7k/5Q2")
        self.expect_report()
        self.quit()

    # Looking inside

    def test_evaluation_report(self):
        self.start()
        self.console.send("ev")
        lines = self.expect_evaluation(START)
        self.assertRegex(lines[0], r"stage= 0, draw_adj= 1\.00$")
        self.assertEqual(lines[1:3], ["", "           white    black     diff"])
        self.assertRegex(lines[3], r"^mtl=        (\d{4})     \1        0   \( :: \)$")
        titles = [line[:line.index("=") + 1] for line in lines[3:12]]
        self.assertEqual(titles, ["mtl=", "pos=", "pawns=", "knights=", "bishops=", "rooks=", "queens=", "kings=",
                                  "passers="])
        for line in lines[4:12]:
            self.assertRegex(line, r"^[a-z]+= +(-?\d+) +\1 +0$")
        self.assertRegex(lines[12], r"^ r n b q k b n r     ( [ -]*\d+){8}$")
        self.assertEqual(lines[14], " - + - + - + - +    " + "    -" * 8)
        self.assertEqual(lines[20:], ["white"])
        fen = "1r2k1n1/8/8/8/8/8/8/3QK3 b - -"
        self.set_up(fen)
        self.console.send("ev")
        self.assertRegex("\n".join(self.expect_evaluation(fen)), r"\(Q :: RN\)")
        self.quit()

    def test_debug_shows_evaluations_in_place_of_boards(self):
        self.start()
        self.console.send("debug 1")
        for command, first, fen in (("bd", "", START), ("e4", "1. move e4\n", E4), ("e5", "1. move e5\n", E4_E5),
                                    ("undo", "", E4), ("]", "1. move e7e5\n", E4_E5)):
            self.ask(command, first)
            self.expect_evaluation(fen)
        self.console.send("debug 0")
        self.ask("bd", board(E4_E5))
        self.quit()

    def test_exchanges(self):
        self.start()
        self.console.send("swap")
        self.set_up("4k3/8/2p5/3p4/4P3/8/8/R3K3 w Q -")
        self.ask("swap", "sq= e4, swap= 100\n")
        self.set_up("r3k3/8/8/3p4/4P3/8/8/R3K3 w Qq -")
        self.ask("swap", "sq= a1, swap= 500\nsq= e4, swap= 100\nsq= d5, swap= 100\nsq= a8, swap= 500\n")
        self.quit()

    def test_reduction_tables(self):
        self.start()
        self.console.send("lmr")
        lines = [self.console.read_line() for _ in range(62)]
        self.assertEqual(lines[30:32], ["", ""])
        for table in (lines[:30], lines[32:]):
            self.assertEqual([int(line[:2]) for line in table], list(range(1, 31)))
            for line in table:
                self.assertRegex(line, r"^[ \d]\d  ([0-3] ){32}$")
        # Reductions begin at depth 4 and 3.
        self.assertEqual(lines[2].split()[1:], ["0"] * 32)
        self.assertEqual(lines[3].split()[1:], ["0"] * 9 + ["1"] * 23)
        self.assertEqual(lines[33].split()[1:], ["0"] * 32)
        self.assertEqual(lines[34].split()[1:], ["0"] + ["1"] * 31)
        self.quit()

    def test_perft(self):
        self.start("-quiet")
        for words, nodes in (("1", 20), ("2", 400), ("5", 4865609), ("", 0), ("-7", 0), ("x", 0)):
            self.console.send("perft " + words)
            self.assertEqual(int(re.match(VISITED, self.console.read_line()).group(1)), nodes)
        # Moves ahead outlast the count.
        self.ask("e4", "1. move e4\n" + board(E4))
        self.ask("e5", "1. move e5\n" + board(E4_E5))
        self.ask("jump 0", board(START))
        self.console.send("perft 3")
        self.console.read_until("visited 8902 ")
        self.ask("jump 2", board(E4_E5))
        self.set_up("8/8/8/8/8/8/8/K1k5 w - -")
        self.console.send("perft 1")
        self.console.read_until("visited 1 ")
        self.set_up("7k/5Q2/6K1/8/8/8/8/8 b - -")
        self.console.send("perft 99999999999999")  # stalemate: any depth is soon done
        self.console.read_until("visited 0 ")
        self.quit()

    def test_trace(self):
        self.start()
        self.console.send("trace 2", "go 2")
        self.expect_report()
        self.quit()
        lines = self.read_file("trace.txt").split("\n")
        self.assertEqual(lines[:3], ["", "", "SEARCH DEPTH= 1"])
        self.assertIn("SEARCH DEPTH= 2", lines)
        cell = r"\([ -]?\d+\)(null|[a-h][1-8][a-h][1-8]) "
        for line in lines:
            self.assertRegex(line, rf"^(|SEARCH DEPTH= \d|( {{9}})?{cell}({cell})*)$")

    def test_selectivity(self):
        self.start()
        for name in ("SE", "NMP_depth", "RP_depth", "CNP_depth", "LMP_depth", "LMR_depth"):
            for typed, value in (("5", 5), ("0", 0), ("", 0), ("1000", 127), ("-1000", -128)):
                self.ask(f"set {name} {typed}", f"{name} set to {value}\n")
                self.console.send("go 4")
                self.expect_report()
        self.ask("set ss_off", "selectivity set to OFF\n")
        for name in ("", "se", "RP_depth2", "anything 7"):
            self.ask("set " + name, "selectivity set to default\n")
        self.quit()

    def test_tuning(self):
        self.start()
        self.console.send("tune", "tune pawn_value_op")
        self.ask("tune unheard-of 5", "done!\n\n")
        self.console.send("tune tune 24")  # without "tune.epd" nothing is better than what is there
        lines = self.console.read_until("done!$")
        self.assertEqual(lines[0], "best= 8, err= 1.00000e+00, min= -16, max= 32")
        self.expect("\n")
        self.quit()

    def test_no_book(self):
        self.start()
        self.ask("book", "\n")
        self.quit()

    # Bad input

    def test_numbers_of_any_size(self):
        self.start("-quiet")
        numbers = ["-1", "0", "1", "127", "128", "-129", "256", "32768", "-32769", "2147483648", "-2147483649",
                   "9223372036854775808", "-9223372036854775809", "1e400", "nan", "inf", "0x10", "--5", "9" * 120]
        commands = ["level {0} {0} {0}", "level {0} {0}:{0} {0}", "depth {0}", "time {0}", "ponder {0}", "noise {0}",
                    "hash {0}", "trace 0{0}", "debug {0}", "multipv {0}", "jump {0}", "load x {0}", "set SE {0}",
                    "tune x {0}"]
        for number in numbers:
            self.console.send(*(command.format(number) for command in commands), "debug 0", "trace 0", "depth 2", "mv",
                              "multipv 1", "noise 9999", "new")
        self.console.send("level 1 77 0")
        self.console.read_until("set level to 1 moves in 77.00 seconds")
        self.console.send("quit")  # the last search may still report
        self.assertEqual(self.console.wait()[0], 0)

    def test_lines_of_any_kind(self):
        self.start("-quiet")
        self.console.send("", " ", "  bd ", "BD", "bd" * 2000, " ".join(["e4"] * 500), "fen", "fen ", "fe",
                          "move " + "=" * 126 + "Q", "q", "+", "=Q", "0", "O-O-O-O")
        self.expect(board(START))
        self.console.read_until("zzz|(white|black)$")
        self.console.send("new", "level 1 77 0")
        self.console.read_until("set level to 1 moves in 77.00 seconds")
        self.quit()


class OnPipe(Session, unittest.TestCase):
    def test_end_of_input(self):
        for line, reply in (("go 5", "move= "), ("an", "move= "), ("edit", r"\.  "), ("perft 2", "visited 400 ")):
            with self.subTest(line):
                self.start()
                self.console.send(line)
                self.console.close_input()
                self.console.read_until(reply)
                self.assertEqual(self.console.wait()[0], 0)

    def test_lines_sent_together(self):
        self.start("-quiet")
        self.console.send("e4\ne5\ngo 20\nan\nbd\nquit")
        self.expect("1. move e4\n" + board(E4) + "1. move e5\n" + board(E4_E5))
        lines = self.console.wait()[1].split("\n")
        self.assertEqual(sum(line.startswith("move= ") for line in lines), 1, lines)


class OnTerminal(Session, unittest.TestCase):
    terminal = True


if __name__ == "__main__":
    unittest.main()
