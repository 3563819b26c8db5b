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

scripts/install-packages.sh g++ cmake ninja-build qtbase5-dev debhelper dpkg-dev git help2man

# The time that stands in the packages is the one of the newest commit, so that it is the same in every build.
: "${SOURCE_DATE_EPOCH:=$(git log -1 --format=%ct)}"
export SOURCE_DATE_EPOCH
# dpkg-deb makes root the owner of all files by itself.
export DEB_RULES_REQUIRES_ROOT=no

packages=$PWD/build/packages
mkdir -p "$packages"

# changelog VERSION: the changes of this version, as Debian writes them.
changelog() {
    printf 'libkeyence (%s) bookworm; urgency=medium\n\n' "$1"
    awk -v heading="## $1" '/^## / { wanted = $0 == heading; next } wanted && NF' CHANGELOG.md |
        sed 's/^/  /; s/^  - /  * /'
    printf '\n -- %s  %s\n' "$(sed -n 's/^Maintainer: //p' packaging/control)" \
        "$(LC_ALL=C date --utc --rfc-email --date="@$SOURCE_DATE_EPOCH")"
}

# cached PRESET NAME: the value of a variable of the build.
cached() {
    sed -n "s/^$2:[A-Z]*=//p" "build/$1/CMakeCache.txt"
}

# pack NAME...: makes the packages, their debug symbols and their archives from what is installed below debian/
# in this folder.
pack() {
    DH_OPTIONS=$(printf -- '-p%s ' "$@")
    export DH_OPTIONS
    dh_installdocs
    dh_installchangelogs
    dh_lintian
    dh_compress -X.md
    dh_fixperms
    dh_strip
    # The host's library belongs to no package.
    # shellcheck disable=SC2086 # one word an option
    dh_shlibdeps -l"$library_folders" -- --ignore-missing-info $database
    dh_installdeb
    dh_gencontrol
    dh_md5sums
    find debian -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
    dh_builddeb --destdir="$packages"

    # Files alone: an archive with folders would change those that are there already.
    for name in "$@"; do
        (cd "debian/$name" && find . -path ./DEBIAN -prune -o ! -type d -printf '%P\n') |
            LC_ALL=C sort |
            tar --create --directory="debian/$name" --files-from=- --owner=root:0 --group=root:0 |
            gzip -9n >"$packages/${name}_${version}_$architecture.tar.gz"
    done
}

# package PRESET: builds, installs the files of each package into a folder of its own, and packs them.
package() {
    # shellcheck disable=SC2086 # one word an option
    cmake --fresh --preset "$1" $options >/dev/null
    # The month that stands in a manual page is the one of its making.
    rm -rf "build/$1/man"
    cmake --build --preset "$1"

    stage=build/$1/stage
    version=$(cached "$1" CMAKE_PROJECT_VERSION)
    library_folders=$(dirname "$(cached "$1" VEL_LIBRARY)")
    rm -rf "$stage"
    mkdir -p "$stage/debian"
    cp packaging/* "$stage/debian"
    changelog "$version" >"$stage/debian/changelog"

    names=libkeyence
    DESTDIR=$stage/debian/libkeyence cmake --install "build/$1" --component plugin >/dev/null
    DESTDIR=$stage/debian/libkeyence-tools cmake --install "build/$1" --component tools >/dev/null
    # Against a real host's framework there are none.
    if [ -d "$stage/debian/libkeyence-tools" ]; then
        names="$names libkeyence-tools"
        library_folders=$PWD/$stage/debian/libkeyence-tools/usr/lib/libkeyence-tools
    fi
    architecture=$(dpkg --print-architecture)
    database=
    if [ "$1" = package-armhf ]; then
        architecture=armhf
        sysroot=$PWD/build/sysroot-armhf
        database=--admindir=$sysroot/var/lib/dpkg
        library_folders=$library_folders:$sysroot/lib/arm-linux-gnueabihf:$sysroot/usr/lib/arm-linux-gnueabihf
    fi

    (
        cd "$stage"
        eval "$(dpkg-architecture --host-arch "$architecture" --print-set)"
        # shellcheck disable=SC2086 # one word a package
        pack $names
    )
}

for preset in ${presets:-package package-armhf}; do
    if [ "$preset" = package-armhf ]; then
        scripts/install-packages.sh g++-arm-linux-gnueabihf
        scripts/armhf-sysroot.sh
    fi
    package "$preset"
done
ls -l "$packages"
