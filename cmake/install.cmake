# What is installed where: the plug-in and the tools, each with its documents. The components are the packages.

# In both packages the documents stand as they do here: docs/ beside examples/.
set(plugin_documents share/doc/libkeyence)
set(tools_documents share/doc/libkeyence-tools)
set(plugin_pages deployment errors faults host-interface troubleshooting user-guide)
set(tools_pages simulator velhost velhost-reference wire-trace)
# The stand-in stays out of the loader's folders, so that no host ever takes it for its own library.
set(tools_libraries lib/libkeyence-tools/vel)

# install_pages(<component> <name>...): the pages, with links into the folder of the other package where that has what
# is linked, and without those to the sources. What only the check of the samples reads is left out.
function(install_pages component)
    foreach(page IN LISTS ARGN)
        file(READ docs/${page}.md text)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS docs/${page}.md)
        string(REGEX REPLACE "<!-- [^\n]* -->\n" "" text "${text}")
        if(component STREQUAL "plugin")
            set(others ${tools_pages})
            set(folder ../../libkeyence-tools)
            string(REPLACE "](../examples/" "](${folder}/examples/" text "${text}")
        else()
            set(others ${plugin_pages})
            set(folder ../../libkeyence)
        endif()
        foreach(other IN LISTS others)
            string(REPLACE "](${other}.md" "](${folder}/docs/${other}.md" text "${text}")
        endforeach()
        string(REGEX REPLACE "\\[([^]]*)\\]\\(\\.\\./(src|vel)/[^)]*\\)" "\\1" text "${text}")
        file(WRITE ${PROJECT_BINARY_DIR}/docs/${page}.md "${text}")
        install(
            FILES ${PROJECT_BINARY_DIR}/docs/${page}.md
            DESTINATION ${${component}_documents}/docs
            COMPONENT ${component})
    endforeach()
endfunction()

install(TARGETS keyence DESTINATION ${KEYENCE_PLUGIN_DIR} COMPONENT plugin)
install_pages(plugin ${plugin_pages})

if(KEYENCE_BUILD_TOOLS)
    set_target_properties(velhost PROPERTIES INSTALL_RPATH "$ORIGIN/../${tools_libraries}")
    install(TARGETS velhost kvsim DESTINATION bin COMPONENT tools)
    install(TARGETS vel LIBRARY DESTINATION ${tools_libraries} COMPONENT tools NAMELINK_SKIP)
    # What is loaded into a host by its path.
    install(TARGETS vel-trace DESTINATION lib/libkeyence-tools COMPONENT tools)
    install_pages(tools ${tools_pages})
    install(FILES docs/plant.schema.json DESTINATION ${tools_documents}/docs COMPONENT tools)
    install(DIRECTORY tools/completion/ DESTINATION share/bash-completion/completions COMPONENT tools)
    # There are none without KEYENCE_BUILD_MAN_PAGES.
    install(
        DIRECTORY ${KEYENCE_MAN_FOLDER}/
        DESTINATION share/man/man1
        COMPONENT tools
        FILES_MATCHING PATTERN "*.1")
    install(DIRECTORY examples DESTINATION ${tools_documents} COMPONENT tools)
endif()
