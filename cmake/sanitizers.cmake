# Sanitizers hold for every object of a build, the tests included, and end the program at the first finding.
if(VREL_SANITIZE)
    add_compile_options(-fsanitize=${VREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    # A number too large for its type counts as undefined behaviour, but isn't among what "undefined" watches.
    if(VREL_SANITIZE MATCHES undefined)
        add_compile_options(-fsanitize=float-cast-overflow)
    endif()
    # GCC sees uninitialised values in instrumented code of its own library.
    add_compile_options(-Wno-maybe-uninitialized)
    add_link_options(-fsanitize=${VREL_SANITIZE})
endif()

# The fuzzer watches which branches an input takes, and both sanitizers stand behind it.
if(VREL_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined,float-cast-overflow -fno-sanitize-recover=all -g)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    add_link_options(-fsanitize=address,undefined)
endif()
