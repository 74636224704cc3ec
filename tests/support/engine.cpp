#include "support/engine.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "board/fen.h"
#include "board/generate.h"
#include "interface/pblock.h"
#include "search/start_up.h"

namespace vrel {

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
        const char letter = ".PNBRQK"[TypeOf(pos.board[sq])];
        board.squares[sq] = SideOf(pos.board[sq]) == WHITE ? letter : static_cast<char>(std::tolower(letter));
    }
    board.white_to_move = pos.stm == WHITE;
    for (size_t right = 0; right < 4; ++right)
        if (pos.castling & (1 << right))
            board.rights += "KQkq"[right];
    board.en_passant = pos.ep_square == NO_SQUARE ? oracle::NOWHERE : pos.ep_square;
    board.quiet_plies = pos.fifty;
    return board;
}

oracle::Move OracleMove(Move move) {
    const char promotion = (move & PROMOTION_BITS) != 0 ? "  nbrq"[PromotedType(move)] : '\0';
    return {FromSquare(move), ToSquare(move), promotion};
}

bool SamePosition(const Position& a, const Position& b) {
    auto x = a.plist, y = b.plist;
    for (auto* lists : {&x, &y})
        for (auto& rows : *lists)
            for (auto& row : rows) {
                const auto end = std::find(row.begin(), row.end(), NO_SQUARE);
                std::sort(row.begin(), end);
                std::fill(end, row.end(), NO_SQUARE);
            }
    return x == y && a.board == b.board && a.bb == b.bb && a.msig == b.msig && a.npv == b.npv && a.hash == b.hash &&
           a.pawn_hash == b.pawn_hash && a.stm == b.stm && a.castling == b.castling && a.ep_square == b.ep_square &&
           a.fifty == b.fifty && a.last_move == b.last_move && a.game_ply == b.game_ply && a.ply == b.ply;
}

std::vector<MoveEntry> AllMoves(Position* pos) {
    GenerateAll(pos);
    std::vector<MoveEntry> moves;
    for (const MoveEntry* entry = pos->frames[pos->ply].first; entry->move != END_OF_LIST; ++entry)
        moves.push_back(*entry);
    return moves;
}

}  // namespace vrel
