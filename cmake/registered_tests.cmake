# require_registered_tests(<files> <names>): stops when one of the files tst_*.cpp is not among the names,
# because a test that is never built looks just like one that passes.
function(require_registered_tests files names)
    foreach(file IN LISTS files)
        get_filename_component(name ${file} NAME_WE)
        if(NOT name IN_LIST names)
            message(FATAL_ERROR "${name} is not registered: add it to tests/CMakeLists.txt")
        endif()
    endforeach()
endfunction()
