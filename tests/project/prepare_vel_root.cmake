# Lays out HEADERS, INTERFACE_ID and LIBRARY in the folder ROOT as a host framework is expected to be.
file(REMOVE_RECURSE ${ROOT})
file(COPY ${HEADERS} DESTINATION ${ROOT}/include FILES_MATCHING PATTERN "*.h")
file(COPY ${INTERFACE_ID} DESTINATION ${ROOT}/include/vel)
file(COPY ${LIBRARY} DESTINATION ${ROOT}/lib FOLLOW_SYMLINK_CHAIN)
