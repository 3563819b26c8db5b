# What our own code is compiled with. Nothing here is global: a target asks for it by linking
# `keyence-options`, so that no foreign code is held to our warnings.

add_library(keyence-warnings INTERFACE)
target_compile_options(keyence-warnings INTERFACE
    -Wall -Wextra -Wpedantic
    -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
    -Wzero-as-null-pointer-constant -Wsuggest-override
    -Woverloaded-virtual -Wnon-virtual-dtor
    -Wundef -Wvla
    $<$<BOOL:${KEYENCE_WERROR}>:-Werror>
)

add_library(keyence-strict-qt INTERFACE)
target_compile_definitions(keyence-strict-qt INTERFACE
    QT_NO_CAST_TO_ASCII
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING
    QT_USE_QSTRINGBUILDER
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_KEYWORDS
    QT_NO_FOREACH
    QT_STRICT_ITERATORS
)

add_library(keyence-instrumentation INTERFACE)
if(KEYENCE_SANITIZE)
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(keyence-instrumentation INTERFACE ${sanitizers})
    target_link_options(keyence-instrumentation INTERFACE ${sanitizers})
endif()
if(KEYENCE_FUZZ)
    target_compile_options(keyence-instrumentation INTERFACE -fsanitize=fuzzer-no-link -O1 -gline-tables-only)
endif()
if(KEYENCE_COVERAGE)
    target_compile_options(keyence-instrumentation INTERFACE --coverage)
    target_link_options(keyence-instrumentation INTERFACE --coverage)
endif()

add_library(keyence-paths INTERFACE)
if(KEYENCE_REPRODUCIBLE)
    # Where a debugger looks for the sources of a package; of several that fit the last one counts.
    set(packaged_sources /usr/src/${PROJECT_NAME}-${PROJECT_VERSION})
    target_compile_options(keyence-paths INTERFACE
        -ffile-prefix-map=${PROJECT_SOURCE_DIR}=${packaged_sources}
        -ffile-prefix-map=${PROJECT_BINARY_DIR}=${packaged_sources}/build)
    set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
    # Later formats hold the time of each file.
    set(CMAKE_AUTORCC_OPTIONS --format-version 1)
endif()

add_library(keyence-options INTERFACE)
target_compile_features(keyence-options INTERFACE cxx_std_17)
target_link_libraries(keyence-options INTERFACE
    keyence-warnings keyence-strict-qt keyence-instrumentation keyence-paths)
