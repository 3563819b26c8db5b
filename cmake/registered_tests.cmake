# require_registered_tests(<files> <registered>): stops when one of the files tst_*.cpp is not among the registered
# ones, because a test that is never built looks just like one that passes. Whole paths are compared: the same name
# in another room is another test.
function(require_registered_tests files registered)
    foreach(file IN LISTS files)
        if(NOT file IN_LIST registered)
            message(FATAL_ERROR "${file} is not registered: add it to the nearest CMakeLists.txt")
        endif()
    endforeach()
endfunction()
