#include "interface/pgn_text.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "board/fen.h"
#include "board/make_move.h"
#include "book/book_build.h"
#include "book/book_keys.h"
#include "interface/control/console_game.h"
#include "interface/move_text.h"
#include "support/tool_test.h"
#include "tools/pgn_scan.h"

namespace vrel {
namespace {

// A game as it is to be read.
struct Game {
    int winner = NOBODY_WON;
    std::string fen = fen_opn;
    std::string moves;  // coordinates, each with a blank behind it
};
using Games = std::vector<Game>;

// What mkbook, the scanner and load are to read.
struct Case {
    std::string name;
    std::string text;
    Games games, book, scan, load;
};

std::string Unescaped(const std::string& line) {
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] != '\\') {
            text += line[i];
        } else if (line[++i] == 'x') {
            text += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            text += line[i] == 't' ? '\t' : '\r';
        }
    }
    return text;
}

// "moves", or "result | FEN | moves" with either of the first two left out.
Game ReadGame(std::istringstream line) {
    std::vector<std::string> fields;
    for (std::string field; std::getline(line, field, '|');)
        fields.push_back(field);
    Game game;
    std::istringstream moves(fields.empty() ? "" : fields.back());
    for (std::string move; moves >> move;)
        game.moves += move + " ";
    if (fields.size() > 1)
        game.winner = fields[0].find("1-0") != std::string::npos   ? WHITE_WON
                      : fields[0].find("0-1") != std::string::npos ? BLACK_WON
                                                                   : NOBODY_WON;
    if (fields.size() > 2)
        game.fen = fields[1].substr(1, fields[1].size() - 2);
    return game;
}

std::vector<Case> ReadCases() {
    std::vector<Case> cases;
    std::ifstream in(std::string(TEST_DATA) + "/pgn/texts.txt");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("# "))
            cases.push_back({line.substr(2), {}, {}, {}, {}, {}});
        else if (line.starts_with("|"))
            cases.back().text += Unescaped(line.substr(1)) + "\n";
        for (const auto& [key, games] : {std::pair{"=", &Case::games}, std::pair{"book=", &Case::book},
                                         std::pair{"scan=", &Case::scan}, std::pair{"load=", &Case::load}})
            if (line.starts_with(key))
                (cases.back().*games)
                    .push_back(ReadGame(std::istringstream(line.substr(std::string(key).size()) + " ")));
    }
    for (Case& c : cases) {
        for (Games* games : {&c.book, &c.scan, &c.load})
            *games = games->empty() ? c.games : *games;
        const bool has_tag = Unescaped(c.text).find_first_of('[') < c.text.find_first_of('1');
        c.text = (has_tag ? "" : "[Event \"?\"]\n[Result \"*\"]\n\n") + c.text;
    }
    return cases;
}

// Plays a move of a text on the game record and returns its coordinates; nothing if it can't be read.
std::string Play(const std::string& text) {
    MoveAsRead read;
    Move move;
    if (!ReadMoveText(text, &move, &read))
        return "";
    PlayGameMove(GamePosition(), move);
    MoveText coordinates;
    WriteCoord(move, coordinates.data());
    return coordinates.data();
}

// Counters by the hashes of a position.
using Book = std::map<std::pair<int, uint32_t>, std::array<int, 3>>;

// The book of six times these games.
Book BookOf(const Games& games) {
    Book book;
    for (const Game& game : games) {
        SetPosition(GamePosition(), game.fen.c_str());
        std::istringstream moves(game.moves);
        for (std::string move; moves >> move;) {
            EXPECT_EQ(Play(move), move);
            const int side = GamePosition()->stm;
            UpdatePosHash(*GamePosition());
            book[{BookKey(side), hash2}][game.winner == NOBODY_WON ? 2 : game.winner == side ? 0 : 1] += 6;
        }
    }
    std::erase_if(book, [](const auto& entry) { return 2 * entry.second[0] + entry.second[2] <= 5; });
    return book;
}

Book ReadBook(const std::string& name) {
    Book book;
    std::ifstream in(name, std::ios::binary);
    for (BookRecord r; in.read(reinterpret_cast<char*>(&r), sizeof r);)
        book[{r.key, static_cast<uint32_t>(r.hash2_high) << 16 | r.hash2_low}] = {r.wins, r.losses, r.draws};
    return book;
}

// The moves of each listed game that has any, and of each expected one.
std::string MovesOfListing(const std::string& listing, const Games& games) {
    std::string all;
    std::istringstream in(listing);
    auto game = games.begin();
    bool begun = false;
    for (std::string line; std::getline(in, line);) {
        if (begun && line.empty()) {
            all += "/ ";
            begun = false;
        }
        if (line.empty() || line.find("  {") == std::string::npos || line.find('[') < 8)
            continue;
        if (!begun)
            SetPosition(GamePosition(), game != games.end() ? (game++)->fen.c_str() : fen_opn);
        begun = true;
        all += Play(line.substr(6, line.find(' ', 6) - 6)) + " ";
    }
    return all;
}

class PgnTextTest : public ToolTest {
protected:
    void SetUp() override {
        ToolTest::SetUp();
        PBlock.mode = MODE_CONSOLE;
    }

    static Book MakeBook(const std::string& pgn) {
        WriteFile("book.pgn", pgn);
        CreateBook();
        return ReadBook("book.opn");
    }
};

TEST_F(PgnTextTest, AllReadTheSame) {
    const std::vector<Case> cases = ReadCases();
    EXPECT_GT(cases.size(), 30U);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string six;
        for (int i = 0; i < 6; ++i)
            six += c.text;
        EXPECT_EQ(MakeBook(six), BookOf(c.book));

        WriteFile("in.pgn", c.text);
        Scan_PGN_File("in.pgn", 1);
        std::string moves;
        Games listed;
        for (const Game& game : c.scan)
            if (!game.moves.empty()) {
                moves += game.moves + "/ ";
                listed.push_back(game);
            }
        EXPECT_EQ(MovesOfListing(ReadFile("tmp.pgn"), listed), moves);

        SetPosition(GamePosition(), "8/8/8/8/8/8/8/8 w - -");
        LoadGame("in.pgn", "");
        const std::string loaded = FenOf(*GamePosition());
        SetPosition(GamePosition(), c.load[0].fen.c_str());
        std::istringstream text(c.load[0].moves);
        for (std::string move; text >> move;)
            Play(move);
        EXPECT_EQ(loaded, FenOf(*GamePosition()));
    }
}

TEST_F(PgnTextTest, TextBeforeTheFirstTagIsAGame) {
    const std::string game = "[Event \"?\"]\n1. e4 e5\n";
    SetPosition(GamePosition(), "4k3/8/8/8/8/8/4P3/4K3 w - -");
    EXPECT_EQ(MakeBook("1. e4 e5\n" + game + game + game + game + game), BookOf({{NOBODY_WON, fen_opn, "e2e4 e7e5"}}));
    WriteFile("in.pgn", "1. e4 e5\n" + game);
    Scan_PGN_File("in.pgn", 1);
    EXPECT_EQ(ReadFile("tmp.pgn"), "  1.  e4      {}\n      e5      {}\n\n" + game.substr(0, 12) +
                                       "  1.  e4      {}\n      e5      {}\n\n\n");
}

// Six games in one line each, whose 65,535th character is the last one before a move.
TEST_F(PgnTextTest, LinesAreReadWhole) {
    const std::string shuffle = "Nf3 Nf6 Ng1 Ng8 ";
    for (const auto& [blanks, moves] :
         {std::pair{300, "e2e4 e7e5"}, std::pair{65535 - 5, "e2e4 e7e5"}, std::pair{65535 - 6, "e2e4"}}) {
        std::string pgn;
        for (int i = 0; i < 6; ++i)
            pgn += "[Event \"?\"]\n1. e4" + std::string(blanks, ' ') + "e5\n";
        EXPECT_EQ(MakeBook(pgn), BookOf({{NOBODY_WON, fen_opn, moves}})) << blanks;
    }
    std::string one_line;
    for (int i = 0; i < 4000; ++i)
        one_line += shuffle;
    WriteFile("in.pgn", "[Event \"?\"]\n" + one_line.substr(0, 65520) + "e4");
    LoadGame("in.pgn", "");
    EXPECT_EQ(FenOf(*GamePosition()), "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3");
}

TEST_F(PgnTextTest, TellsOfUtf16) {
    const std::string plain = "[Event \"?\"]\n1. e4\n";
    std::string wide;
    for (const char c : plain)
        wide += {c, '\0'};
    WriteFile("plain.pgn", plain);
    WriteFile("marked.pgn", "\xfe\xff" + wide);
    WriteFile("wide.pgn", wide);
    for (const auto& [name, told] : {std::pair{"plain.pgn", 0}, std::pair{"marked.pgn", 1}, std::pair{"wide.pgn", 1}}) {
        testing::internal::CaptureStderr();
        Scan_PGN_File(name, 3);
        const std::string words = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::count(words.begin(), words.end(), '\n'), told) << words;
        EXPECT_EQ(words.find(name) == 0, told == 1) << words;
    }
}

// A game is chosen by its number or by a text that may stand before its event.
TEST_F(PgnTextTest, LoadFindsTheGame) {
    WriteFile("in.pgn",
              "1. a3\n[White \"One\"]\n[Event \"x\"]\n\n1. e4 {a note} (1. d4\n)\n[Site \"Two\"]\n[Event \"y\"]\n\n"
              "[Event \"z\"]\n[FEN \"4k3/8/8/8/8/8/4P3/4K3 w - -\"]\n1. e3\n\n[White \"Four\"]\n1. c4\n");
    const struct {
        const char* which;
        const char* board;
    } rows[] = {{"", "4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"},
                {"a3", "P7/1PPPPPPP/RNBQKBNR b KQkq -"},
                {"One", "4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"},
                {"note", "4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"},
                {"Two", "PPPPPPPP/RNBQKBNR w KQkq -"},
                {"2", "PPPPPPPP/RNBQKBNR w KQkq -"},
                {"3", "4P3/8/4K3 b - -"},
                {"Four", "2P5/8/PP1PPPPP/RNBQKBNR b KQkq c3"},
                {"4", "PPPPPPPP/RNBQKBNR w KQkq -"}};
    for (const auto& row : rows) {
        LoadGame("in.pgn", row.which);
        EXPECT_TRUE(FenOf(*GamePosition()).ends_with(row.board)) << row.which << " " << FenOf(*GamePosition());
    }
}

}  // namespace
}  // namespace vrel
