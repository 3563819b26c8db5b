#!/bin/sh
# soak.sh [EXCHANGES [SEED]]: drives the plug-in against simulated controllers with faults, default for a million
# exchanges, about three minutes, and judges every value. It prints the seed, which repeats the choice of faults.
# Exit code: 0 all is well, 1 a wrong value that no fault explains, growth, or a device that does not recover.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh test
cmake --preset dev >/dev/null
cmake --build --preset dev --target soak
# What the allocator keeps of freed memory would count as in use.
export GLIBC_TUNABLES=glibc.malloc.tcache_count=0
build/dev/bin/soak "${1:-1000000}" ${2:+"$2"}
