# Profile-guided build: "generate" makes programs that write a profile beside their objects, "use" compiles with it.
# Both have to happen in one build folder; scripts/release does.
set(VREL_PROFILE_OPTIONS "")
if(VREL_PROFILE STREQUAL "generate")
    set(VREL_PROFILE_OPTIONS -fprofile-generate -fprofile-update=single)
elseif(VREL_PROFILE STREQUAL "use")
    # Code that the training doesn't reach has no profile and is compiled as without one.
    set(VREL_PROFILE_OPTIONS -fprofile-use -fprofile-partial-training -Wno-missing-profile)
elseif(VREL_PROFILE)
    message(FATAL_ERROR "VREL_PROFILE is empty, generate or use")
endif()
