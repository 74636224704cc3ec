#include "board/attacks.h"

namespace vrel {

std::array<SliderTable<uint64_t>, SQUARES> bishop_tables;
std::array<SliderTable<uint16_t>, SQUARES> rook_tables;
std::array<uint64_t, 1 + 4900> rook_sets;  // the empty one first

namespace {

// One entry for each way in which the inner squares of the lines can be occupied, square by square.
std::array<uint64_t, 5248> bishop_entries;
std::array<uint16_t, 102400> rook_entries;
constexpr uint64_t kNoSet = 0;
constexpr uint16_t kNoPlace = 0;

// Found by trying random numbers with few bits.
constexpr std::array<uint64_t, 64> kBishopMultipliers = {
    0x50c0020208510100ULL, 0x0110210101021181ULL, 0x0384182202420302ULL, 0x2414240480006014ULL, 0x0004050450002000ULL,
    0x288202110400280bULL, 0x0010480211104000ULL, 0x0102148404024020ULL, 0x0401101042808400ULL, 0x0200250400860a01ULL,
    0x9040100102002800ULL, 0x0400880681011000ULL, 0x0800020210842421ULL, 0xac180904a0040880ULL, 0x9400010801104880ULL,
    0x800040410410034aULL, 0x8420008404440800ULL, 0x0010610821410401ULL, 0x0810041824801010ULL, 0x0400802802004020ULL,
    0x0a14004201210008ULL, 0x0040408600422083ULL, 0x0000a0034c100800ULL, 0x0001208446080420ULL, 0x0044401404100406ULL,
    0x0044200024980088ULL, 0x2080300002040041ULL, 0x0016002018008020ULL, 0x00a2002002008058ULL, 0x2041041002020080ULL,
    0x00145080084a1008ULL, 0x4504244003010090ULL, 0x0008040402c0084aULL, 0x0104411801049000ULL, 0x0003240108100110ULL,
    0x0002a008000a8820ULL, 0x0001100400708020ULL, 0x1010100040002400ULL, 0x8004084208088080ULL, 0x0011004109020108ULL,
    0x4021042104012000ULL, 0x0002880402403111ULL, 0x1202002024208800ULL, 0x0010114010402a00ULL, 0x2000010212000400ULL,
    0x800142080a000041ULL, 0x2020084200404084ULL, 0x8004088404500101ULL, 0x0800885808040012ULL, 0x4004404208a01042ULL,
    0x0220105208040248ULL, 0x1344100822881001ULL, 0x80000090021a0400ULL, 0x0411400802042009ULL, 0x0804105a08030100ULL,
    0x60041102320e0400ULL, 0x0041010110028205ULL, 0x4500020052280400ULL, 0x0001028100880480ULL, 0x0100000000e18821ULL,
    0x80010c0091020200ULL, 0x00a0080504082203ULL, 0x0400401041022880ULL, 0x0040108421004010ULL,
};
constexpr std::array<uint64_t, 64> kRookMultipliers = {
    0x1080019040028821ULL, 0x0440002004421002ULL, 0x1080088010002000ULL, 0x2500051000090021ULL, 0x660008a010020004ULL,
    0x1080040080010200ULL, 0x2200208802000401ULL, 0x0900004081000022ULL, 0x0910800040002083ULL, 0x0801804000600084ULL,
    0x0088801000802000ULL, 0x0402001040220008ULL, 0x4080808004000800ULL, 0x0304800400220080ULL, 0x410200a408410200ULL,
    0x010200106100840aULL, 0x0080208000400080ULL, 0x0001050040008020ULL, 0x0820004040100800ULL, 0x0850808008001000ULL,
    0x4002050008010011ULL, 0x2004008080020004ULL, 0xc090808002000100ULL, 0xa0000200004100a4ULL, 0x0480388080004002ULL,
    0x1020002040005001ULL, 0x0000401100200900ULL, 0x02020022000c1040ULL, 0x8042100500480100ULL, 0x0000040080020080ULL,
    0x9205010080800200ULL, 0x0800208200004104ULL, 0x02f0400028800080ULL, 0x0000802000804000ULL, 0x2140801000802000ULL,
    0x4080210209001000ULL, 0x1025000801000410ULL, 0x4002800200800401ULL, 0x1142028804000110ULL, 0x0401040246000981ULL,
    0x011c208040008000ULL, 0xc030102000404003ULL, 0x5a10306003030041ULL, 0xa00010010021000cULL, 0x2168001100090004ULL,
    0x0884020004008080ULL, 0x0000081001840002ULL, 0x000100208c410002ULL, 0x000a288001104300ULL, 0x0040062000408480ULL,
    0x2010900420048380ULL, 0x0001080010018280ULL, 0x3804000480080080ULL, 0xa003020004008080ULL, 0x8091000a00040500ULL,
    0x1023110344048200ULL, 0x0004831106402202ULL, 0x2860420880201102ULL, 0x0409094100200011ULL, 0x2085001000452009ULL,
    0x10020009a0041002ULL, 0x8529000204000801ULL, 0x3099611008008224ULL, 0x0400040040810022ULL,
};

// The squares that a slider on `sq` reaches on a line that isn't a rank, first blockers included. Taking the slider
// from the occupied squares of the line borrows from the nearest blocker above, and so changes just what lies between;
// on the board turned upside down the same holds for the blocker below.
uint64_t LineAttacks(Square sq, uint64_t line, uint64_t occ) {
    const uint64_t blockers = line & occ;
    const uint64_t above = blockers - Bit(sq);
    const uint64_t below = __builtin_bswap64(__builtin_bswap64(blockers) - Bit(sq ^ 56));
    return (above ^ below) & line;
}

// The same on a rank, which turning the board doesn't reverse. To the right, taking one flips everything up to the
// nearest blocker; to the left, everything from the nearest blocker on counts.
uint64_t RankAttacks(Square sq, uint64_t occ) {
    const uint64_t right = BB_RayE[sq] & occ;
    const uint64_t from_left = ~0ULL << GetMSB((BB_RayW[sq] & occ) | 1);
    return (BB_RayE[sq] & (right ^ (right - 1))) | (BB_RayW[sq] & from_left);
}

uint64_t BishopAttacks(Square sq, uint64_t occ) {
    return LineAttacks(sq, BB_RayNE[sq] | BB_RaySW[sq], occ) | LineAttacks(sq, BB_RayNW[sq] | BB_RaySE[sq], occ);
}
uint64_t RookAttacks(Square sq, uint64_t occ) {
    return LineAttacks(sq, BB_RayN[sq] | BB_RayS[sq], occ) | RankAttacks(sq, occ);
}

// Numbers the attack sets of a rook by how far they reach in each direction, from 0 on and without gaps.
int NumberOfSet(Square sq, uint64_t set) {
    int number = 0;
    for (const uint64_t ray : {BB_RayN[sq], BB_RayS[sq], BB_RayE[sq], BB_RayW[sq]})
        if (ray)
            number = number * CountBits(ray) + CountBits(set & ray) - 1;
    return number;
}

// What `sq` sees of a file or rank, or of a diagonal, but for the square where it leaves the board.
uint64_t Inner(Square sq, uint64_t rays) {
    const uint64_t rim_files = (FILE_A | FILE_H) & ~(FILE_A << FileOf(sq));
    const uint64_t rim_ranks = (RANK_1 | RANK_1 << 56) & ~(RANK_1 << (8 * RankOf(sq)));
    return rays & ~(rim_files | rim_ranks);
}

// Fills the table of a slider on one square, whose entries lie at `entries`, from what entry_of(occupation) gives.
// Returns their end.
template <typename Entry, typename EntryOf>
Entry* FillTable(SliderTable<Entry>* table, uint64_t mask, uint64_t multiplier, Entry* entries, EntryOf entry_of) {
    *table = {mask, multiplier, entries, 64 - CountBits(mask)};
    // Counting within the mask goes through all its subsets.
    uint64_t occ = 0;
    do {
        entries[(occ * multiplier) >> table->shift] = entry_of(occ);
        occ = (occ - mask) & mask;
    } while (occ);
    return entries + (1LL << CountBits(mask));
}

}  // namespace

void InitializeAttacks() {
    uint64_t* sets = bishop_entries.data();
    uint16_t* places = rook_entries.data();
    int first = 1;
    for (Square sq = 0; sq < NO_SQUARE; ++sq) {
        sets = FillTable(&bishop_tables[sq], Inner(sq, BB_BishopRays[sq]), kBishopMultipliers[sq], sets,
                         [sq](uint64_t occ) { return BishopAttacks(sq, occ); });
        places = FillTable(&rook_tables[sq], Inner(sq, BB_RookRays[sq]), kRookMultipliers[sq], places,
                           [sq, first](uint64_t occ) {
                               const uint64_t set = RookAttacks(sq, occ);
                               const int place = first + NumberOfSet(sq, set);
                               rook_sets[place] = set;
                               return static_cast<uint16_t>(place);
                           });
        // On an empty board it reaches farthest everywhere.
        first += NumberOfSet(sq, BB_RookRays[sq]) + 1;
    }
    bishop_tables[NO_SQUARE] = {0, 0, &kNoSet, 0};
    rook_tables[NO_SQUARE] = {0, 0, &kNoPlace, 0};
}

uint64_t GetAtakr(Square sq, int type, uint64_t set, uint64_t occ) {
    switch (type) {
        case KNIGHT:
            return set & BB_KnightRays[sq];
        case BISHOP:
            return set & GenAttacksB(sq, occ);
        case ROOK:
            return set & GenAttacksR(sq, occ);
        case QUEEN:
            return set & (GenAttacksB(sq, occ) | GenAttacksR(sq, occ));
        default:
            return 0;
    }
}

}  // namespace vrel
