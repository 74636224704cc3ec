#include "board/position.h"

#include <emmintrin.h>

#include <cstddef>

namespace vrel {

namespace {

using Row = std::array<uint8_t, MAX_ROW + 1>;

// The rows are searched as a whole: where a piece stands in its row can't be predicted, and a loop would pay for that.
static_assert(sizeof(Row) == 16);
__m128i LoadRow(const Row& row) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(row.data())); }

void StoreRow(Row* row, __m128i squares) { _mm_storeu_si128(reinterpret_cast<__m128i*>(row->data()), squares); }

// `a` where the mask is set, else `b`.
__m128i Select(__m128i mask, __m128i a, __m128i b) {
    return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
}

// Place of a square that is in the row; NO_SQUARE gives its length. The king's isn't part of the material signature, so
// the terminator tells.
size_t PlaceOf(__m128i row, int sq) {
    const int equal = _mm_movemask_epi8(_mm_cmpeq_epi8(row, _mm_set1_epi8(static_cast<char>(sq))));
    return static_cast<size_t>(__builtin_ctz(static_cast<unsigned>(equal)));
}

// Ones from the given place of a row on.
__m128i PlacesFrom(size_t place) {
    alignas(16) static constexpr std::array<uint8_t, 32> zeros_then_ones = [] {
        std::array<uint8_t, 32> bytes{};
        for (size_t i = 16; i < 32; ++i)
            bytes[i] = 0xff;
        return bytes;
    }();
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(zeros_then_ones.data() + 16 - place));
}

}  // namespace

void ClearBoard(Position* pos) {
    pos->ep_square = NO_SQUARE;
    pos->castling = WHITE_SHORT | WHITE_LONG | BLACK_SHORT | BLACK_LONG;
    pos->game_ply = 0;
    pos->ply = 1;
    pos->fifty = 0;
    pos->last_move = NO_MOVE;
    pos->npv = {};
    pos->msig = {};
    pos->board = {};
    pos->bb = {};
    for (auto& rows : pos->plist)
        for (Row& row : rows)
            row[0] = NO_SQUARE;
}

void AddPiece(Position* pos, int side, int piece, int sq) {
    const auto type = static_cast<size_t>(piece & 7);
    const auto s = static_cast<size_t>(side);
    Row& row = pos->plist[s][type];
    const size_t n = PlaceOf(LoadRow(row), NO_SQUARE);
    if (n == MAX_ROW)
        return;
    row[n] = static_cast<uint8_t>(sq);
    row[n + 1] = NO_SQUARE;
    pos->board[static_cast<size_t>(sq)] = static_cast<uint8_t>(PieceCode(side, static_cast<int>(type)));
    pos->npv[s] = static_cast<int16_t>(pos->npv[s] + npv_unit[type]);
    pos->msig[s] += msig_unit[type];
    pos->bb[s][0] |= Bit(sq);
    pos->bb[s][type] |= Bit(sq);
}

void RemovePiece(Position* pos, int sq) {
    const int code = pos->board[static_cast<size_t>(sq)];
    const auto type = static_cast<size_t>(TypeOf(code));
    const auto s = static_cast<size_t>(SideOf(code));
    pos->board[static_cast<size_t>(sq)] = 0;
    Row& row = pos->plist[s][type];
    const __m128i squares = LoadRow(row);
    // Later squares move up one place, so that the order of the row stays.
    const __m128i later = PlacesFrom(PlaceOf(squares, sq));
    StoreRow(&row, Select(later, _mm_srli_si128(squares, 1), squares));
    pos->npv[s] = static_cast<int16_t>(pos->npv[s] - npv_unit[type]);
    pos->msig[s] -= msig_unit[type];
    pos->bb[s][0] ^= Bit(sq);
    pos->bb[s][type] ^= Bit(sq);
}

void MovePiece(Position* pos, int side, int from, int to) {
    const auto s = static_cast<size_t>(side);
    const uint8_t code = pos->board[static_cast<size_t>(from)];
    const auto type = static_cast<size_t>(TypeOf(code));
    pos->board[static_cast<size_t>(to)] = code;
    pos->board[static_cast<size_t>(from)] = 0;
    Row& row = pos->plist[s][type];
    const __m128i squares = LoadRow(row);
    const __m128i place = _mm_cmpeq_epi8(squares, _mm_set1_epi8(static_cast<char>(from)));
    StoreRow(&row, Select(place, _mm_set1_epi8(static_cast<char>(to)), squares));
    const uint64_t both = Bit(from) | Bit(to);
    pos->bb[s][0] ^= both;
    pos->bb[s][type] ^= both;
}

bool PositionIsConsistent(const Position& pos) {
    for (size_t side = 0; side < 2; ++side) {
        uint64_t all = 0;
        uint32_t msig = 0;
        int npv = 0;
        for (size_t type = PAWN; type <= KING; ++type) {
            uint64_t set = 0;
            const Row& row = pos.plist[side][type];
            size_t n = 0;
            while (n < MAX_ROW && row[n] != NO_SQUARE)
                ++n;
            if (row[n] != NO_SQUARE)
                return false;
            for (size_t i = 0; i < n; ++i) {
                if (row[i] > 63 || (set & Bit(row[i])) ||
                    pos.board[row[i]] != PieceCode(static_cast<int>(side), static_cast<int>(type)))
                    return false;
                set |= Bit(row[i]);
            }
            if (set != pos.bb[side][type])
                return false;
            all |= set;
            msig += static_cast<uint32_t>(n) * msig_unit[type];
            npv += static_cast<int>(n) * npv_unit[type];
        }
        if (all != pos.bb[side][0] || msig != pos.msig[side] || npv != pos.npv[side])
            return false;
    }
    int pieces = 0;
    for (size_t sq = 0; sq < 64; ++sq)
        pieces += pos.board[sq] != 0;
    return pieces == CountBits(Occupied(pos)) && (pos.bb[WHITE][0] & pos.bb[BLACK][0]) == 0 && pos.board[64] == 0;
}

}  // namespace vrel
