#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "board/position.h"
#include "platform/file.h"

// Files of positions, one a line, with EPD operations behind the four fields of the position.
namespace vrel {

// Room for the part of a line that is used, its closing NUL included.
inline constexpr int EPD_LINE = 254;

// The lines of a file that hold positions, one after the other. Lines that begin with a blank, "#" or ";" and very
// short ones are passed over.
class EpdFile {
public:
    explicit EpdFile(File file) : file_(std::move(file)) {}

    // True if the file couldn't be read to its end.
    bool Failed() const { return file_.Failed(); }

    explicit operator bool() const { return static_cast<bool>(file_); }

    // Reads the next position's line, without its end, into `line`, which has room for EPD_LINE characters; what is
    // longer is cut, and a NUL becomes a blank. False at the end of the file.
    bool Next(char* line);

    // Bytes of the file, and of those how many Next has been through; -1 where that can't be told.
    int64_t Size() { return file_.Size(); }
    int64_t Place() { return file_.Place() - static_cast<int64_t>(filled_ - next_); }

private:
    bool ReadWholeLine(char* line, int* length);
    bool Fill();

    File file_;
    std::array<char, 16384> buffer_;  // read ahead: places next_ to filled_
    size_t next_ = 0;
    size_t filled_ = 0;
};

// Operand of "tune": the result expected for the side to move, 0 to 1. 0.5 without the operation, 0 if the operand is
// no number.
double ReadTarget(const char* line);

// Operand of "bm" as a move of the game record, which holds the position of the line. 0 without the operation, or if
// its operand isn't exactly one legal move.
Move ReadBestMove(const char* line);

// Creates a file of a fixed name for writing. `input`, open already and read meanwhile, may be a file of the same name:
// it then keeps its contents for its reader. The result is false if the file can't be created.
File CreateOutput(const char* name, const char* input);

}  // namespace vrel
