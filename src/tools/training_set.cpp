#include "tools/training_set.h"

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "board/fen.h"
#include "board/keys.h"
#include "board/search_thread.h"
#include "platform/file.h"
#include "search/thread_pool.h"
#include "tools/epd_file.h"

namespace vrel {

namespace {

// The text of a position takes 40 bytes and more.
constexpr int64_t LARGEST_FILE = 200'000'000;

struct KeptSet {
    std::string name;
    FileStamp stamp;
    uint64_t key = 0;
    std::shared_ptr<const TrainingSet> set;  // null if this state of the file can't be kept
};

KeptSet kept;

// The side to move stands one place behind the board; without it a position has the side of the one before.
bool TellsSide(const char* line) {
    const char* end = std::strchr(line, ' ');
    return end != nullptr && (end[1] == 'w' || end[1] == 'b');
}

std::shared_ptr<const TrainingSet> ReadSet(const char* name) {
    EpdFile file(OpenOwnFile(name, "r"));
    if (!file)
        return nullptr;
    // What a set takes must leave some memory for others.
    const std::unique_ptr<TrainingSet::Block> reserve(new (std::nothrow) TrainingSet::Block);
    auto set = std::make_shared<TrainingSet>(KeyTablesInUse());
    std::array<char, EPD_LINE> line;
    while (file.Next(line.data())) {
        if (!TellsSide(line.data()))
            return nullptr;
        SetPosition(GamePosition(), line.data());
        if (!set->Add({*GamePosition(), ReadTarget(line.data())}))
            return nullptr;
    }
    return file.Failed() ? nullptr : set;
}

}  // namespace

bool TrainingSet::Add(const TrainingPosition& entry) {
    const size_t number = size_ / BLOCK;
    if (size_ % BLOCK == 0) {
        if (number == BLOCKS)
            return false;
        blocks_[number].reset(new (std::nothrow) Block);
        if (blocks_[number] == nullptr)
            return false;
    }
    (*blocks_[number])[size_++ % BLOCK] = entry;
    return true;
}

std::shared_ptr<const TrainingSet> GetTrainingSet(const char* name) {
    FileStamp stamp;
    if (!ReadFileStamp(name, &stamp) || stamp.size > LARGEST_FILE)
        return nullptr;
    if (kept.name != name || !(kept.stamp == stamp) || kept.key != KeyTablesInUse()) {
        kept.set = nullptr;  // its memory serves the new one
        kept = {name, stamp, KeyTablesInUse(), ReadSet(name)};
    }
    return kept.set;
}

void PlaceOnBoard(const TrainingSet& set, const TrainingPosition& entry) {
    assert(WorkersIdle());
    SearchThread* game = GetThread(0);
    game->pos = entry.setup;
    game->pos.undo = game->undo.data();
    game->pos.frames = game->frames.data();
    game->undo[0] = {};
    game->undo[1] = {};
    if (set.key() != KeyTablesInUse())
        SetHash(&game->pos);
}

}  // namespace vrel
