# What is installed where: the plug-in and the tools, each with its documents. The components are the packages.

set(plugin_documents share/doc/libkeyence)
set(tools_documents share/doc/libkeyence-tools)
# The stand-in stays out of the loader's folders, so that no host ever takes it for its own library.
# One folder deeper than usual, or cpack makes a package that has the loader look for libraries anew.
set(tools_libraries lib/libkeyence-tools/vel)

install(TARGETS keyence DESTINATION ${KEYENCE_PLUGIN_DIR} COMPONENT plugin)
install(
    FILES docs/deployment.md docs/errors.md docs/host-interface.md docs/troubleshooting.md docs/user-guide.md
    DESTINATION ${plugin_documents}
    COMPONENT plugin)

if(KEYENCE_BUILD_TOOLS)
    set_target_properties(velhost PROPERTIES INSTALL_RPATH "$ORIGIN/../${tools_libraries}")
    install(TARGETS velhost kvsim DESTINATION bin COMPONENT tools)
    install(TARGETS vel LIBRARY DESTINATION ${tools_libraries} COMPONENT tools NAMELINK_SKIP)
    install(FILES docs/velhost.md docs/simulator.md docs/plant.schema.json DESTINATION ${tools_documents} COMPONENT tools)
    install(DIRECTORY tools/completion/ DESTINATION share/bash-completion/completions COMPONENT tools)
    # Its pages are there when they could be made.
    install(
        DIRECTORY ${KEYENCE_MAN_FOLDER}/
        DESTINATION share/man/man1
        COMPONENT tools
        FILES_MATCHING PATTERN "*.1")
    install(DIRECTORY examples DESTINATION ${tools_documents} COMPONENT tools)
endif()
