#pragma once

#include "eval/personality.h"

namespace vrel {

// Changes `record` as the lines "NAME VALUE" of a file say, with the names of the console's `tune` and `set`, and
// shows each change. Empty lines and what follows a "#" are passed over; no file changes nothing. False, with a message
// that names the line, if something in the file can't be carried out.
bool ReadPlayerFile(const char* file, PersonalityRecord* record);

}  // namespace vrel
