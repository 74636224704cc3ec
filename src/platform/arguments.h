#pragma once

namespace vrel {

// The words of the command line in UTF-8, `argc` of them, for the whole life of the program. Takes what main was given.
char** ArgumentsInUtf8(int* argc, char** argv);

}  // namespace vrel
