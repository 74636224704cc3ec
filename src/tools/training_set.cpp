#include "tools/training_set.h"

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "board/fen.h"
#include "board/keys.h"
#include "board/search_thread.h"
#include "platform/file.h"
#include "search/thread_pool.h"
#include "tools/epd_file.h"

namespace vrel {

namespace {

// About 250 MB of positions. The text of a position takes 40 bytes and more.
constexpr size_t MOST_POSITIONS = 450000;
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
    EpdFile file(name);
    if (!file)
        return nullptr;
    auto set = std::make_shared<TrainingSet>();
    set->key = KeyTablesInUse();
    std::array<char, EPD_LINE> line;
    while (file.Next(line.data())) {
        if (set->positions.size() == MOST_POSITIONS || !TellsSide(line.data()))
            return nullptr;
        SetPosition(GamePosition(), line.data());
        set->positions.push_back({*GamePosition(), ReadTarget(line.data())});
    }
    return set;
}

}  // namespace

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
    if (set.key != KeyTablesInUse())
        SetHash(&game->pos);
}

}  // namespace vrel
