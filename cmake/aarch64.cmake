# 64-bit ARM Linux, built on another machine. One file without libraries of its own, so that it runs everywhere.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
find_program(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
