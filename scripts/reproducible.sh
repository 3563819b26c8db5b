#!/bin/sh
# Makes the packages for this machine's architecture twice, here and from a copy of the sources in another folder,
# and compares them byte by byte.
set -eu
cd "$(dirname "$0")/.."

copy=$PWD/build/reproducible/in/another/folder
rm -rf build/reproducible
mkdir -p "$copy"

rm -f build/packages/*"_$(dpkg --print-architecture)".*
scripts/package.sh package
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
git ls-files -z --cached --others --exclude-standard |
    tar --create --null --files-from=- | tar --extract --touch --directory="$copy"
"$copy/scripts/package.sh" package

count=0
for package in build/packages/*"_$(dpkg --print-architecture)".*; do
    cmp "$package" "$copy/build/packages/${package##*/}" || {
        echo "reproducible: $package depends on the folder that it is built in" >&2
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
