# How cpack makes packages of what is installed: the plug-in, the tools, and for each of them its debug symbols.

# cpack's own archives have folders, which would change those that are there already, and the owner that made them.
set(CPACK_GENERATOR DEB External)
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/package_archives.cmake)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
# Otherwise a plug-in folder with an absolute path would lie outside of the package.
set(CPACK_SET_DESTDIR ON)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/package_config.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package_stage.cmake)
# Each package has its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT "libkeyence maintainers <libkeyence@example.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SOURCE ${PROJECT_NAME})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# The host's library belongs to no package; this is where it lies while the packages are made.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
if(VEL_ROOT)
    cmake_path(GET VEL_LIBRARY PARENT_PATH CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS)
endif()
if(CMAKE_CROSSCOMPILING)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
        ${CMAKE_SYSROOT}/lib/${CMAKE_LIBRARY_ARCHITECTURE} ${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
# For the scripts.
set(CPACK_KEYENCE_SOURCE_DIR ${PROJECT_SOURCE_DIR})
set(CPACK_KEYENCE_SYSROOT ${CMAKE_SYSROOT})

# add_package(<component> <package> <description> <target>...): the package of a component, and the one of its
# targets' debug symbols.
function(add_package component package description)
    set(files)
    foreach(target IN LISTS ARGN)
        list(APPEND files $<TARGET_FILE:${target}>)
    endforeach()
    install(FILES packaging/copyright DESTINATION share/doc/${package} COMPONENT ${component})
    set(variables
        "set(package ${package})\nset(version ${PROJECT_VERSION})\nset(maintainer \"${CPACK_PACKAGE_CONTACT}\")
set(changes ${PROJECT_SOURCE_DIR}/CHANGELOG.md)\nset(files \"${files}\")
set(readelf ${CMAKE_READELF})\nset(objcopy ${CMAKE_OBJCOPY})")
    install(CODE "${variables}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(SCRIPT cmake/debian_documents.cmake COMPONENT ${component} EXCLUDE_FROM_ALL)
    # Their own component, because what cpack makes of debug symbols by itself names the folder of the build.
    install(CODE "${variables}" COMPONENT ${component}-debug EXCLUDE_FROM_ALL)
    install(SCRIPT cmake/debug_symbols.cmake COMPONENT ${component}-debug EXCLUDE_FROM_ALL)

    string(TOUPPER ${component} name)
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} ${component}-debug PARENT_SCOPE)
    set(CPACK_DEBIAN_${name}_PACKAGE_NAME ${package} PARENT_SCOPE)
    set(CPACK_DEBIAN_${name}_DESCRIPTION "${description}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${name}_PACKAGE_SHLIBDEPS ON PARENT_SCOPE)
    set(CPACK_DEBIAN_${name}-DEBUG_PACKAGE_NAME ${package}-dbgsym PARENT_SCOPE)
    set(CPACK_DEBIAN_${name}-DEBUG_PACKAGE_SECTION debug PARENT_SCOPE)
    set(CPACK_DEBIAN_${name}-DEBUG_PACKAGE_DEPENDS "${package} (= ${PROJECT_VERSION})" PARENT_SCOPE)
    set(CPACK_DEBIAN_${name}-DEBUG_DESCRIPTION "debug symbols for ${package}" PARENT_SCOPE)
endfunction()

add_package(plugin libkeyence
    "VEL device driver for KV-series controllers
The plug-in libkeyence.so for the VEL data-collection host. It reads and
writes data items on KV-series controllers over their Host Link protocol on
TCP. The host brings its own library, libvel.so.1."
    keyence)

if(KEYENCE_BUILD_TOOLS)
    add_package(tools libkeyence-tools
        "development host and simulated KV-series controller
velhost loads the plug-in of the package libkeyence as the VEL host does, on
the command line. kvsim is a simulated controller. Both are for development
and for finding out why a value does not arrive."
        velhost kvsim vel)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS libkeyence)
    install(
        FILES packaging/libkeyence-tools.lintian-overrides
        DESTINATION share/lintian/overrides
        RENAME libkeyence-tools
        COMPONENT tools)
endif()

include(CPack)
