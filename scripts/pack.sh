#!/bin/sh
# pack.sh PRESET: packs what the preset has built in build/PRESET, and puts the packages into build/packages: the
# plug-in, the tools, and the debug symbols of each.
set -eu
cd "$(dirname "$0")/.."
# The files of a package are readable for all, whoever makes it.
umask 022

# The time that stands in the packages is the one of the newest commit, so that it is the same in every run.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)} || {
    echo "pack: the sources are no clone: give their time, in seconds since 1970, as SOURCE_DATE_EPOCH" >&2
    exit 1
}
export SOURCE_DATE_EPOCH

source=$PWD
build=$PWD/build/$1
work=$build/packing
packages=$PWD/build/packages
prefix=$(sed -n 's/^CMAKE_INSTALL_PREFIX:.*=//p' "$build/CMakeCache.txt")
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' "$build/CMakeCache.txt")
binutils=
# Where the host's library lies, which belongs to no package, and those of the other architecture.
libraries="-l$build/lib $(sed -n 's|^VEL_LIBRARY:.*=\(.*\)/.*|-l\1|p' "$build/CMakeCache.txt")"
case $1 in
*armhf)
    binutils=arm-linux-gnueabihf-
    sysroot=$PWD/build/sysroot-armhf
    libraries="$libraries -l$sysroot/lib/arm-linux-gnueabihf -l$sysroot/usr/lib/arm-linux-gnueabihf"
    export DEB_HOST_ARCH=armhf DPKG_ADMINDIR="$sysroot/var/lib/dpkg"
    ;;
esac
architecture=$(dpkg-architecture --query DEB_HOST_ARCH 2>/dev/null)

# write_changelog: what Debian's tools take the version from: the changes of this version, in their form.
write_changelog() {
    printf 'libkeyence (%s) bookworm; urgency=medium\n\n' "$version"
    awk -v heading="## $version" \
        '/^## / { wanted = $0 == heading; next } wanted && NF { sub(/^-/, "*"); print "  " $0 }' CHANGELOG.md |
        fmt --tagged-paragraph --width=79
    printf '\n -- %s  ' "$(sed -n 's/^Maintainer: //p' packaging/control)"
    LC_ALL=C date --utc --rfc-email --date="@$SOURCE_DATE_EPOCH"
}

# make_deb NAME VARIABLES: of what lies in the folder of that name, with what packaging/control leaves open.
make_deb() {
    (cd "$1" && find . -type f -printf '%P\0' | LC_ALL=C sort -z | xargs -0 md5sum) >md5sums
    mv md5sums "$1/DEBIAN"
    dpkg-gencontrol -p"$1" -P"$1" -T"$2"
    dpkg-deb --root-owner-group -Zxz --build "$1" "$packages/$1_${version}_$architecture.deb" >/dev/null
}

# keep_symbols PROGRAM FOLDER: writes those of a program or library into the folder, by its build ID.
keep_symbols() {
    # As it was built, not stripped.
    built=../bin/${1##*/}
    [ -f "$built" ] || built=../lib/${1##*/}
    id=$("${binutils}readelf" --notes "$built" | sed -n 's/.*Build ID: //p')
    rest=${id#??}
    [ -n "$rest" ] || {
        echo "pack: $built has no build ID, by which its debug symbols would be found" >&2
        exit 1
    }
    symbols=$2/${id%"$rest"}/$rest.debug
    mkdir -p "${symbols%/*}"
    "${binutils}objcopy" --only-keep-debug --compress-debug-sections "$built" "$symbols"
    chmod 644 "$symbols"
}

# pack COMPONENT NAME: the package of what is installed for the component, if anything is, and its debug symbols.
pack() {
    DESTDIR=$work/$2 cmake --install "$build" --component "$1" --strip >/dev/null
    [ -d "$2" ] || return 0
    mkdir "$2/DEBIAN"
    documents=$2$prefix/share/doc/$2
    install -D --mode=644 "$source/packaging/copyright" "$documents/copyright"
    gzip -9n <debian/changelog >"$documents/changelog.gz"
    find "$2" -path '*/man/*' -type f -exec gzip -9n {} +
    [ ! -f "$source/packaging/$2.lintian-overrides" ] || install -D --mode=644 \
        "$source/packaging/$2.lintian-overrides" "$2$prefix/share/lintian/overrides/$2"

    programs=$(find "$2" \( -name '*.so*' -o -path '*/bin/*' \) -type f)
    for program in $programs; do
        keep_symbols "$program" "$2-dbgsym$prefix/lib/debug/.build-id"
    done
    # shellcheck disable=SC2086 # one word an argument
    dpkg-shlibdeps --warnings=0 --ignore-missing-info -Tsubstvars $libraries $programs
    mkdir -p "$2-dbgsym$prefix/share/doc" "$2-dbgsym/DEBIAN"
    ln -s "$2" "$2-dbgsym$prefix/share/doc/$2-dbgsym"

    find "$2" "$2-dbgsym" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
    # Folders in an archive would change those that are there already.
    (cd "$2" && find . ! -type d -printf '%P\n') | LC_ALL=C sort >files
    tar --create --directory="$2" --files-from=files --owner=root:0 --group=root:0 \
        --use-compress-program='gzip -9n' --file="$packages/$2_${version}_$architecture.tar.gz"
    make_deb "$2" substvars
    make_deb "$2-dbgsym" /dev/null
}

rm -rf "$work"
mkdir -p "$work/debian" "$packages"
cp packaging/control "$work/debian"
write_changelog >"$work/debian/changelog"
cd "$work"
pack plugin libkeyence
pack tools libkeyence-tools
