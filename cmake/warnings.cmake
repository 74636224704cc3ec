# All warnings are errors, in the engine, the bench and the tests.
add_library(vrel_warnings INTERFACE)
target_compile_options(vrel_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
