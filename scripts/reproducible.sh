#!/bin/sh
# Makes the packages for this machine's architecture twice, here and, later, from a copy of the sources in another
# folder, with other permissions, another locale and another time zone, and compares them byte by byte.
set -eu
cd "$(dirname "$0")/.."

copy=$PWD/build/reproducible/in/another/folder
rm -rf build/reproducible
mkdir -p "$copy"

rm -f build/packages/*"_$(dpkg --print-architecture)".*
scripts/package.sh package
git ls-files -z --cached --others --exclude-standard |
    tar --create --null --files-from=- | tar --extract --touch --directory="$copy"
(
    umask 077
    export LC_ALL=C TZ=Asia/Tokyo
    SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
    export SOURCE_DATE_EPOCH
    "$copy/scripts/package.sh" package
)

count=0
for package in build/packages/*"_$(dpkg --print-architecture)".*; do
    cmp "$package" "$copy/build/packages/${package##*/}" || {
        echo "reproducible: $package depends on where, when or by whom it is made" >&2
        exit 1
    }
    count=$((count + 1))
done
# Two packages, their archives and their debug symbols.
[ "$count" -eq 6 ] || {
    echo "reproducible: $count files were compared, not 6" >&2
    exit 1
}
echo "$count files are the same from both folders."
