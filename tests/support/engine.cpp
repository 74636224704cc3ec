#include "support/engine.h"

#include <algorithm>
#include <cstdlib>

#include "board/fen.h"
#include "board/generate.h"
#include "interface/pblock.h"
#include "search/start_up.h"

namespace vrel {
namespace {

std::vector<int> SortedRow(const Position& pos, size_t side, size_t type) {
    std::vector<int> row;
    for (const uint8_t sq : pos.plist[side][type]) {
        if (sq == NO_SQUARE)
            break;
        row.push_back(sq);
    }
    std::sort(row.begin(), row.end());
    return row;
}

bool SameRows(const Position& a, const Position& b) {
    for (size_t side = 0; side < 2; ++side)
        for (size_t type = PAWN; type <= KING; ++type)
            if (SortedRow(a, side, type) != SortedRow(b, side, type))
                return false;
    return true;
}

}  // namespace

void StartForTests() {
    static const bool started = StartEngine([] {
                                    PBlock.log = 0;
                                    PBlock.noise = SILENT;
                                }) &&
                                InitNewThread(1) == 0;
    if (!started)
        std::abort();
}

TestPosition::TestPosition(const std::string& fen) : thread_(std::make_unique<SearchThread>()) {
    Position& pos = thread_->pos;
    pos.undo = thread_->undo.data();
    pos.frames = thread_->frames.data();
    pos.frames[0].first = pos.frames[1].first = thread_->move_stack.data();
    Set(fen);
}

void TestPosition::Set(const std::string& fen) { SetPosition(get(), fen.c_str()); }

std::string FenOf(const Position& pos) {
    char text[EPD_TEXT];
    MakeEPD(pos, text);
    return text;
}

oracle::Board OracleBoard(const Position& pos) {
    oracle::Board board;
    for (size_t sq = 0; sq < 64; ++sq) {
        const int code = pos.board[sq];
        const char letter = ".PNBRQK"[TypeOf(code)];
        board.squares[sq] = code == 0 || SideOf(code) == WHITE ? letter : static_cast<char>(letter + ('a' - 'A'));
    }
    board.white_to_move = pos.stm == WHITE;
    for (size_t right = 0; right < 4; ++right)
        board.may_castle[right] = (pos.castling & (1 << right)) != 0;
    board.en_passant = pos.ep_square == NO_SQUARE ? oracle::NOWHERE : pos.ep_square;
    board.quiet_plies = pos.fifty;
    return board;
}

oracle::Move OracleMove(Move move) {
    constexpr char kLetters[] = {0, 0, 'n', 'b', 'r', 'q'};
    const char promotion = (move & PROMOTION_BITS) != 0 ? kLetters[PromotedType(move)] : static_cast<char>(0);
    return {FromSquare(move), ToSquare(move), promotion};
}

Move EngineMove(const oracle::Move& move) {
    Move value = MakeMoveValue(move.from, move.to);
    switch (move.promotion) {
        case 'q':
            value |= PROMOTE_QUEEN;
            break;
        case 'n':
            value |= PROMOTE_KNIGHT;
            break;
        case 'b':
            value |= PROMOTE_BISHOP;
            break;
        case 'r':
            value |= PROMOTE_ROOK;
            break;
        default:
            break;
    }
    return value;
}

bool SamePosition(const Position& a, const Position& b) {
    return a.board == b.board && SameRows(a, b) && a.bb == b.bb && a.msig == b.msig && a.npv == b.npv &&
           a.hash == b.hash && a.pawn_hash == b.pawn_hash && a.stm == b.stm && a.castling == b.castling &&
           a.ep_square == b.ep_square && a.fifty == b.fifty && a.last_move == b.last_move && a.game_ply == b.game_ply &&
           a.ply == b.ply;
}

std::vector<MoveEntry> AllMoves(Position* pos) {
    GenerateAll(pos);
    std::vector<MoveEntry> moves;
    for (const MoveEntry* entry = pos->frames[pos->ply].first; entry->move != END_OF_LIST; ++entry)
        moves.push_back(*entry);
    return moves;
}

}  // namespace vrel
