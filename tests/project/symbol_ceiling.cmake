# Stops when the library FILE needs a symbol version above the CEILING. READELF is the program.
cmake_minimum_required(VERSION 3.22)

execute_process(COMMAND ${READELF} -V ${FILE} OUTPUT_VARIABLE versions COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "Name: [^ ]+ " needs "${versions}")
if(NOT needs)
    message(FATAL_ERROR "${FILE} needs no symbol version: it cannot be the plug-in")
endif()

file(STRINGS ${CEILING} lines REGEX "^[^#]")
foreach(line IN LISTS lines)
    string(REPLACE " " ";" line ${line})
    list(GET line 0 family)
    list(GET line 1 ceiling_${family})
endforeach()

foreach(need IN LISTS needs)
    if(NOT need MATCHES "^Name: (.+)_([0-9.]+) $")
        message(SEND_ERROR "${FILE} needs the symbol version \"${need}\", which is in no family")
        continue()
    endif()
    set(ceiling "${ceiling_${CMAKE_MATCH_1}}")
    if(NOT ceiling OR CMAKE_MATCH_2 VERSION_GREATER ceiling)
        message(SEND_ERROR
            "${FILE} needs ${CMAKE_MATCH_1}_${CMAKE_MATCH_2}, but ${CEILING} allows up to \"${ceiling}\"")
    endif()
endforeach()
