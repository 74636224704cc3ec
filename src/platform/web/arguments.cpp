#include "platform/arguments.h"

namespace vrel {

// The host hands them over as bytes.
char** ArgumentsInUtf8(int* /*argc*/, char** argv) { return argv; }

}  // namespace vrel
