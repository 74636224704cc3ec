#include "book/book_folder.h"

#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>

#include "board/fen.h"
#include "book/book_lookup.h"
#include "interface/pblock.h"

namespace vrel {
namespace {

std::vector<uint32_t> HashNumbers() {
    std::vector<uint32_t> numbers;
    for (uint32_t x = 77; numbers.size() < 772;)
        numbers.push_back(x = (x * 33 + 12345) % 65536);
    return numbers;
}

}  // namespace

BookRecord RecordOf(const BookEntry& entry) {
    static const std::vector<uint32_t> numbers = HashNumbers();
    oracle::Board board;
    EXPECT_TRUE(oracle::ReadFen(entry.fen, &board)) << entry.fen;
    uint32_t first = 0;
    uint32_t second = 0;
    for (size_t sq = 0; sq < 64; ++sq) {
        const char piece = board.squares[sq];
        if (piece == '.')
            continue;
        const size_t type = std::string("pnbrqk").find(static_cast<char>(std::tolower(piece)));
        const size_t i = type * 128 + sq + (oracle::IsBlack(piece) ? 64 : 0);
        if (oracle::IsWhite(piece) == board.white_to_move)
            first ^= numbers[i];
        second ^= numbers[i + 1] * 65536 + numbers[i + 2];
    }
    second += board.en_passant == oracle::NOWHERE ? 64 : static_cast<uint32_t>(board.en_passant);
    const uint32_t key = first % 32768 + (board.white_to_move ? 32768 : 0);
    return {static_cast<uint16_t>(key),
            static_cast<uint16_t>(second % 65536),
            static_cast<uint16_t>(second / 65536),
            static_cast<uint16_t>(entry.wins),
            static_cast<uint16_t>(entry.losses),
            static_cast<uint16_t>(entry.draws),
            0};
}

std::ostream& operator<<(std::ostream& out, const PlainRecord& r) {
    return out << std::hex << r.key << ":" << r.second << std::dec << " " << r.wins << "-" << r.losses << "-" << r.draws
               << "/" << r.reserved;
}

PlainRecord Plain(const BookRecord& r) {
    return {r.key, static_cast<uint32_t>(r.hash2_high) * 65536 + r.hash2_low, r.wins, r.losses, r.draws, r.reserved};
}

std::vector<PlainRecord> PlainAll(const std::vector<BookRecord>& records) {
    std::vector<PlainRecord> plain;
    for (const BookRecord& record : records)
        plain.push_back(Plain(record));
    return plain;
}

std::vector<BookRecord> SortedRecords(std::vector<BookRecord> records) {
    std::sort(records.begin(), records.end(), [](const BookRecord& a, const BookRecord& b) {
        return std::pair(Plain(a).key, Plain(a).second) > std::pair(Plain(b).key, Plain(b).second);
    });
    return records;
}

std::vector<BookRecord> RecordsOf(const std::vector<BookEntry>& entries) {
    std::vector<BookRecord> records;
    for (const BookEntry& entry : entries)
        records.push_back(RecordOf(entry));
    return SortedRecords(records);
}

std::string ReadBytes(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void WriteBytes(const std::string& name, const std::string& bytes) { std::ofstream(name, std::ios::binary) << bytes; }

std::vector<BookRecord> ReadRecords(const std::string& name) {
    const std::string bytes = ReadBytes(name);
    EXPECT_EQ(bytes.size() % 14, 0U) << name;
    std::vector<BookRecord> records(bytes.size() / 14);
    if (!records.empty())
        std::memcpy(records.data(), bytes.data(), records.size() * 14);
    return records;
}

void WriteRecords(const std::string& name, const std::vector<BookRecord>& records) {
    std::string bytes;
    for (const BookRecord& record : records)
        for (const unsigned field : {record.key, record.hash2_low, record.hash2_high, record.wins, record.losses,
                                     record.draws, record.reserved}) {
            bytes += static_cast<char>(field % 256);
            bytes += static_cast<char>(field / 256);
        }
    WriteBytes(name, bytes);
}

FullDisk::FullDisk(size_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit_ = limit.rlim_cur;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

FullDisk::~FullDisk() {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = limit_;
    setrlimit(RLIMIT_FSIZE, &limit);
}

void BookTest::SetUp() {
    home_ = std::filesystem::current_path();
    std::string pattern = std::filesystem::temp_directory_path() / "vrel-book-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    std::filesystem::current_path(folder_);
    SetDefaults();
    PBlock.log = 0;
    PBlock.mode = MODE_CONSOLE;
    SetPosition(GamePosition(), fen_opn);
    InitBook();
}

void BookTest::TearDown() {
    KillBook();
    SetDefaults();
    std::filesystem::current_path(home_);
    std::filesystem::remove_all(folder_);
}

}  // namespace vrel
