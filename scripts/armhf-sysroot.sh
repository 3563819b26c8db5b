#!/bin/sh
# Makes build/sysroot-armhf: the libraries and headers of a 32-bit ARM Debian that the build and its programs
# need. The packages come from where the machine's own come from, but nothing of them is installed: its list
# of packages and of architectures stays as it is. A complete folder is used again.
set -eu
cd "$(dirname "$0")/.."

# With what they depend on.
packages="libc6-dev libqt5core5a libqt5network5 libqt5sql5 libqt5test5 bash dash"
# Alone: only their headers and CMake files are needed, not the desktop that they depend on.
alone="qtbase5-dev qt5-qmake"

root=$PWD/build/sysroot-armhf
stamp=$root/complete
made_of=$(cksum scripts/armhf-sysroot.sh tests/emulation/*.cpp; echo "$root")
if [ "$(cat "$stamp" 2>/dev/null)" = "$made_of" ]; then
    exit 0
fi

apt=$root/apt
rm -rf "$root"
mkdir -p "$apt/lists/partial" "$apt/archives/partial"
: >"$apt/status"

armhf_apt() {
    apt-get -q -o APT::Architecture=armhf -o APT::Architectures::=armhf -o APT::Sandbox::User= \
        -o Dir::State="$apt" -o Dir::State::Lists="$apt/lists" -o Dir::State::Status="$apt/status" \
        -o Dir::Cache="$apt" -o Dir::Cache::Archives="$apt/archives" "$@" >>"$apt/log" 2>&1
}

give_up() {
    cat "$apt/log" >&2
    echo "armhf-sysroot: $1; see the messages above." >&2
    exit 1
}

echo "Fetching the packages for armhf"
# A source may have nothing for armhf, or fail; what counts is whether the packages can be had.
armhf_apt update || true
# shellcheck disable=SC2086 # one word a package
armhf_apt install -y --download-only --no-install-recommends $packages || give_up "the packages cannot be had"
# shellcheck disable=SC2086
(cd "$apt/archives" && armhf_apt download $alone) || give_up "the packages cannot be had"

# What dpkg would know if it had installed them; our own packages' dependencies are found out with it.
known=$root/var/lib/dpkg
mkdir -p "$known/info"
echo 1 >"$known/info/format"
printf '%s\n' "$(dpkg --print-architecture)" armhf >"$known/arch"

for package in "$apt"/archives/*.deb; do
    dpkg-deb --extract "$package" "$root" || give_up "$package cannot be unpacked"
    dpkg-deb --control "$package" "$apt/control" || give_up "$package cannot be unpacked"
    name=$(dpkg-deb --field "$package" Package)
    [ "$(dpkg-deb --field "$package" Multi-Arch)" != same ] || name=$name:armhf
    sed '/^Package:/a Status: install ok installed' "$apt/control/control" >>"$known/status"
    echo >>"$known/status"
    dpkg-deb --fsys-tarfile "$package" | tar --list | sed "s|^\.|$root|; s|/$||" >"$known/info/$name.list"
    for part in shlibs symbols; do
        [ ! -f "$apt/control/$part" ] || mv "$apt/control/$part" "$known/info/$name.$part"
    done
    rm -r "$apt/control"
done
rm -rf "$apt"

# A link to an absolute path would lead out of the folder.
find "$root" -type l -lname '/*' | while read -r link; do
    ln -sfnr "$root$(readlink "$link")" "$link"
done

# The programs that run during the build are the machine's own.
mkdir -p "$root/usr/lib/qt5/bin"
for tool in moc qmake rcc uic; do
    ln -sf "/usr/lib/qt5/bin/$tool" "$root/usr/lib/qt5/bin/$tool"
done

# Every program loads this first, or none could start another; the files say why.
preloaded=/usr/lib/arm-linux-gnueabihf/libemulation.so
arm-linux-gnueabihf-g++ --sysroot="$root" -std=c++17 -O2 -fPIC -shared -Wall -Wextra -Werror \
    -D"SYSROOT=\"$root\"" -o "$root$preloaded" tests/emulation/*.cpp
echo "$preloaded" >"$root/etc/ld.so.preload"

echo "$made_of" >"$stamp"
