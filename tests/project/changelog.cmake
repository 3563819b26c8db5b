# Stops when the newest section of the changelog FILE is not the one of VERSION, so that no release goes out
# with the changes of another.
cmake_minimum_required(VERSION 3.22)

file(STRINGS ${FILE} headings REGEX "^## ")
list(GET headings 0 newest)
if(NOT newest STREQUAL "## ${VERSION}")
    message(FATAL_ERROR "${FILE} begins with \"${newest}\", the version is ${VERSION}: correct one of them")
endif()
