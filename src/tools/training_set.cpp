#include "tools/training_set.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "board/fen.h"
#include "board/keys.h"
#include "platform/file.h"
#include "search/search_thread.h"
#include "tools/epd_file.h"

namespace vrel {

namespace {

// About 250 MB of positions. The text of a position takes 40 bytes and more.
constexpr size_t MOST_POSITIONS = 450000;
constexpr int64_t LARGEST_FILE = 200'000'000;

struct KeptSet {
    std::string name;
    FileStamp stamp;
    uint64_t key = 0;  // any key of the tables: they are drawn anew as a whole
    bool usable = false;
    TrainingSet positions;
};

KeptSet kept;

uint64_t KeyInUse() { return rtable[64]; }

// The side to move stands one place behind the board; without it a position has the side of the one before.
bool TellsSide(const char* line) {
    const char* end = std::strchr(line, ' ');
    return end != nullptr && (end[1] == 'w' || end[1] == 'b');
}

bool ReadPositions(const char* name, TrainingSet* positions) {
    EpdFile file(name);
    if (!file)
        return false;
    std::array<char, EPD_LINE> line;
    while (file.Next(line.data())) {
        if (positions->size() == MOST_POSITIONS || !TellsSide(line.data()))
            return false;
        SetPosition(GamePosition(), line.data());
        positions->push_back({*GamePosition(), ReadTarget(line.data())});
    }
    return true;
}

}  // namespace

const TrainingSet* GetTrainingSet(const char* name) {
    FileStamp stamp;
    if (!ReadFileStamp(name, &stamp) || stamp.size > LARGEST_FILE)
        return nullptr;
    if (kept.name != name || !(kept.stamp == stamp) || kept.key != KeyInUse()) {
        kept = {name, stamp, KeyInUse(), false, {}};
        kept.usable = ReadPositions(name, &kept.positions);
        if (!kept.usable)
            kept.positions = {};
    }
    return kept.usable ? &kept.positions : nullptr;
}

void PlaceOnBoard(const TrainingPosition& entry) {
    SearchThread* game = GetThread(0);
    game->pos = entry.setup;
    game->pos.undo = game->undo.data();
    game->pos.frames = game->frames.data();
    game->undo[0] = {};
    game->undo[1] = {};
}

}  // namespace vrel
