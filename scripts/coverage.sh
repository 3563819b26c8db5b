#!/bin/sh
# Runs the plug-in's own tests with line counters and prints how much of its sources they reach; below 98 % it
# fails.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh coverage
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
scripts/test.sh coverage
gcovr --root . --filter src/ --object-directory build/coverage --fail-under-line 98
