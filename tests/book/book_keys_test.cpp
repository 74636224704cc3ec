#include "book/book_keys.h"

#include "book/book_folder.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using BookKeysTest = EngineTest;

TEST_F(BookKeysTest, KnownPositions) {
    const struct {
        const char* fen;
        uint16_t key;
        uint32_t second;
    } rows[] = {
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 0xc360, 0xe1204640},
        {"rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3", 0x1360, 0x90b064a4},
        {"4k3/8/8/8/8/8/8/4K3 w - -", 0x9f4a, 0xf0389a08},
        {"4k3/8/8/8/8/8/8/4K3 b - -", 0x0882, 0xf0389a08},
        {"8/8/8/8/8/8/8/8 w - -", 0x8000, 64},
    };
    for (const auto& row : rows) {
        const TestPosition pos(row.fen);
        UpdatePosHash(*pos);
        EXPECT_EQ(BookKey(pos->stm), row.key) << row.fen;
        EXPECT_EQ(hash2, row.second) << row.fen;
    }
}

TEST_F(BookKeysTest, EqualThoseFromTheTextOfThePosition) {
    std::vector<std::string> fens = RandomPositions(300, 9);
    for (const NamedPosition& p : kTrickyPositions)
        fens.emplace_back(p.fen);
    for (const std::string& fen : fens) {
        const TestPosition pos(fen);
        UpdatePosHash(*pos);
        const PlainRecord expected = Plain(RecordOf({fen, 0, 0, 0}));
        EXPECT_EQ(BookKey(pos->stm), expected.key) << fen;
        EXPECT_EQ(hash2, expected.second) << fen;
    }
}

TEST_F(BookKeysTest, CastlingRightsDoNotMatter) {
    EXPECT_EQ(Plain(RecordOf({"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", 0, 0, 0})),
              Plain(RecordOf({"r3k2r/8/8/8/8/8/8/R3K2R w - -", 0, 0, 0})));
    const TestPosition with("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    const TestPosition without("r3k2r/8/8/8/8/8/8/R3K2R w Qk -");
    UpdatePosHash(*with);
    const auto hashes = std::pair(hash1, hash2);
    UpdatePosHash(*without);
    EXPECT_EQ(hashes, std::pair(hash1, hash2));
}

TEST_F(BookKeysTest, OrderIsByKeyThenBySecondHash) {
    EXPECT_GT(BookOrder(2, 0), BookOrder(1, 0xffffffff));
    EXPECT_GT(BookOrder(1, 0x80000000), BookOrder(1, 0x7fffffff));
    EXPECT_EQ(BookOrder(BookRecord{0x8001, 0x5678, 0x1234, 1, 2, 3, 0}), BookOrder(0x8001, 0x12345678));
}

}  // namespace
}  // namespace vrel
