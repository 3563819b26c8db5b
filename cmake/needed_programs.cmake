# need_program(<variable> <program> <package> <what for> <how to do without>) and need_file with the path of a file:
# finds what the build or the tests use beside Qt and the compiler. What is missing is told with its Debian package,
# all of it in one run, which then stops. A path that <variable> has already is taken as it is.
function(need_program variable program package purpose otherwise)
    find_program(${variable} ${program} NO_CMAKE_FIND_ROOT_PATH)
    require_path(${variable} ${program} ${package} ${purpose} ${otherwise})
endfunction()

function(need_file variable file package purpose otherwise)
    set(${variable} ${file} CACHE FILEPATH "")
    require_path(${variable} ${file} ${package} ${purpose} ${otherwise})
endfunction()

function(require_path variable name package purpose otherwise)
    mark_as_advanced(${variable})
    if(NOT EXISTS "${${variable}}")
        message(SEND_ERROR
            "${name} is missing, ${purpose}: install the Debian package ${package}, or ${otherwise}.")
    endif()
endfunction()
