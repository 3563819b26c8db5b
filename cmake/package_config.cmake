# What cpack reads before it makes the packages of one kind.

# The time that stands in the packages is the one of the newest commit, so that it is the same in every run.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND git log -1 --format=%ct
        WORKING_DIRECTORY ${CPACK_KEYENCE_SOURCE_DIR}
        OUTPUT_VARIABLE time
        OUTPUT_STRIP_TRAILING_WHITESPACE
        RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "The sources are no clone: give their time, in seconds since 1970, as SOURCE_DATE_EPOCH")
    endif()
    set(ENV{SOURCE_DATE_EPOCH} ${time})
endif()

if(NOT CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
    execute_process(COMMAND dpkg --print-architecture
        OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
endif()
# dpkg-shlibdeps finds the needed packages for this architecture, in the database of the system that was built for.
set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
if(CPACK_KEYENCE_SYSROOT)
    set(ENV{DPKG_ADMINDIR} ${CPACK_KEYENCE_SYSROOT}/var/lib/dpkg)
endif()

# The archives are for machines without dpkg, which is not where a core file is looked at.
if(CPACK_GENERATOR STREQUAL "External")
    list(FILTER CPACK_COMPONENTS_ALL EXCLUDE REGEX "-debug$")
endif()
