#!/bin/sh
# install-packages.sh PACKAGE...: installs those Debian packages that are missing. Where nothing can be
# installed it names them and ends with 1.
set -u

missing=
for package in "$@"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null)
    [ "$status" = installed ] || missing="$missing $package"
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
