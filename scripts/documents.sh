#!/bin/sh
# Runs the console samples of README.md and docs/, and compares what they print with what the pages show.
# documents.sh [PRESET], default dev.
set -eu
cd "$(dirname "$0")/.."
preset=${1:-dev}

scripts/install-packages.sh documents

cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target keyence velhost kvsim
tests/project/samples.py "build/$preset/bin"
