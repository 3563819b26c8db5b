#!/bin/sh
# Checks form and content of our own code; the first tool that finds something ends the run with an error.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh lint

sources=$(git ls-files --cached --others --exclude-standard '*.cpp' ':!scripts')
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
clang-format --dry-run -Werror $sources $headers scripts/*.cpp

# What follows needs the commands of a build, and what it generates.
cmake --preset dev >/dev/null
cmake --build --preset dev >/dev/null

echo "clang-tidy"
llvm=$(dirname "$(readlink -f "$(command -v clang-tidy)")")/..
mkdir -p build/lint
g++ -std=c++17 -fno-rtti -fPIC -shared -isystem "$llvm/include" scripts/owncode.cpp -o build/lint/owncode.so
printf 'int *pointer = 0;\n' >build/lint/finding.cpp
if clang-tidy --quiet --load=build/lint/owncode.so build/lint/finding.cpp -- >build/lint/finding.txt 2>&1 ||
    ! grep -q modernize-use-nullptr build/lint/finding.txt; then
    echo "clang-tidy does not tell of a finding in build/lint/finding.cpp; it says:" >&2
    cat build/lint/finding.txt >&2
    exit 1
fi
clang-tidy --quiet --load=build/lint/owncode.so scripts/owncode.cpp -- -std=c++17 -isystem "$llvm/include"
on_each "$sources" clang-tidy --quiet --load=build/lint/owncode.so -p build/dev

echo "clazy"
# Left out, because here they do not apply:
#   function-args-by-ref: texts go by value through every operation
#   non-pod-global-static: the tables and the patterns are built once, when the library is loaded
#   ctor-missing-parent-argument: neither the plug-in nor a test has a parent
checks=level0,level1,level2,qt-keywords
checks=$checks,no-function-args-by-ref,no-non-pod-global-static,no-ctor-missing-parent-argument
on_each "$sources" clazy-standalone -p build/dev --checks=$checks \
    --header-filter='.*/(vel|src|tools|tests|fuzz)/.*\.h$'

echo "no findings"
