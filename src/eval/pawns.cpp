#include "eval/pawns.h"

#include "eval/eval_tables.h"
#include "eval/personality.h"
#include "eval/terms.h"

// Pawn structure: what follows from the pawns alone and so is kept by pawn key.
namespace vrel {

namespace {

// What the terms of a pawn look at, by side.
struct PawnSets {
    PerSide pawns;
    PerSide attack_span;
    PerSide passed;
};

// By side: the ranks on which a pawn shields a king behind it.
constexpr std::array<uint64_t, 2> bbf = {Ranks<WHITE>(2, 3), Ranks<BLACK>(2, 3)};

// The part of the enemy's half where a defended pawn cramps him: c5 to f6, for black c3 to f4.
template <int Side>
constexpr uint64_t kAdvancedCentre = Ranks<Side>(5, 6) & kCentralSquares;

// Ending bonus of a pawn that its neighbours can help past the enemy pawns before it.
template <int Side>
int CandidateBonus(const PawnSets& sets, Square sq, int rank) {
    constexpr int Enemy = Side ^ 1;
    const uint64_t sentries = sets.pawns[Enemy] & BB_PawnSpan[Side][sq];
    uint64_t partners = sets.pawns[Side] & BB_AdjacentSquares[sq];
    // A partner that a sentry could capture on its way is no help, unless one of them meets a sentry right ahead.
    if ((Forward<Side>(Forward<Side>(partners)) & sentries) == 0)
        partners &= ~sets.attack_span[Enemy];
    return CountBits(sentries) <= CountBits(partners) ? (rank - 2) * Personality.pawn_candidate : 0;
}

// One pawn's share. Where the kings and the pieces are plays no part.
template <int Side>
ScorePair EvalPawn(const PawnSets& sets, Square sq) {
    constexpr int Enemy = Side ^ 1;
    const uint64_t bit = Bit(sq);
    const uint64_t own = sets.pawns[Side];
    const int file = FileOf(sq);
    const int rank = RelativeRank(Side, sq);
    const uint64_t ahead = Side == WHITE ? BB_RayN[sq] : BB_RayS[sq];
    const bool half_open = (sets.pawns[Enemy] & ahead) == 0;
    ScorePair score = SquarePairs[Side][PAWN][sq];
    int both = 0;

    // Doubled: each pawn of the file pays.
    if (own & (FILE_A << file) & ~bit)
        both += Personality.pawn_doubled;

    // Unsupported: no neighbour level or behind can ever cover the square ahead. On the last rank there is none. The
    // three reasons add up.
    if ((Forward<Side>(bit) & sets.attack_span[Side]) == 0) {
        if (rank <= 3)
            both += Personality.pawn_backward;
        if ((own & BB_AdjacentFiles[file]) == 0)
            both += Personality.pawn_isolated;
        if (half_open)
            both += Personality.pawn_weak;
    }

    // A passed pawn is judged with the pieces, at every evaluation. Any other is worth more when it is defended, and
    // when it may still become one.
    if ((bit & sets.passed[Side]) == 0) {
        if (own & BB_PawnRays[Enemy][sq]) {
            both += 4;
            if (bit & kAdvancedCentre<Side>)
                score += MakePair((bit & sets.attack_span[Enemy]) ? 3 : 7, 0);
        }
        if (rank > 2 && half_open)
            score += MakePair(0, CandidateBonus<Side>(sets, sq, rank));
    }
    return score + BothPair(both);
}

// Bit f: a member of the set on file f.
uint8_t FilesOf(uint64_t set) { return static_cast<uint8_t>(FillSouth(set) & RANK_1); }

// All pawns of a side, and the files that hold some. At the root each one's share goes into the report.
template <int Side, bool Root>
void EvalPawns(const PawnSets& sets, PawnHashEntry* entry, [[maybe_unused]] int stage,
               [[maybe_unused]] EvalReport* report) {
    ScorePair sum = 0;
    for (uint64_t left = sets.pawns[Side]; left;) {
        const Square sq = PopLSB(&left);
        const ScorePair score = EvalPawn<Side>(sets, sq);
        sum += score;
        if constexpr (Root)
            ReportPawn(report, &report->report_pawns, Side, sq, Blend(score, stage));
    }
    entry->score[Side] = sum;
    entry->pawn_files[Side] = FilesOf(sets.pawns[Side]);
    entry->shield_files[Side] = FilesOf(sets.pawns[Side] & bbf[Side]);
    entry->home_files[Side] = FilesOf(sets.pawns[Side] & BBHB[Side]);
}

// The sets of both sides by a few shifts, then pawn by pawn.
template <bool Root>
void ComputeEntry(const Position& pos, PawnHashEntry* entry, int stage, EvalReport* report) {
    const uint64_t wp = pos.bb[WHITE][PAWN];
    const uint64_t bp = pos.bb[BLACK][PAWN];
    // Everything strictly ahead of a pawn on its file.
    const uint64_t wf = FillNorth(wp << 8);
    const uint64_t bf = FillSouth(bp >> 8);
    PawnSets sets;
    sets.pawns = {wp, bp};
    sets.attack_span = {Sideways(wf), Sideways(bf)};
    // Nothing before it, nothing that could attack its way. A neighbour on the same rank doesn't stop it.
    sets.passed = {wp & ~(bf | sets.attack_span[BLACK]), bp & ~(wf | sets.attack_span[WHITE])};

    entry->attack_span = sets.attack_span;
    entry->passed = sets.passed[WHITE] | sets.passed[BLACK];
    // A line towards a king ends at the first pawn, and own pawns guard the squares that they attack.
    entry->shut_ground[WHITE] = Sideways(wp << 8) | wf | FillNorth(bp);
    entry->shut_ground[BLACK] = Sideways(bp >> 8) | bf | FillSouth(wp);
    EvalPawns<WHITE, Root>(sets, entry, stage, report);
    EvalPawns<BLACK, Root>(sets, entry, stage, report);
}

}  // namespace

void UpdatePawnHash(const Position& pos, PawnHashEntry* entry) { ComputeEntry<false>(pos, entry, 0, nullptr); }

void UpdatePawnHashAtRoot(const Position& pos, PawnHashEntry* entry, int stage, EvalReport* report) {
    ComputeEntry<true>(pos, entry, stage, report);
}

}  // namespace vrel
