# The guard against unregistered tests must let a complete list pass and stop at a missing file.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/registered_tests.cmake)

if(DEFINED FILES)
    require_registered_tests("${FILES}" "${REGISTERED}")
    return()
endif()

function(run_guard registered result_variable message_variable)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -DFILES=/a/tst_one.cpp\;/a/b/tst_two.cpp -DREGISTERED=${registered}
            -P ${CMAKE_CURRENT_LIST_FILE}
        RESULT_VARIABLE result
        ERROR_VARIABLE message)
    set(${result_variable} ${result} PARENT_SCOPE)
    set(${message_variable} "${message}" PARENT_SCOPE)
endfunction()

run_guard("/a/b/tst_two.cpp\\;/a/tst_one.cpp" result message)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "A complete list does not pass: ${message}")
endif()

foreach(registered /a/tst_one.cpp /a/tst_one.cpp\\;/a/tst_two.cpp)
    run_guard("${registered}" result message)
    if(result EQUAL 0 OR NOT message MATCHES "/a/b/tst_two.cpp is not registered")
        message(FATAL_ERROR "A missing file is not noticed beside ${registered}: ${message}")
    endif()
endforeach()
