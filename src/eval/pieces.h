#pragma once

#include <algorithm>

#include "board/attacks.h"
#include "eval/eval_tables.h"
#include "eval/personality.h"
#include "eval/terms.h"

// The attack sets that all terms share, and the terms of knights, bishops, rooks and queens.
namespace vrel {

// The box around a king by its square: nine squares in the middle, the king being moved off the rim first.
constexpr SquareTable MakeKingZones() {
    SquareTable zones{};
    for (Square sq = 0; sq < 64; ++sq) {
        const int file = std::clamp(FileOf(sq), 1, 6);
        const int rank = std::clamp(RankOf(sq), 1, 6);
        const uint64_t row = 7ULL << (file - 1);
        zones[sq] = (row | row << 8 | row << 16) << (8 * (rank - 1));
    }
    return zones;
}
inline constexpr SquareTable kKingZones = MakeKingZones();

// The file of a king and the files beside it.
constexpr SquareTable MakeKingFiles() {
    SquareTable files{};
    for (Square sq = 0; sq < 64; ++sq) {
        const uint64_t file = FILE_A << FileOf(sq);
        files[sq] = file | (file & ~FILE_A) >> 1 | (file & ~FILE_H) << 1;
    }
    return files;
}
inline constexpr SquareTable kKingFiles = MakeKingFiles();

// What traps a rook: by its square on an outer file, where an own pawn or king shuts it in, on its rank towards the
// centre. On other files nothing does.
constexpr SquareTable MakeTrappers() {
    SquareTable squares{};
    for (Square sq = 0; sq < 64; ++sq) {
        const int file = FileOf(sq);
        const int row = file == 0 ? 0x06 : file == 1 ? 0x04 : file == 6 ? 0x20 : file == 7 ? 0x60 : 0;
        squares[sq] = static_cast<uint64_t>(row) << (8 * RankOf(sq));
    }
    return squares;
}
inline constexpr SquareTable BBTF = MakeTrappers();

// Sets of the board of one side that need nothing but pawns and kings.
template <int Side>
[[gnu::always_inline]] inline void StartAttackSets(EvalContext* ctx) {
    const Position& pos = *ctx->pos;
    const uint64_t king = BB_KingRays[ctx->king_sq[Side]];
    const uint64_t pawns = Sideways(Forward<Side>(pos.bb[Side][PAWN]));
    ctx->attacks[PAWN][Side] = pawns;
    ctx->attacks[KING][Side] = king;
    ctx->attacks[0][Side] = pawns | king;
    ctx->double_attacks[Side] = pawns & king;
    ctx->attacks[KNIGHT][Side] = 0;
    ctx->attacks[BISHOP][Side] = 0;
    ctx->attacks[ROOK][Side] = 0;
    ctx->attacks[QUEEN][Side] = 0;
}

// The squares of the terms; the attacks of both sides' pawns are known.
template <int Side>
[[gnu::always_inline]] inline void StartSquareSets(EvalContext* ctx) {
    constexpr int Enemy = Side ^ 1;
    const Position& pos = *ctx->pos;
    const Square king = ctx->king_sq[Side];
    // Where pawns attack, no piece likes to go.
    ctx->mobility_area[Side] = ~(pos.bb[Side][0] | ctx->attacks[PAWN][Enemy]);
    const uint64_t enemy_area = ~(pos.bb[Enemy][0] | ctx->attacks[PAWN][Side]);
    // The ground around the king, and from where an enemy piece would check it.
    ctx->king_zone[Side] = kKingZones[king];
    ctx->king_lines[Side] = kKingFiles[king] & ~ctx->pawn->shut_ground[Side];
    ctx->knight_checks[Side] = BB_KnightRays[king] & enemy_area;
    ctx->bishop_checks[Side] = GenAttacksB(king, ctx->occupied) & enemy_area;
    ctx->rook_checks[Side] = GenAttacksR(king, ctx->occupied) & enemy_area;
    // On the way up, where no enemy pawn can come to attack.
    ctx->outpost[Side] = Ranks<Side>(4, 7) & ~(FILE_A | FILE_H) & ~ctx->pawn->attack_span[Enemy];
    // Enemy pawns before the king open the list of its attackers.
    ctx->king_attackers[Side] = CountBits(Forward<Side>(kKingZones[king]) & pos.bb[Enemy][PAWN]);
}

// Joins the attacks of one more piece. `seen` may reach beyond them: it counts for squares attacked twice.
template <int Side, int Type>
[[gnu::always_inline]] inline void JoinAttacks(EvalContext* ctx, uint64_t attacks, uint64_t seen) {
    ctx->double_attacks[Side] |= seen & ctx->attacks[0][Side];
    ctx->attacks[0][Side] |= attacks;
    ctx->attacks[Type][Side] |= attacks;
}

// A knight wants a square that no enemy pawn can ever attack. Its outpost counts in the opening alone.
template <int Side>
[[gnu::always_inline]] inline ScorePair EvalKnight(EvalContext* ctx, Square sq) {
    constexpr int Enemy = Side ^ 1;
    const uint64_t bit = Bit(sq);
    const uint64_t attacks = BB_KnightRays[sq];
    JoinAttacks<Side, KNIGHT>(ctx, attacks, attacks);
    ScorePair score =
        MobilityPairs[KNIGHT][CountBits(attacks & ctx->mobility_area[Side])] + SquarePairs[Side][KNIGHT][sq];
    if (attacks & ctx->king_zone[Enemy]) {
        ctx->king_attackers[Enemy] += 2;
        score += BothPair(8);
    } else if (attacks & ctx->knight_checks[Enemy]) {
        ctx->king_attackers[Enemy] += 1;
    }
    // On an outpost, better still if a pawn covers it; and another in reach counts half.
    if (bit & ctx->outpost[Side]) {
        score += MakePair(Personality.knight_outpost, 0);
        if (bit & ctx->attacks[PAWN][Side])
            score += MakePair(5, 0);
    }
    if (attacks & ctx->outpost[Side])
        score += MakePair(Personality.knight_outpost / 2, 0);
    return score;
}

// By side: squares where a bishop that has gone pawn hunting gets shut in. For white a7, h7, b8, g8; for black a2, h2,
// b1, g1.
template <int Side>
constexpr uint64_t MakeTrap() {
    return (Ranks<Side>(7, 7) & (FILE_A | FILE_H)) | (Ranks<Side>(8, 8) & (FILE_A << 1 | FILE_A << 6));
}
inline constexpr std::array<uint64_t, 2> trap = {MakeTrap<WHITE>(), MakeTrap<BLACK>()};

// A bishop likes to look at the centre.
template <int Side>
[[gnu::always_inline]] inline ScorePair EvalBishop(EvalContext* ctx, Square sq) {
    constexpr int Enemy = Side ^ 1;
    // A bishop sees through its own queen.
    const uint64_t attacks = GenAttacksB(sq, ctx->occupied & ~ctx->pos->bb[Side][QUEEN]);
    JoinAttacks<Side, BISHOP>(ctx, attacks, attacks);
    ScorePair score = MobilityPairs[BISHOP][CountBits(attacks & ctx->mobility_area[Side])] +
                      SquarePairs[Side][BISHOP][sq] +
                      BothPair(4) * static_cast<ScorePair>(CountBits(attacks & kCentralSquares));
    if (attacks & ctx->king_zone[Enemy]) {
        ctx->king_attackers[Enemy] += 2;
        score += BothPair(4);
    } else if (attacks & ctx->bishop_checks[Enemy]) {
        ctx->king_attackers[Enemy] += 1;
    }
    // Trapped, unless it still attacks a square of the inner board that no pawn guards.
    if ((Bit(sq) & trap[Side]) && (attacks & kInnerBoard & ~ctx->attacks[PAWN][Enemy]) == 0) [[unlikely]]
        score += BothPair(Personality.bishop_trapped);
    return score;
}

// A heavy piece likes its seventh rank where there are pawns at home to be taken, or a king to be cut off.
template <int Side>
[[gnu::always_inline]] inline bool RulesSeventhRank(const Position& pos, Square sq) {
    constexpr int Enemy = Side ^ 1;
    return RelativeRank(Side, sq) == SEVENTH_RANK &&
           ((pos.bb[Enemy][PAWN] & Ranks<Enemy>(2, 2)) | (pos.bb[Enemy][KING] & Ranks<Enemy>(1, 1))) != 0;
}

// A rook looks along its file, best without own pawns, and at the enemy's half of it.
template <int Side>
[[gnu::always_inline]] inline ScorePair EvalRook(EvalContext* ctx, Square sq) {
    constexpr int Enemy = Side ^ 1;
    const Position& pos = *ctx->pos;
    const int file = FileOf(sq);
    // A rook sees through its own rooks and queens.
    const uint64_t attacks = GenAttacksR(sq, ctx->occupied & ~(pos.bb[Side][ROOK] | pos.bb[Side][QUEEN]));
    JoinAttacks<Side, ROOK>(ctx, attacks, attacks);
    // Squares to go to, and squares of its file beyond the middle.
    const int moves = CountBits(attacks & ctx->mobility_area[Side]);
    const int beyond = CountBits(attacks & (FILE_A << file) & BBHB[Enemy]);
    ScorePair score = MobilityPairs[ROOK][moves] + SquarePairs[Side][ROOK][sq] +
                      BothPair(4) * static_cast<ScorePair>(std::min(beyond, 2));
    if (attacks & ctx->king_zone[Enemy]) {
        ctx->king_attackers[Enemy] += 3;
        score += BothPair(4);
    } else if (attacks & (ctx->king_lines[Enemy] | ctx->rook_checks[Enemy])) {
        ctx->king_attackers[Enemy] += 1;
    }
    // Without an own pawn its file is open, or half open if there is one of the enemy. With one, it may be shut in.
    if ((ctx->pawn->pawn_files[Side] >> file & 1) == 0) {
        const bool half_open = ctx->pawn->pawn_files[Enemy] >> file & 1;
        score += BothPair(half_open ? Personality.rook_half_open_file : Personality.rook_open_file);
    } else if (moves <= 4 && (BBTF[sq] & (pos.bb[Side][PAWN] | pos.bb[Side][KING]))) {
        score += MakePair(Personality.rook_trapped, 0);
    }
    if (RulesSeventhRank<Side>(pos, sq))
        score += BothPair(Personality.rook_rank7);
    return score;
}

// A queen counts by what it attacks; behind an own piece it still backs that up.
template <int Side>
[[gnu::always_inline]] inline ScorePair EvalQueen(EvalContext* ctx, Square sq) {
    constexpr int Enemy = Side ^ 1;
    const Position& pos = *ctx->pos;
    const uint64_t diagonal = GenAttacksB(sq, ctx->occupied);
    const uint64_t straight = GenAttacksR(sq, ctx->occupied);
    const uint64_t attacks = diagonal | straight;
    // Through own bishops and rooks that move alike it backs up their attacks.
    uint64_t seen = attacks;
    if (diagonal & pos.bb[Side][BISHOP])
        seen |= GenAttacksB(sq, ctx->occupied & ~pos.bb[Side][BISHOP]);
    if (straight & pos.bb[Side][ROOK])
        seen |= GenAttacksR(sq, ctx->occupied & ~pos.bb[Side][ROOK]);
    JoinAttacks<Side, QUEEN>(ctx, attacks, seen);
    ScorePair score =
        MobilityPairs[QUEEN][CountBits(attacks & ctx->mobility_area[Side])] + SquarePairs[Side][QUEEN][sq];
    // Against the king the nearest effect counts, and only that.
    if (attacks & ctx->king_zone[Enemy])
        ctx->king_attackers[Enemy] += 3;
    else if (seen & ctx->king_zone[Enemy])
        ctx->king_attackers[Enemy] += 2;
    else if (attacks & (ctx->king_lines[Enemy] | ctx->bishop_checks[Enemy] | ctx->rook_checks[Enemy]))
        ctx->king_attackers[Enemy] += 1;
    if (RulesSeventhRank<Side>(pos, sq))
        score += BothPair(Personality.queen_rank7);
    return score;
}

// All pieces of one side and type. The order of the list matters for queens: see JoinAttacks.
template <int Side, int Type, bool Root>
[[gnu::always_inline]] inline void EvalPieces(EvalContext* ctx) {
    // The sum of the pieces joins the side's sums at the end, so that it can stay in a register.
    ScorePair sum = 0;
    for (const uint8_t* entry = ctx->pos->plist[Side][Type].data(); *entry != NO_SQUARE; ++entry) {
        const Square sq = *entry;
        ScorePair score;
        if constexpr (Type == KNIGHT)
            score = EvalKnight<Side>(ctx, sq);
        else if constexpr (Type == BISHOP)
            score = EvalBishop<Side>(ctx, sq);
        else if constexpr (Type == ROOK)
            score = EvalRook<Side>(ctx, sq);
        else
            score = EvalQueen<Side>(ctx, sq);
        sum += score;
        if constexpr (Root) {
            EvalReport* report = ctx->report;
            auto* sums = Type == KNIGHT   ? &report->report_knights
                         : Type == BISHOP ? &report->report_bishops
                         : Type == ROOK   ? &report->report_rooks
                                          : &report->report_queens;
            ReportPiece(report, sums, Side, sq, Blend(score, ctx->stage));
        }
    }
    ctx->score[Side] += sum;
}

}  // namespace vrel
