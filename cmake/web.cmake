# WebAssembly, for browsers and Node. VREL_ONE_THREAD makes the build for hosts without shared memory.
execute_process(COMMAND em-config EMSCRIPTEN_ROOT OUTPUT_VARIABLE emscripten OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
include(${emscripten}/cmake/Modules/Platform/Emscripten.cmake)
