# check_headers(<target> [<base>]): has every header of this folder compiled alone, with what <target> gives to those
# who link it, where CMAKE_VERIFY_INTERFACE_HEADER_SETS is on. A header that only compiles after another one breaks
# there and not in its next user's file. Below <base>, default this folder, is what is named when one is included.
function(check_headers target)
    set(base ${CMAKE_CURRENT_SOURCE_DIR} ${ARGN})
    list(GET base -1 base)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS *.h)
    target_sources(${target} INTERFACE FILE_SET HEADERS BASE_DIRS ${base} FILES ${headers})
endfunction()
