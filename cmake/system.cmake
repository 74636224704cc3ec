# What depends on the system and its processor: the folder of src/platform/ that serves it, flags and libraries.
if(WIN32)
    set(VREL_SYSTEM windows)
    set(VREL_SYSTEM_LIBRARIES synchronization winmm)
    # Formats and places in files as everywhere else, and a stack as large as other systems give.
    add_compile_definitions(__USE_MINGW_ANSI_STDIO=1 _FILE_OFFSET_BITS=64 UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
    add_link_options(-Wl,--stack,8388608)
else()
    set(VREL_SYSTEM posix)
endif()

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    set(VREL_PROCESSOR_OPTIONS -mpopcnt)
    if(NOT WIN32)
        # Code for a fixed address reaches its tables without computing where they are.
        string(APPEND CMAKE_CXX_FLAGS_RELEASE " -fno-pie")
        string(APPEND CMAKE_EXE_LINKER_FLAGS_RELEASE " -no-pie")
    endif()
endif()
