# Gives the documents of `package` the form that Debian's packages have.

set(root $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX})
set(changelog ${root}/share/doc/${package}/changelog)

# The changes of this version.
execute_process(
    COMMAND awk -v "heading=## ${version}"
        "/^## / { wanted = $0 == heading; next } wanted && NF { sub(/^-/, \"*\"); print \"  \" $0 }"
        ${changes}
    COMMAND fmt --tagged-paragraph --width=79
    OUTPUT_VARIABLE text
    COMMAND_ERROR_IS_FATAL ANY)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${changelog} "libkeyence (${version}) bookworm; urgency=medium\n\n${text}\n -- ${maintainer}  ${date}\n")

file(GLOB pages ${root}/share/man/man1/*.1)
execute_process(COMMAND gzip -9nf ${changelog} ${pages} COMMAND_ERROR_IS_FATAL ANY)
