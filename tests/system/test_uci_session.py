"""A session as a chess interface leads it: every command, in every state of the engine."""
import re
import tempfile
import unittest

from vrel_process import Engine

MOVE = r"[a-h][1-8][a-h][1-8][qrbn]?"
BESTMOVE = re.compile(rf"bestmove {MOVE}( ponder {MOVE})?$")
INFO = re.compile(rf"info (multipv \d+ )?depth \d+ time \d+ score cp -?\d+ nodes \d+ nps \d+ pv {MOVE}( {MOVE})*$")


class Session(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.engine = Engine("-nolog", "-hash", "4", folder=self.folder.name)

    def tearDown(self):
        self.assertEqual(self.engine.quit(), 0)
        self.folder.cleanup()

    def send(self, *lines):
        self.engine.send(*lines)

    def answer(self):
        """The lines up to the reply, all of the right form."""
        lines = self.engine.wait_for("bestmove")
        self.assertRegex(lines[-1], BESTMOVE)
        for line in lines[:-1]:
            self.assertRegex(line, INFO)
        return lines

    def nothing_more(self):
        self.assertEqual(self.engine.ready(), ["readyok"])


class Searches(Session):
    def test_every_limit_gets_one_answer(self):
        for limit in ["depth 4", "nodes 3000", "movetime 30", "wtime 500 btime 500",
                      "wtime 500 btime 500 winc 10 binc 10", "wtime 300 btime 300 movestogo 3", "wtime 0 btime 0",
                      "depth 3 movetime 5000", "wtime 100 btime 100 searchmoves e2e4"]:
            with self.subTest(limit):
                self.send("position startpos", "go " + limit)
                self.answer()
                self.send("go infinite", "stop")  # takes the limits off
                self.engine.wait_for("bestmove")
                self.nothing_more()

    def test_depth_limit_shows_each_depth(self):
        self.send("position startpos moves e2e4 e7e5", "go depth 6")
        depths = [int(line.split()[2]) for line in self.answer()[:-1]]
        self.assertEqual(sorted(set(depths)), [1, 2, 3, 4, 5, 6])
        self.assertEqual(depths, sorted(depths))

    def test_answers_for_the_side_to_move(self):
        self.send("position startpos moves e2e4", "go depth 1")
        self.assertIn(self.answer()[-1].split()[1][1], "78")

    def test_infinite_runs_until_stop(self):
        self.send("position startpos", "go infinite")
        self.engine.wait_for("info depth 5")
        self.send("isready", "stop")
        lines = self.engine.wait_for("bestmove")
        self.assertEqual(lines.count("readyok"), 1)
        self.nothing_more()

    def test_infinite_ends_with_a_forced_mate(self):
        self.send("position fen 7k/8/6K1/8/8/8/8/R7 w - -", "go infinite")
        self.assertEqual(self.answer()[-1], "bestmove a1a8")

    def test_a_mate_in_one_at_depth_one(self):
        self.send("position fen 7k/8/6K1/8/8/8/8/R7 w - -", "go depth 1")
        self.assertEqual(self.answer()[-1], "bestmove a1a8")

    def test_positions_without_a_move_are_answered(self):
        for fen in ["7k/6Q1/6K1/8/8/8/8/8 b - -", "7k/5Q2/6K1/8/8/8/8/8 b - -", "8/8/8/8/8/8/8/8 w - -",
                    "8/8/8/8/8/8/8/K7 w - -", "kk6/8/8/8/8/8/8/K7 w - -", "k7/8/8/8/8/8/8/R6K w - -"]:
            with self.subTest(fen):
                self.send("go depth 3")  # leaves a line behind
                self.engine.wait_for("bestmove")
                self.send("position fen " + fen, "go depth 5")
                self.assertEqual(self.engine.wait_for("bestmove"), ["bestmove null"])

    def test_a_hundred_quiet_plies_are_answered_without_a_search(self):
        shuffle = " g1f3 g8f6 f3g1 f6g8" * 26
        self.send("position startpos moves" + shuffle, "go depth 5")
        self.assertEqual(self.engine.wait_for("bestmove"), ["bestmove null"])

    def test_a_very_long_game_is_read_whole(self):
        game = ""
        for pawn in "abcdefgh":  # each pawn move starts the count of quiet plies anew
            for step in ["2{0}3", "3{0}4"]:
                game += f" {pawn}{step.format(pawn)} g8f6" + " g1f3 f6g8 f3g1 g8f6" * 22 + " g1f3 f6g8 f3g1"
        self.assertGreater(len(game), 6000)
        self.send("position startpos moves" + game, "go depth 4")
        self.answer()

    def test_several_lines(self):
        self.send("setoption name MultiPV value 3", "position startpos", "go depth 7")
        self.engine.wait_for("info string MultiPV set to 3")
        lines = self.answer()
        self.assertEqual([line.split()[2] for line in lines if " depth 7 " in line][-4:-1], ["1", "2", "3"])


class Pondering(Session):
    def finished_ponder(self):
        """A search that has ended, but keeps its answer."""
        self.send("position startpos", "go ponder depth 3")
        self.engine.wait_for("info depth 3")
        self.nothing_but_info()

    def nothing_but_info(self):
        lines = self.engine.ready()[:-1]
        self.assertFalse([line for line in lines if not line.startswith("info")])

    def test_the_answer_waits_for_ponderhit(self):
        self.finished_ponder()
        self.send("ponderhit")
        self.answer()
        self.nothing_more()

    def test_the_answer_waits_for_stop(self):
        self.finished_ponder()
        self.send("stop")
        self.answer()
        self.nothing_more()

    def test_ponderhit_starts_the_clock(self):
        self.send("position startpos", "go ponder wtime 100 btime 100")
        self.engine.wait_for("info depth 4")
        self.send("ponderhit")
        self.engine.wait_for("bestmove")

    def test_a_new_search_ends_a_ponder_search(self):
        self.send("position startpos", "go ponder wtime 100 btime 100", "position startpos moves e2e4", "go depth 3")
        first, second = self.engine.wait_for("bestmove")[-1], self.engine.wait_for("bestmove")[-1]
        self.assertIn(first.split()[1][1], "12")
        self.assertIn(second.split()[1][1], "78")
        self.nothing_more()

    def test_a_new_game_keeps_the_answer_back(self):
        self.finished_ponder()
        self.send("ucinewgame")
        self.nothing_but_info()
        self.send("stop")
        self.answer()

    def test_a_new_game_during_pondering_keeps_the_answer_back(self):
        self.send("position startpos", "go ponder wtime 100 btime 100")
        self.engine.wait_for("info depth 4")
        self.send("ucinewgame")
        self.nothing_but_info()
        self.send("ponderhit")
        self.engine.wait_for("bestmove")
        self.nothing_more()

    def test_ponderhit_means_nothing_else(self):
        self.send("ponderhit")
        self.nothing_more()


class Interruptions(Session):
    def test_go_ends_a_running_search(self):
        self.send("position startpos", "go infinite", "go infinite", "go depth 2", "go infinite", "stop")
        for _ in range(4):
            self.engine.wait_for("bestmove")
        self.nothing_more()

    def test_stop_when_idle_repeats_the_answer(self):
        self.send("position startpos", "go depth 4")
        reply = self.answer()[-1]
        self.send("stop")
        self.assertEqual(self.answer()[-1], reply)
        self.nothing_more()

    def test_stop_behind_go_reaches_the_new_search(self):
        self.send("position startpos", "go infinite", "go infinite", "stop")
        self.engine.wait_for("bestmove")
        self.engine.wait_for("bestmove")
        self.nothing_more()

    def test_a_new_game_ends_a_search(self):
        self.send("position startpos", "go infinite", "ucinewgame")
        self.engine.wait_for("bestmove")
        self.nothing_more()

    def test_isready_is_answered_when_the_search_is_over(self):
        self.send("position startpos", "go movetime 100", "isready", "isready")
        lines = self.engine.wait_for("readyok") + self.engine.wait_for("readyok") + self.engine.wait_for("bestmove")
        self.assertEqual([line for line in lines if not line.startswith("info")][:2], ["readyok", "readyok"])

    def test_options_that_replace_the_tables_end_the_search_first(self):
        for option, message in [("Hash value 2", "info string Hash size set to 2M bytes"),
                                ("Threads value 2", "info string Threads set to 2"),
                                ("Clear Hash", "Hash table cleared")]:
            for search in ["go infinite", "go ponder wtime 100 btime 100"]:
                if option == "Clear Hash" and "ponder" in search:
                    continue
                with self.subTest(option=option, search=search):
                    self.send("position startpos", search, "setoption name " + option, "setoption name MultiPV value 1")
                    lines = self.engine.wait_for("info string MultiPV")
                    self.assertEqual(lines[-2:], [message, "info string MultiPV set to 1"])
                    self.assertTrue(lines[-3].startswith("bestmove"))
                    self.nothing_more()

    def test_the_table_is_cleared_while_pondering(self):
        self.send("position startpos", "go ponder wtime 100 btime 100", "setoption name Clear Hash")
        lines = self.engine.wait_for("Hash table cleared")
        self.assertFalse([line for line in lines if line.startswith("bestmove")])
        self.send("ponderhit")
        self.engine.wait_for("bestmove")
        self.nothing_more()

    def test_other_options_leave_the_search_alone(self):
        self.send("position startpos", "go infinite", "setoption name Communication Overhead value 9",
                  "setoption name OwnBook value false", "setoption name Ponder value false", "uci")
        lines = self.engine.wait_for("uciok")
        self.assertFalse([line for line in lines if line.startswith("bestmove")])
        self.send("stop")
        self.engine.wait_for("bestmove")

    def test_position_leaves_the_search_alone(self):
        self.send("position startpos", "go infinite", "position startpos moves e2e4", "stop")
        self.assertIn(self.engine.wait_for("bestmove")[-1].split()[1][1], "12")
        self.send("go depth 2")
        self.assertIn(self.engine.wait_for("bestmove")[-1].split()[1][1], "78")

    def test_quit_sends_no_answer(self):
        for search in ["go infinite", "go ponder", "go movetime 5000", "go depth 66"]:
            with self.subTest(search):
                engine = Engine("-nolog", folder=self.folder.name)
                engine.send("position startpos", search, "quit")
                self.assertEqual(engine.wait(), 0)
                self.assertFalse([line for line in engine.seen if line.startswith("bestmove")])

    def test_hash_and_threads_can_change_again_and_again(self):
        for i in range(12):
            self.send(f"setoption name Hash value {i % 4}", f"setoption name Threads value {i % 5 + 1}",
                      "position startpos", "go depth 4")
            self.engine.wait_for("bestmove")
        self.nothing_more()


if __name__ == "__main__":
    unittest.main()
