#include "interface/pblock.h"

#include <cstring>
#include <new>

namespace vrel {

ControlBlock PBlock;

Relaxed<int> uci_extra{0};
int computer = 2;
int selfplay = 0;

void SetDefaults() {
    PBlock.~ControlBlock();
    new (&PBlock) ControlBlock();
    CopyText(&PBlock.book_file, "vrel.opn");
}

bool CopyText(std::array<char, FILE_NAME>* dest, const char* text) {
    const bool fits = std::strlen(text) < dest->size();
    std::strcpy(dest->data(), fits ? text : "");
    return fits;
}

}  // namespace vrel
