#!/bin/sh
# memcheck.sh: runs the plug-in's tests under valgrind, about two minutes; a finding ends it with an error. Left out
# are the tests over generated texts, which would take an hour; they run with AddressSanitizer all the same.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh memcheck
cmake --preset dev >/dev/null
cmake --build --preset dev --target plug-in-tests tst_plugin tst_faultycontroller tst_faultmatrix

# Valgrind does not know the code that the patterns of Qt's own are compiled to while a test runs.
export QT_ENABLE_REGEXP_JIT=0
tests=$(ctest --test-dir build/dev -N -L plug-in | sed -n 's/.*: \(tst_.*\)/\1/p')
count=0
for test in $tests tst_plugin tst_faultycontroller tst_faultmatrix; do
    case $test in
    tst_bitconversion | tst_digits | tst_generateddata | tst_grammar) continue ;;
    esac
    echo "$test"
    valgrind --quiet --error-exitcode=1 --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
        --suppressions=tests/support/valgrind.supp "build/dev/bin/$test" -silent
    count=$((count + 1))
done
echo "$count tests, no findings"
