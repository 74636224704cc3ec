#include "eval/eval_report.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "board/letters.h"
#include "interface/board_text.h"

namespace vrel {

namespace {

// Appends formatted text. A line of the report has far less than 128 characters.
[[gnu::format(printf, 2, 3)]] void Append(std::string* text, const char* format, ...) {
    std::array<char, 128> line{};
    va_list args;
    va_start(args, format);
    std::vsnprintf(line.data(), line.size(), format, args);
    va_end(args);
    *text += line.data();
}

// A line of squares, or nothing at all for an empty set.
void AppendSquares(std::string* text, const char* title, uint64_t set) {
    if (set == 0)
        return;
    *text += title;
    while (set) {
        const Square sq = PopLSB(&set);
        Append(text, "  %c%c", FileLetter(sq), RankDigit(sq));
    }
    *text += '\n';
}

// Values by side, and what white has more. `title` is padded to ten characters, which leaves the columns aligned.
void AppendRow(std::string* text, const char* title, const std::array<int16_t, 2>& sums) {
    Append(text, "%-10s %5d    %5d    %5d", title, sums[WHITE], sums[BLACK], sums[WHITE] - sums[BLACK]);
}

// The letters of the pieces that `side` has more of than its opponent.
std::string Surplus(const Position& pos, Side side) {
    std::string text;
    for (int type = QUEEN; type >= PAWN; --type)
        for (int n = CountOf(pos, side, type) - CountOf(pos, side ^ 1, type); n > 0; --n)
            text += fen_letters[type];
    return text;
}

// The table of the terms; the report's shares don't add up to "pos" exactly, since each is rounded by itself.
void AppendTerms(std::string* text, const Position& pos, const EvalReport& report) {
    // Material is summed up without regard to squares; beside it stands who has what in addition.
    *text += "           white    black     diff\n";
    AppendRow(text, "mtl=", report.report_mtl);
    *text += "   (" + Surplus(pos, WHITE) + " :: " + Surplus(pos, BLACK) + ")\n";
    struct Row {
        const char* title;
        const std::array<int16_t, 2>* sums;
    };
    const std::array<Row, 8> rows = {{{"pos=", &report.report_pos},
                                      {"pawns=", &report.report_pawns},
                                      {"knights=", &report.report_knights},
                                      {"bishops=", &report.report_bishops},
                                      {"rooks=", &report.report_rooks},
                                      {"queens=", &report.report_queens},
                                      {"kings=", &report.report_kings},
                                      {"passers=", &report.report_passers}}};
    for (const Row& row : rows) {
        AppendRow(text, row.title, *row.sums);
        *text += '\n';
    }
}

// The board, and beside it the share of each piece.
void AppendBoard(std::string* text, const Position& pos, const EvalReport& report) {
    for (int rank = 7; rank >= 0; --rank) {
        for (Square sq = rank * 8; sq < rank * 8 + 8; ++sq)
            Append(text, " %c", SquareLetter(pos, sq));
        *text += "    ";
        for (Square sq = rank * 8; sq < rank * 8 + 8; ++sq)
            if (pos.board[sq])
                Append(text, " %4d", report.eval_by_square[sq]);
            else
                *text += "    -";
        *text += '\n';
    }
}

}  // namespace

// The figures as a whole, then what hangs and is pinned, the terms, and the board with its shares.
std::string EvalReportText(const Position& pos, const EvalReport& report, int eval, int qscore) {
    std::string text = "\n";
    Append(&text, "eval= %d, qscore= %d, stage= %d, draw_adj= %0.2f\n\n", eval, qscore, report.report_stage,
           report.report_draw_adj);
    AppendSquares(&text, "hung pieces on: ", report.report_hung);
    AppendSquares(&text, "pinned pieces on :", report.report_pinned);
    if (report.report_free_rank[WHITE] > 0 || report.report_free_rank[BLACK] > 0)
        Append(&text, "free pawn ranks are W: %d, B: %d\n", report.report_free_rank[WHITE],
               report.report_free_rank[BLACK]);
    // The sum comes in its parts twice: by kind of term, and by the squares that it comes from.
    AppendTerms(&text, pos, report);
    AppendBoard(&text, pos, report);
    text += pos.stm == WHITE ? "white\n" : "black\n";
    return text;
}

std::string EvalPartsText(const EvalReport& report) {
    std::string text = "\n              opening   ending\n";
    for (const Side side : {WHITE, BLACK}) {
        const char* name = side == WHITE ? "white" : "black";
        const ScorePair mtl = report.report_mtl_pair[side];
        const ScorePair pos = report.report_pos_pair[side];
        Append(&text, "%s mtl=     %6d   %6d\n", name, OpeningOf(mtl), EndingOf(mtl));
        Append(&text, "%s pos=     %6d   %6d\n", name, OpeningOf(pos), EndingOf(pos));
    }
    AppendSquares(&text, "free passed pawns on:", report.report_free);
    return text;
}

}  // namespace vrel
