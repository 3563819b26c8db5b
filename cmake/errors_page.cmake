# Makes docs/errors.md of tools/velhost/explain/errors.json:
#
#     cmake -P cmake/errors_page.cmake
#
# With -DPAGE=<file> it writes there and stops when docs/errors.md is another.
cmake_minimum_required(VERSION 3.22)

set(root ${CMAKE_CURRENT_LIST_DIR}/..)
set(committed ${root}/docs/errors.md)
file(READ ${root}/tools/velhost/explain/errors.json catalogue)

# get(<variable> <json> <key>...): what stands there, or nothing.
function(get variable json)
    string(JSON value ERROR_VARIABLE error GET "${json}" ${ARGN})
    if(NOT error STREQUAL "NOTFOUND")
        set(value "")
    endif()
    set(${variable} "${value}" PARENT_SCOPE)
endfunction()

# last(<variable> <json> <key>): the index of the last entry of that list or object; -1: there is none.
function(last variable json key)
    string(JSON length ERROR_VARIABLE error LENGTH "${json}" ${key})
    if(NOT error STREQUAL "NOTFOUND")
        set(length 0)
    endif()
    math(EXPR index "${length} - 1")
    set(${variable} ${index} PARENT_SCOPE)
endfunction()

# Each of the following appends to the caller's page.

function(add_list title json key)
    last(end "${json}" ${key})
    if(end LESS 0)
        return()
    endif()
    string(APPEND page "${title}\n\n")
    foreach(i RANGE ${end})
        get(text "${json}" ${key} ${i})
        string(APPEND page "- ${text}\n")
    endforeach()
    set(page "${page}\n" PARENT_SCOPE)
endfunction()

function(add_places error)
    get(form "${error}" form)
    get(reason "${error}" text)
    last(end "${catalogue}" forms)
    foreach(i RANGE ${end})
        get(candidate "${catalogue}" forms ${i})
        get(id "${candidate}" id)
        if(id STREQUAL form)
            break()
        endif()
    endforeach()
    last(end "${candidate}" places)
    string(APPEND page "| Seen in | Text |\n|---|---|\n")
    foreach(i RANGE ${end})
        get(place "${candidate}" places ${i} place)
        get(text "${candidate}" places ${i} text)
        string(REPLACE "{reason}" "${reason}" text "${text}")
        string(APPEND page "| ${place} | `${text}` |\n")
    endforeach()
    set(page "${page}\n" PARENT_SCOPE)
endfunction()

# The plant file of a provocation, indented as code.
function(add_plant provocation)
    get(ip "${provocation}" ip)
    get(port "${provocation}" parameters port)
    get(timeout "${provocation}" parameters timeout)
    foreach(default IN ITEMS ip=127.0.0.1 port=8501 timeout=2000)
        string(REGEX MATCH "^(.+)=(.+)$" match ${default})
        if(${CMAKE_MATCH_1} STREQUAL "")
            set(${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
        endif()
    endforeach()
    string(APPEND page
        "    {\"devices\": [{\"id\": 1, \"name\": \"Press\", \"ip\": \"${ip}\",\n"
        "      \"parameters\": {\"port\": \"${port}\", \"timeout\": \"${timeout}\"}, \"items\": [\n")
    last(end "${provocation}" items)
    foreach(i RANGE ${end})
        get(item "${provocation}" items ${i})
        get(name "${item}" name)
        get(address "${item}" parameters memory_address)
        get(memory "${item}" parameters memory_type)
        get(type "${item}" parameters data_type)
        set(comma ",")
        if(i EQUAL end)
            set(comma "")
        endif()
        string(APPEND page
            "        {\"name\": \"${name}\", \"parameters\": {\"memory_address\": \"${address}\",\n"
            "          \"memory_type\": \"${memory}\", \"data_type\": \"${type}\"}}${comma}\n")
    endforeach()
    set(page "${page}      ]}]}\n\n" PARENT_SCOPE)
endfunction()

# The commands of a provocation and the log entries that they show, indented as code.
function(add_run provocation)
    get(peer "${provocation}" peer)
    get(fault "${provocation}" faults 0)
    get(name "${provocation}" items 0 name)
    get(cycles "${provocation}" cycles)
    string(JSON value ERROR_VARIABLE error GET "${provocation}" write)
    if(NOT fault STREQUAL "")
        string(PREPEND fault " --fault ")
    endif()
    if(peer STREQUAL "")
        string(APPEND page "    $ kvsim${fault}\n")
    endif()
    set(command "read plant.json")
    if(error STREQUAL "NOTFOUND")
        set(command "write --plant plant.json --no-verify 'Press/${name}=${value}'")
    elseif(NOT cycles STREQUAL "")
        set(command "read plant.json --cycles ${cycles}")
    endif()
    string(APPEND page "    $ velhost ${command}\n")
    last(end "${provocation}" log)
    foreach(i RANGE ${end})
        get(entry "${provocation}" log ${i})
        string(REPLACE "\r" "\\r" entry "${entry}")
        string(APPEND page "    log error: ${entry}\n")
    endforeach()
    set(page "${page}\n" PARENT_SCOPE)
endfunction()

function(add_provocations error)
    last(end "${error}" provocations)
    foreach(i RANGE ${end})
        get(provocation "${error}" provocations ${i})
        get(what "${provocation}" what)
        get(peer "${provocation}" peer)
        if(peer STREQUAL "" OR peer STREQUAL "nobody")
            string(APPEND page "To see it at the desk: ${what}.\n\n")
            add_plant("${provocation}")
            add_run("${provocation}")
        else()
            string(APPEND page "Also provoked, by a test alone: ${what}.\n\n")
        endif()
    endforeach()
    set(page "${page}" PARENT_SCOPE)
endfunction()

function(add_error error)
    foreach(field IN ITEMS id text title meaning unreported)
        get(${field} "${error}" ${field})
    endforeach()
    string(STRIP "${text}" text)
    string(APPEND page "<a id=\"${id}\"></a>\n\n### `${text}`: ${title}\n\n")
    if(unreported STREQUAL "")
        add_places("${error}")
    endif()
    string(APPEND page "${meaning}\n\n")
    add_list("Likely causes:" "${error}" causes)
    add_list("What to do:" "${error}" remedies)
    if(unreported STREQUAL "")
        add_provocations("${error}")
    else()
        string(APPEND page "Never seen: ${unreported}\n\n")
    endif()
    set(page "${page}" PARENT_SCOPE)
endfunction()

set(page "# Error texts

Every text by which the plug-in tells of an error: what it means, what the likely causes are, what to do, and how to
see it at the desk. At the command line the same is told by

    velhost explain \"TEXT\"

with a whole log entry, an item's last error, or the short text. How to go about a missing value step by step stands
in [troubleshooting](troubleshooting.md).

- What stands in braces varies. `{command}` is the command line that was sent, with the carriage return at its end,
  which `velhost` shows as `\\r`; `{system}` is a text of the operating system, in the language of the host.
- A failed write stands in the error log alone, a failed read in the item's last error, too.
- Nothing is written to the debug log, and nothing is reported while the plug-in starts: a device that cannot be
  reached then is told of by the first cycle.
- In the examples `kvsim` and `velhost` stand for the installed programs, or for those in `build/demo/bin` after the
  demonstration, each in a shell of its own; the plant is `plant.json`.

This page is made of `tools/velhost/explain/errors.json` by `cmake -P cmake/errors_page.cmake`; change it there.

## Index

| Text | What has happened |
|---|---|
")
last(end "${catalogue}" errors)
foreach(i RANGE ${end})
    get(error "${catalogue}" errors ${i})
    get(id "${error}" id)
    get(text "${error}" text)
    get(title "${error}" title)
    string(STRIP "${text}" text)
    string(APPEND page "| [`${text}`](#${id}) | ${title} |\n")
endforeach()

string(APPEND page "\n## Texts that are reported\n\n")
set(is_reported TRUE)
foreach(i RANGE ${end})
    get(error "${catalogue}" errors ${i})
    get(form "${error}" form)
    if(is_reported AND form STREQUAL "unreported")
        string(APPEND page "## Texts that the plug-in has but never reports\n\n")
        set(is_reported FALSE)
    endif()
    add_error("${error}")
endforeach()
string(REGEX REPLACE "\n+$" "\n" page "${page}")

if(NOT DEFINED PAGE)
    file(WRITE ${committed} "${page}")
    return()
endif()
file(WRITE ${PAGE} "${page}")
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${PAGE} ${committed} RESULT_VARIABLE differs)
if(differs)
    message(FATAL_ERROR
        "docs/errors.md does not fit tools/velhost/explain/errors.json: run cmake -P cmake/errors_page.cmake")
endif()
