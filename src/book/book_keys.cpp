#include "book/book_keys.h"

#include <array>
#include <bit>
#include <cstddef>

namespace vrel {

static_assert(std::endian::native == std::endian::little, "book records are read and written as they lie in memory");

uint16_t hash1 = 0;
uint32_t hash2 = 0;

namespace {

constexpr size_t HASH_NUMBERS = 772;

// Random numbers of the book's own.
constexpr std::array<uint16_t, HASH_NUMBERS> hasharea = [] {
    std::array<uint16_t, HASH_NUMBERS> numbers{};
    uint32_t x = 77;
    for (uint16_t& number : numbers) {
        x = (x * 33 + 12345) % 65536;
        number = static_cast<uint16_t>(x);
    }
    return numbers;
}();

// Place of a piece type's first number; a black piece stands 64 numbers behind a white one.
constexpr std::array<int, 7> of2 = {0, 0, 128, 256, 384, 512, 640};

// What a piece on a square adds to either hash, by piece code.
struct PieceHash {
    std::array<std::array<uint16_t, 64>, 16> first;
    std::array<std::array<uint32_t, 64>, 16> second;
};

constexpr PieceHash kPieceHash = [] {
    PieceHash hash{};
    for (Side side = WHITE; side <= BLACK; ++side)
        for (int type = PAWN; type <= KING; ++type)
            for (Square sq = 0; sq < 64; ++sq) {
                const int code = PieceCode(side, type);
                const int i = of2[type] + sq + (side == BLACK ? 64 : 0);
                hash.first[code][sq] = hasharea[i];
                hash.second[code][sq] = (static_cast<uint32_t>(hasharea[i + 1]) << 16) + hasharea[i + 2];
            }
    return hash;
}();

}  // namespace

void UpdatePosHash(const Position& pos) {
    hash1 = 0;
    hash2 = 0;
    uint64_t pieces = Occupied(pos);
    while (pieces) {
        const Square sq = PopLSB(&pieces);
        const int code = pos.board[sq];
        if (SideOf(code) == pos.stm)
            hash1 ^= kPieceHash.first[code][sq];
        hash2 ^= kPieceHash.second[code][sq];
    }
    hash2 += pos.ep_square;
}

void FollowPosHash(FollowedGame* game, const Position& pos) {
    const auto count = [game](int code, Square sq) {
        game->first[SideOf(code)] ^= kPieceHash.first[code][sq];
        game->second ^= kPieceHash.second[code][sq];
    };
    // No move leaves a square to its side with another piece on it, so that the sets tell all that has changed. Code 0,
    // the empty square, adds nothing to either hash.
    uint64_t changed = (game->sets[WHITE] ^ pos.bb[WHITE][0]) | (game->sets[BLACK] ^ pos.bb[BLACK][0]);
    game->sets = {pos.bb[WHITE][0], pos.bb[BLACK][0]};
    while (changed) {
        const Square sq = PopLSB(&changed);
        count(game->board[sq], sq);
        count(pos.board[sq], sq);
        game->board[sq] = pos.board[sq];
    }
    hash1 = game->first[pos.stm];
    hash2 = game->second + pos.ep_square;
}

}  // namespace vrel
