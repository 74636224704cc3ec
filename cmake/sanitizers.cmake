# Sanitizers hold for every object of a build, the tests included, and end the program at the first finding.
if(VREL_SANITIZE)
    add_compile_options(-fsanitize=${VREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VREL_SANITIZE})
endif()
