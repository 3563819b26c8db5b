#!/bin/sh
# package-test.sh [ARCHITECTURE...]: tries the packages that scripts/package.sh left in build/packages, default
# amd64 and armhf. Each is unpacked into an empty folder, from the .deb and from the archive, and the demonstration
# runs from there; that of armhf runs under an emulator.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh package-test
[ $# -gt 0 ] || set -- amd64 armhf

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
packages=$PWD/build/packages
plugin=usr/lib/vel/plugins/libkeyence.so
trace=usr/lib/libkeyence-tools/libvel-trace.so

fail() {
    echo "package-test: $1" >&2
    exit 1
}

# try_deb NAME: what a package says of itself, and what Debian's checker says of it, which looks at checksums, owners,
# permissions and debug symbols, too.
try_deb() {
    deb=${packages}/$1_${version}_$architecture.deb
    [ -f "$deb" ] || fail "there is no $deb; make it with scripts/package.sh"
    named=$(dpkg-deb --field "$deb" Package Version Architecture | sed 's/.*: //' | tr '\n' ' ')
    [ "$named" = "$1 $version $architecture " ] || fail "$deb says that it is $named"
    lintian --allow-root --fail-on error,warning "$deb" || fail "$deb has errors or warnings"
}

# try_package NAME: a package, its archive and its debug symbols.
try_package() {
    try_deb "$1"
    changes=$(zcat "$root/deb/usr/share/doc/$1/changelog.gz" | sed 1q)
    [ "${changes%% bookworm*}" = "libkeyence ($version)" ] || fail "the changelog of $1 begins with: $changes"
    dpkg-deb --field "$deb" Depends | grep 'libc6 (>= ' | grep -q 'libqt5core5a (>= ' ||
        fail "$deb does not depend on what it needs"

    archive=${packages}/${1}_${version}_$architecture.tar.gz
    # Unpacked over a system, folders would change those that are there.
    ! tar --list --verbose --gzip --file="$archive" | grep -vE '^-rw(-r--r--|xr-xr-x) root/root ' ||
        fail "$archive has folders, or these owners or permissions"

    try_deb "$1-dbgsym"
    [ "$(dpkg-deb --field "$deb" Depends)" = "$1 (= $version)" ] || fail "$deb fits other versions, too"
    dpkg-deb --extract "$deb" "$root/symbols"
}

# try_file FILE: an installed program or library is stripped, its symbols are apart, and it looks for libraries
# beside itself alone.
try_file() {
    ! readelf --wide --sections "$1" | grep -q '\.debug_info' || fail "$1 is not stripped"
    id=$(readelf --notes "$1" | sed -n 's/.*Build ID: //p')
    rest=${id#??}
    [ -f "$root/symbols/usr/lib/debug/.build-id/${id%"$rest"}/$rest.debug" ] || fail "$1 has no debug symbols"
    ! readelf --dynamic "$1" | grep -E '\((RPATH|RUNPATH)\)' | grep -vF "[\$ORIGIN/../lib/libkeyence-tools/vel]" ||
        fail "$1 looks for libraries there"
}

# run PROGRAM ARGUMENT...: of the packages for another machine under its emulator.
run() {
    # shellcheck disable=SC2086 # one word an argument
    $runner "$@"
}

# try_programs FOLDER: the programs that are installed there find their plug-in, and the demonstration is complete.
try_programs() {
    for program in velhost kvsim; do
        [ "$(run "$1/usr/bin/$program" --version)" = "$program $version" ] || fail "$program has another version"
    done
    run "$1/usr/bin/velhost" columns | grep -qxF "File        $1/$plugin" || fail "velhost takes another plug-in"
    DEMO_BIN=$1/usr/bin DEMO_EXAMPLES=$1/usr/share/doc/libkeyence-tools/examples DEMO_WORK=$root/work \
        DEMO_RUNNER=$runner scripts/demo.sh >"$root/demo.txt" 2>&1 || {
        cat "$root/demo.txt" >&2
        fail "the demonstration fails with the programs in $1"
    }
}

# try_gateway: the check of a gateway lets this plug-in pass where it can run, and no other.
try_gateway() {
    gateway=/
    stand_in=$root/deb/usr/lib/libkeyence-tools/vel
    if [ "$architecture" = armhf ]; then
        gateway=$root/gateway
        cp --archive --link build/sysroot-armhf "$gateway"
        cp --archive "$root/deb/." "$gateway"
        stand_in=/usr/lib/libkeyence-tools/vel
    fi
    scripts/gateway-check.py "$root/deb/$plugin" "$gateway" "$stand_in" || fail "the plug-in should load"
    [ "$architecture" = armhf ] || return 0

    arm-linux-gnueabihf-g++ -x c -mfloat-abi=soft -shared -nostdlib -o "$root/soft.so" /dev/null
    for other in "$root/soft.so" "$(g++ -print-file-name=libc.so.6)"; do
        status=0
        scripts/gateway-check.py "$other" "$gateway" "$stand_in" || status=$?
        [ "$status" -eq 1 ] || fail "$other cannot load there, but the check ends with $status"
    done
}

for architecture in "$@"; do
    echo "== $architecture"
    runner=
    if [ "$architecture" = armhf ]; then
        scripts/install-packages.sh cross-compiler emulator
        runner="qemu-arm -L $PWD/build/sysroot-armhf"
    fi
    root=$PWD/build/package-test/$architecture
    rm -rf "$root"
    mkdir -p "$root/deb" "$root/archive"
    for name in libkeyence libkeyence-tools; do
        dpkg-deb --extract "$packages/${name}_${version}_$architecture.deb" "$root/deb"
        tar --extract --gzip --directory="$root/archive" \
            --file="$packages/${name}_${version}_$architecture.tar.gz"
        try_package "$name"
    done
    for page in "$root"/deb/usr/share/man/man1/*.1.gz; do
        zcat "$page" | grep -q '^\.TH [A-Z]* "1" "" ' || fail "$page tells when it was made, so it changes by itself"
    done
    diff -r "$root/deb" "$root/archive" || fail "the archives hold something else than the packages"
    ! dpkg-deb --contents "$packages/libkeyence_${version}_$architecture.deb" | grep libvel ||
        fail "the plug-in's package holds the stand-in"

    for file in "$plugin" usr/bin/velhost usr/bin/kvsim usr/lib/libkeyence-tools/vel/libvel.so.1 "$trace"; do
        try_file "$root/deb/$file"
    done
    # It is loaded into hosts that have nothing but the C library.
    needed=$(readelf --dynamic "$root/deb/$trace" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | tr '\n' ' ')
    [ "$needed" = "libdl.so.2 libc.so.6 " ] || fail "$trace needs $needed"
    for file in "$plugin" "$trace"; do
        cmake -DFILE="$root/deb/$file" -DREADELF=readelf -DCEILING=tests/project/symbol_ceiling.txt \
            -P tests/project/symbol_ceiling.cmake
    done
    try_programs "$root/deb"
    try_programs "$root/archive"
    try_gateway
    if [ "$architecture" = "$(dpkg --print-architecture)" ]; then
        apt-get install --simulate "$packages"/libkeyence*_"${version}_$architecture".deb >"$root/apt.txt" ||
            fail "the packages cannot be installed; see $root/apt.txt"
    fi
done
echo "The packages are in order."
