# check_headers(<target>): compiles every header of <target>'s folder on its own, with the target's own
# libraries and include folders, as part of the ordinary build. A header that only compiles after another
# one breaks here and not in its next user's file.
function(check_headers target)
    if(NOT KEYENCE_CHECK_HEADERS)
        return()
    endif()
    get_target_property(folder ${target} SOURCE_DIR)
    file(GLOB_RECURSE headers RELATIVE ${folder} CONFIGURE_DEPENDS ${folder}/*.h)
    set(sources)
    foreach(header IN LISTS headers)
        string(REPLACE "/" "_" name ${header})
        set(source ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp)
        file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${folder}/${header}\"\n" @ONLY)
        list(APPEND sources ${source})
    endforeach()
    add_library(${target}-headers OBJECT ${sources})
    target_link_libraries(${target}-headers PRIVATE ${target} keyence-options)
endfunction()
