#include "search/search_control.h"

namespace vrel {

void (*poll_input)() = [] {};

}  // namespace vrel
