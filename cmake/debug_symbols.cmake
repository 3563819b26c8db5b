# Writes the debug symbols of `files`, which `package` installs, to where a debugger looks for them.

set(root $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX})
foreach(file IN LISTS files)
    execute_process(COMMAND ${readelf} --notes ${file}
        OUTPUT_VARIABLE notes
        COMMAND_ERROR_IS_FATAL ANY)
    if(NOT notes MATCHES "Build ID: (..)([0-9a-f]+)")
        message(FATAL_ERROR "${file} has no build ID, by which its debug symbols would be found")
    endif()
    set(symbols ${root}/lib/debug/.build-id/${CMAKE_MATCH_1}/${CMAKE_MATCH_2}.debug)
    cmake_path(GET symbols PARENT_PATH folder)
    file(MAKE_DIRECTORY ${folder})
    execute_process(COMMAND ${objcopy} --only-keep-debug --compress-debug-sections ${file} ${symbols}
        COMMAND_ERROR_IS_FATAL ANY)
    file(CHMOD ${symbols} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
file(MAKE_DIRECTORY ${root}/share/doc)
file(CREATE_LINK ${package} ${root}/share/doc/${package}-dbgsym SYMBOLIC)
