#include "interface/pgn_lines.h"

#include <algorithm>
#include <cstring>

#include "interface/messages.h"

namespace vrel {

namespace {

constexpr size_t LONGEST_WITH_END = LONGEST_PGN_LINE + 2;

}  // namespace

// Moves what is left to the front of the block and fills it up behind.
void PgnLines::Refill() {
    std::memmove(block_.data(), block_.data() + at_, filled_ - at_);
    filled_ -= at_;
    at_ = 0;
    const size_t room = block_.size() - filled_;
    const size_t count = file_->Read(block_.data() + filled_, room);
    filled_ += count;
    if (progress_.IsDue())
        progress_.Show(file_->Place());
    ended_ = count < room;
    if (file_->Failed() && name_ != nullptr)
        Complain("%s: %s", name_, FileTrouble());
    if (!started_)
        LookAtStart();
}

void PgnLines::LookAtStart() {
    started_ = true;
    const std::string_view start(block_.data(), filled_);
    if (start.starts_with("\xef\xbb\xbf"))
        at_ = 3;
    // UTF-16 begins with a mark of its own or, as text in Latin letters, has one zero byte in two.
    const auto zero_at = [start](size_t place) { return start[place] == '\0'; };
    const bool utf16 =
        start.starts_with("\xff\xfe") || start.starts_with("\xfe\xff") ||
        (start.size() >= 4 && zero_at(0) != zero_at(1) && zero_at(0) == zero_at(2) && zero_at(1) == zero_at(3));
    if (utf16 && name_ != nullptr)
        Complain("%s: text in UTF-16 can't be read, only in UTF-8 or ASCII", name_);
}

// The LF of the line at hand; null if its length or the end of the block comes first.
const char* PgnLines::FindEnd() const {
    const size_t window = std::min(filled_ - at_, LONGEST_WITH_END);
    return static_cast<const char*>(std::memchr(block_.data() + at_, '\n', window));
}

bool PgnLines::Next() {
    const char* end = FindEnd();
    if (end == nullptr && !ended_ && filled_ - at_ < LONGEST_WITH_END) {
        Refill();
        end = FindEnd();
    }
    if (at_ == filled_)
        return false;
    const char* begin = block_.data() + at_;
    const size_t with_end = end != nullptr ? end - begin + 1 : filled_ - at_;
    size_t length = end != nullptr ? with_end - 1 : with_end;
    if (end != nullptr && length > 0 && begin[length - 1] == '\r')
        --length;
    const bool whole = length <= LONGEST_PGN_LINE;
    TakeLine(std::min(length, LONGEST_PGN_LINE));
    at_ += whole ? with_end : LONGEST_PGN_LINE;
    return true;
}

void PgnLines::TakeLine(size_t length) {
    char* begin = block_.data() + at_;
    text_ = std::string_view(begin, length);
    changed_ = text_.find('\t') != std::string_view::npos;
    if (changed_) {
        original_ = text_;
        std::replace(begin, begin + length, '\t', ' ');
    }
}

}  // namespace vrel
