# require_registered_tests(<folder> <names>): stops when a tst_*.cpp in the folder is not among the names,
# because a test that is never built looks just like one that passes.
function(require_registered_tests folder names)
    file(GLOB on_disk RELATIVE ${folder} CONFIGURE_DEPENDS ${folder}/tst_*.cpp)
    foreach(file IN LISTS on_disk)
        string(REGEX REPLACE "\\.cpp$" "" name ${file})
        if(NOT name IN_LIST names)
            message(FATAL_ERROR "${folder}/${file} is not registered: add it to CMakeLists.txt there.")
        endif()
    endforeach()
endfunction()
