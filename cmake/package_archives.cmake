# Makes an archive of what cpack has installed for each component: the same files as in the package.

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} name)
    set(archive ${CPACK_DEBIAN_${name}_PACKAGE_NAME}_${CPACK_PACKAGE_VERSION}_${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
    string(PREPEND archive ${CPACK_TOPLEVEL_DIRECTORY}/)
    execute_process(
        COMMAND find . ! -type d -printf "%P\\n"
        COMMAND env LC_ALL=C sort
        COMMAND tar --create --file=- --files-from=- --owner=root:0 --group=root:0
        COMMAND gzip -9n
        WORKING_DIRECTORY ${CPACK_TEMPORARY_DIRECTORY}/${component}
        OUTPUT_FILE ${archive}.tar.gz
        COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND CPACK_EXTERNAL_BUILT_PACKAGES ${archive}.tar.gz)
endforeach()
