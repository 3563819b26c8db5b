#!/bin/sh
# Installs what is missing, builds and runs all tests. test.sh [PRESET], default dev.
set -eu
cd "$(dirname "$0")/.."
preset=${1:-dev}

scripts/install-packages.sh test

cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
