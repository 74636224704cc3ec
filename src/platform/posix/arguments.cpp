#include "platform/arguments.h"

namespace vrel {

// They come as bytes, and file names are bytes here.
char** ArgumentsInUtf8(int* /*argc*/, char** argv) { return argv; }

}  // namespace vrel
