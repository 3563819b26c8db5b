# The guard against unregistered tests must let a complete list pass and stop at a missing name.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/../cmake/registered_tests.cmake)

if(DEFINED FILES)
    require_registered_tests("${FILES}" "${NAMES}")
    return()
endif()

function(run_guard names result_variable message_variable)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -DFILES=tst_one.cpp\;tst_two.cpp -DNAMES=${names}
            -P ${CMAKE_CURRENT_LIST_FILE}
        RESULT_VARIABLE result
        ERROR_VARIABLE message)
    set(${result_variable} ${result} PARENT_SCOPE)
    set(${message_variable} "${message}" PARENT_SCOPE)
endfunction()

run_guard("tst_one\\;tst_two" result message)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "A complete list does not pass: ${message}")
endif()

run_guard("tst_one" result message)
if(result EQUAL 0 OR NOT message MATCHES "tst_two is not registered")
    message(FATAL_ERROR "A missing name is not noticed: ${message}")
endif()
