#!/bin/sh
# install-packages.sh PURPOSE...: installs those Debian packages that are missing. What each purpose needs stands
# here and nowhere else. Where nothing can be installed it names them and ends with 1.
set -eu

packages_for() {
    case $1 in
    programs) echo g++ cmake ninja-build qtbase5-dev ;;
    build) packages_for programs && echo help2man ;;
    test) packages_for build && echo bash-completion groff-base libbenchmark-dev libmodbus-dev libqt5serialbus5-dev locales python3-jinja2 python3-jsonschema python3-pyelftools ;;
    documents) packages_for test && echo iproute2 iputils-ping python3 ;;
    bench) packages_for test && echo gnuplot-nox ;;
    memcheck) packages_for test && echo valgrind ;;
    coverage) packages_for test && echo gcovr ;;
    lint) packages_for test && echo clang-format clang-tidy clazy git libclang-dev llvm-dev ;;
    fuzz) packages_for programs && echo clang libclang-rt-dev llvm ;;
    cross-compiler) echo g++-arm-linux-gnueabihf ;;
    emulator) echo qemu-user ;;
    package) packages_for build && echo dpkg-dev git python3-pyelftools ;;
    package-test) packages_for programs && echo binutils dpkg-dev lintian python3-pyelftools ;;
    bare-system) echo git mmdebstrap ;;
    *)
        echo "install-packages: unknown purpose $1; the purposes stand in $0" >&2
        return 2
        ;;
    esac
}

missing=
for purpose in "$@"; do
    packages=$(packages_for "$purpose")
    for package in $packages; do
        status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null) || status=
        case "$status $missing " in
        installed* | *" $package "*) ;;
        *) missing="$missing $package" ;;
        esac
    done
done
[ -n "$missing" ] || exit 0

give_up() {
    echo "Missing Debian packages:$missing" >&2
    echo "$1" >&2
    exit 1
}

if [ "$(id -u)" -eq 0 ]; then
    as_root="env"
elif command -v sudo >/dev/null; then
    as_root="sudo env"
else
    give_up "Install them as root, or install sudo, and run this again."
fi

echo "Installing:$missing"
$as_root apt-get -q update >/dev/null || give_up "apt-get update failed; see its message above."
# shellcheck disable=SC2086 # one word a package
$as_root DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends $missing \
    >/dev/null || give_up "apt-get install failed; see its message above."
