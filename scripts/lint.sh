#!/bin/sh
# Checks form and content of our own code; the first tool that finds something ends the run with an error.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh lint

sources=$(git ls-files --cached --others --exclude-standard '*.cpp')
tests=$(git ls-files --cached --others --exclude-standard 'tests/*.cpp')
others=$(git ls-files --cached --others --exclude-standard '*.cpp' ':!tests')
headers=$(git ls-files --cached --others --exclude-standard '*.h')

# on_each FILES COMMAND...: runs the command with a few of the files at a time, on every processor.
on_each() {
    files=$1
    shift
    # shellcheck disable=SC2086 # one word a file
    printf '%s\n' $files | xargs -P "$(nproc)" -n 3 "$@"
}

echo "clang-format"
# shellcheck disable=SC2086
clang-format --dry-run -Werror $sources $headers

# Both need the commands of a build, and what it generates.
cmake --preset dev >/dev/null
cmake --build --preset dev >/dev/null

# Nearly all of clang-tidy's time goes into the headers of Qt. So the plug-in and the tools, whose sources share
# them, are read as a build that joins many sources into one; for that, no two of a library may use a name for
# different things. The checks that only look at a source for itself follow.
cmake -S . -B build/lint -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKEYENCE_BUILD_TESTS=OFF \
    -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=16 -DCMAKE_GLOBAL_AUTOGEN_TARGET=ON >/dev/null
cmake --build build/lint --target autogen >/dev/null
joined=$(find build/lint -name 'unity_*.cxx')

echo "clang-tidy"
on_each "$joined" clang-tidy --quiet -p build/lint --checks=-bugprone-suspicious-include \
    --header-filter='/(vel|src|tools)/.*\.(h|cpp)$'
on_each "$tests" clang-tidy --quiet -p build/dev
on_each "$others" clang-tidy --quiet -p build/dev \
    --checks='-*,clang-analyzer-*,misc-unused-using-decls,bugprone-suspicious-include'

echo "clazy"
# Left out, because here they do not apply:
#   function-args-by-ref: texts go by value through every operation
#   non-pod-global-static: the tables and the patterns are built once, when the library is loaded
#   ctor-missing-parent-argument: neither the plug-in nor a test has a parent
checks=level0,level1,level2,qt-keywords
checks=$checks,no-function-args-by-ref,no-non-pod-global-static,no-ctor-missing-parent-argument
on_each "$sources" clazy-standalone -p build/dev --checks=$checks \
    --header-filter='.*/(vel|src|tools|tests)/.*\.h$'

echo "no findings"
