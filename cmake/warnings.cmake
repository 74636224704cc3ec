# All warnings are errors, in the engine, the bench and the tests. Tables are indexed with the int at hand, which clang
# alone counts among the conversions to warn of.
add_library(vrel_warnings INTERFACE)
target_compile_options(vrel_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
                       $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)
