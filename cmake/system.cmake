# What depends on the system and its processor: the folder of src/platform/ that serves it, flags and libraries.
if(WIN32)
    set(VREL_SYSTEM windows)
    set(VREL_SYSTEM_LIBRARIES synchronization winmm)
    # Formats and places in files as everywhere else, and a stack as large as other systems give.
    add_compile_definitions(__USE_MINGW_ANSI_STDIO=1 _FILE_OFFSET_BITS=64 UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
    add_link_options(-Wl,--stack,8388608)
elseif(EMSCRIPTEN)
    set(VREL_SYSTEM web)
    # The words of SSE2 are those of WebAssembly under other names.
    set(VREL_PROCESSOR_OPTIONS -msimd128 -msse2 -mbulk-memory -mnontrapping-fptoint -msign-ext)
    add_compile_options(-include ${CMAKE_SOURCE_DIR}/src/platform/web/library.h)
    # A file of code alone, which a script of the engine's own starts and serves. Memory comes from there as well.
    add_link_options(--oformat=bare -Wno-experimental -Wno-pthreads-mem-growth -O2 -sERROR_ON_UNDEFINED_SYMBOLS=0
                     -sFILESYSTEM=0 -sIMPORTED_MEMORY -sALLOW_MEMORY_GROWTH -sINITIAL_MEMORY=8MB -sMAXIMUM_MEMORY=4GB
                     -sTOTAL_STACK=1MB)
    set(CMAKE_EXECUTABLE_SUFFIX .wasm)
    if(NOT VREL_ONE_THREAD)
        add_compile_options(-pthread)
        add_link_options(-pthread)
    endif()
else()
    set(VREL_SYSTEM posix)
endif()
if(NOT EMSCRIPTEN)
    find_package(Threads REQUIRED)
    list(APPEND VREL_SYSTEM_LIBRARIES Threads::Threads)
endif()

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    set(VREL_PROCESSOR_OPTIONS -mpopcnt)
    if(NOT WIN32)
        # Code for a fixed address reaches its tables without computing where they are.
        string(APPEND CMAKE_CXX_FLAGS_RELEASE " -fno-pie")
        string(APPEND CMAKE_EXE_LINKER_FLAGS_RELEASE " -no-pie")
    endif()
endif()
