# 64-bit Windows, built on another system. One file without libraries of its own.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
find_program(CMAKE_CROSSCOMPILING_EMULATOR wine64 PATHS /usr/lib/wine)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
