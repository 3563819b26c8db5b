#!/bin/sh
# package.sh [-DOPTION=VALUE...] [PRESET...]: makes the packages of each preset, default package (for this
# machine's architecture) and package-armhf, and puts them into build/packages. The options are the build's,
# see cmake/options.cmake; those of an earlier run do not count.
set -eu
cd "$(dirname "$0")/.."

options=
presets=
for argument in "$@"; do
    case $argument in
    -D?*=*) options="$options $argument" ;;
    package | package-armhf) presets="$presets $argument" ;;
    *)
        echo "package: unknown argument $argument; use package.sh [-DOPTION=VALUE...] [package] [package-armhf]" >&2
        exit 2
        ;;
    esac
done

scripts/install-packages.sh package

for preset in ${presets:-package package-armhf}; do
    if [ "$preset" = package-armhf ]; then
        # The programs are asked for their help, of which the manual pages are made.
        scripts/install-packages.sh cross-compiler emulator
        scripts/armhf-sysroot.sh
    fi
    # shellcheck disable=SC2086 # one word an option
    cmake --fresh --preset "$preset" $options >/dev/null
    cmake --build --preset "$preset"
    scripts/pack.sh "$preset"
done
ls -l build/packages
