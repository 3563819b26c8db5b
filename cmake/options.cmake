# Every option of the build, in one place. `cmake -LH build/<preset>` shows them with these texts.

include(CMakeDependentOption)

set(VEL_ROOT "" CACHE PATH
    "Folder of the real host framework (include/vel/*.h, lib/libvel.so.1). Empty: build against the \
declarations and the development stand-in in vel/. With a real framework only the plug-in is built, \
because the tools and the tests drive it through the stand-in.")

set(VEL_INTERFACE_PREFIX "org.example.vel.VELInterface" CACHE STRING
    "Reverse-domain part of the plug-in interface identifier, before \"/1.0.7\". It must be the one that \
the host on the gateway asks for.")

set(KEYENCE_PLUGIN_DIR "lib/vel/plugins" CACHE STRING
    "Folder that the host loads its plug-ins from, below the installation prefix, which is /usr in the packages; \
an absolute path stands as it is. The plug-in is installed there, and an installed velhost finds it there.")

cmake_dependent_option(KEYENCE_BUILD_TOOLS
    "Build the development host (velhost) and the simulated controller (kvsim)." ON
    "NOT VEL_ROOT" OFF)

cmake_dependent_option(KEYENCE_BUILD_MAN_PAGES
    "Make the tools' manual pages. Needs help2man." ON
    "KEYENCE_BUILD_TOOLS" OFF)

cmake_dependent_option(KEYENCE_BUILD_TESTS
    "Build the tests. Needs the tools with their manual pages." ON
    "KEYENCE_BUILD_TOOLS" OFF)

option(KEYENCE_WERROR "Treat compiler warnings in our own code as errors." OFF)

option(KEYENCE_SANITIZE
    "Build with AddressSanitizer and UndefinedBehaviorSanitizer; the first finding ends the program." OFF)

cmake_dependent_option(KEYENCE_FUZZ
    "Make programs of libFuzzer of the fuzz targets; the target fuzz-targets builds them. Needs clang." OFF
    "KEYENCE_BUILD_TOOLS;KEYENCE_SANITIZE" OFF)

option(KEYENCE_COVERAGE "Build with line coverage counters (g++ and gcovr)." OFF)

option(KEYENCE_REPRODUCIBLE
    "Leave the folders of the build out of what is built, so that every folder gives the same bytes." OFF)
