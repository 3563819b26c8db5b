#!/bin/sh
# pack.sh PRESET: packs what the preset has built in build/PRESET, and puts the packages into build/packages.
set -eu
cd "$(dirname "$0")/.."

# cpack gives the parts of a .deb the permissions that new files have.
umask 022
mkdir -p build/packages
cd "build/$1"
cpack
mv ./*.deb ./*.tar.gz ../packages
