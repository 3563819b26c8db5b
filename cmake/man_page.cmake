# add_man_page(<program> <what it is>): makes <program>.1 from what the program prints for --help, so that the two
# cannot differ.
if(KEYENCE_BUILD_MAN_PAGES)
    need_program(HELP2MAN help2man help2man "which makes the manual pages"
        "leave them out with -DKEYENCE_BUILD_MAN_PAGES=OFF -DKEYENCE_BUILD_TESTS=OFF")
    if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
        message(SEND_ERROR "The manual pages are made of what the programs say: name an emulator that runs them with "
            "-DCMAKE_CROSSCOMPILING_EMULATOR=COMMAND, or leave the pages out with -DKEYENCE_BUILD_MAN_PAGES=OFF "
            "-DKEYENCE_BUILD_TESTS=OFF.")
    endif()
endif()

set(KEYENCE_MAN_FOLDER ${PROJECT_BINARY_DIR}/man CACHE INTERNAL "")

function(add_man_page program description)
    if(NOT KEYENCE_BUILD_MAN_PAGES)
        return()
    endif()
    set(page ${KEYENCE_MAN_FOLDER}/${program}.1)
    set(help ${CMAKE_CURRENT_BINARY_DIR}/${program}-help.txt)
    # What help2man asks instead of the program, which may be one for another processor.
    set(speaker ${CMAKE_CURRENT_BINARY_DIR}/man/${program})
    file(CONFIGURE OUTPUT ${speaker} CONTENT
        "#!/bin/sh\nexec sed 's/^Exit status:$/*Exit status*/' '${help}'\n" @ONLY)
    file(CHMOD ${speaker} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    add_custom_command(OUTPUT ${page}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${KEYENCE_MAN_FOLDER}
        COMMAND ${program} --help > ${help}
        COMMAND ${HELP2MAN} --no-info --section=1 --version-string=${PROJECT_VERSION}
            --name=${description} --output=${page} ${speaker}
        # The month in which the page is made says nothing of the program, and would change the packages.
        COMMAND sed -i [[/^\.TH /s/ "[^ "]* [0-9]*" / "" /]] ${page}
        DEPENDS ${program}
        VERBATIM)
    add_custom_target(${program}-man ALL DEPENDS ${page})
endfunction()
