#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "interface/progress.h"
#include "platform/file.h"

// The lines of a PGN file, read in blocks. A line ends at LF, and a CR in front of it belongs to the end; a byte order
// mark at the start of the file is passed over. Whatever the file holds, only a block of it is in memory.
namespace vrel {

// Characters of a line without its end; what is beyond them is another line.
inline constexpr size_t LONGEST_PGN_LINE = 65535;

class PgnLines {
public:
    // Reads from the place where the file stands, which is its start. If it can't be read to its end, or isn't text
    // that a reader of PGN understands, a word on standard error names it; null for no such word.
    PgnLines(File* file, const char* name)
        : file_(file), name_(name), progress_("bytes", file->Size()), block_(2 * (LONGEST_PGN_LINE + 1)) {}

    // Goes to the next line. False at the end of the file.
    bool Next();

    // The line without its end, each tab made a blank; and as it stands in the file. Both hold until the next call.
    std::string_view text() const { return text_; }
    std::string_view as_it_stands() const { return changed_ ? original_ : text_; }

private:
    void Refill();
    void LookAtStart();
    const char* FindEnd() const;
    void TakeLine(size_t length);

    File* file_;
    const char* name_;
    Progress progress_;
    std::vector<char> block_;  // places at_ to filled_ haven't been read yet
    size_t at_ = 0;
    size_t filled_ = 0;
    bool started_ = false;
    bool ended_ = false;  // nothing comes behind the block
    std::string_view text_;
    std::string original_;
    bool changed_ = false;  // the original differs from the text
};

}  // namespace vrel
