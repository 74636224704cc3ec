# All warnings are errors, in the engine, the bench and the tests. Tables are indexed with the int at hand, which clang
# alone counts among the conversions to warn of. Where memory is addressed with 32 bits, lengths are cut to them that
# come from files and memory of the same world.
add_library(vrel_warnings INTERFACE)
target_compile_options(vrel_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
                       $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
                       $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>:-Wno-shorten-64-to-32>)
