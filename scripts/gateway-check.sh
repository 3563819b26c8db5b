#!/bin/sh
# gateway-check.sh LIBKEYENCE [ROOT [FOLDER...]]: says whether this libkeyence.so will load on a gateway. ROOT is a
# copy of the gateway's root folder, or of its /usr/lib; without it this machine is looked at. A FOLDER, as its path
# is on the gateway, is one that the host loads libraries from besides the system's folders. Needs readelf
# (binutils). One line a point: "ok", "FAILS" or "unknown".
# Exit code: 0 no point fails, 1 a point fails, 2 wrong usage.
set -u
LC_ALL=C
export LC_ALL

stop() {
    echo "gateway-check: $1" >&2
    exit 2
}

[ $# -ge 1 ] || stop "usage: gateway-check.sh LIBKEYENCE [ROOT [FOLDER...]]"
library=$1
root=${2:-/}
shift
[ $# -eq 0 ] || shift
command -v readelf >/dev/null || stop "readelf is missing; install the package binutils"
[ -f "$library" ] || stop "there is no file $library"
readelf -h "$library" >/dev/null 2>&1 || stop "$library is no ELF library"
[ -d "$root" ] || stop "there is no folder $root; give a copy of the gateway's root folder or of its /usr/lib"
root=${root%/}

work=$(mktemp -d) || exit 2
trap 'rm -rf "$work"' EXIT
trap 'exit 2' HUP INT TERM
failed=0

holds() { echo "ok: $1"; }
unknown() { echo "unknown: $1"; }
fails() {
    echo "FAILS: $1"
    failed=1
}

# in_root PATH: where this path of the gateway is on this machine. Its links are followed within the root, as an
# absolute one would lead to this machine's own files.
in_root() {
    rest=${1#/}
    done_path=
    links=0
    while [ -n "$rest" ]; do
        part=${rest%%/*}
        case $rest in
        */*) rest=${rest#*/} ;;
        *) rest= ;;
        esac
        case $part in
        '' | .) continue ;;
        ..)
            done_path=${done_path%/*}
            continue
            ;;
        esac
        if [ -h "$root$done_path/$part" ] && [ $links -lt 40 ]; then
            links=$((links + 1))
            target=$(readlink "$root$done_path/$part")
            rest=$target/$rest
            case $target in
            /*) done_path= ;;
            esac
        else
            done_path=$done_path/$part
        fi
    done
    echo "$root$done_path"
}

# kind FILE: class, machine and float convention of an ELF file, in words; nothing for another file.
kind() {
    readelf -h "$1" 2>/dev/null >"$work/header" || return 0
    readelf -A "$1" 2>/dev/null >"$work/attributes"
    awk '
        FILENAME ~ /attributes$/ { if (/Tag_ABI_VFP_args: VFP registers/) vfp = 1; next }
        $1 == "Class:" { bits = $2 == "ELF64" ? "64-bit" : "32-bit" }
        $1 == "Data:" { order = /big endian/ ? " big-endian" : "" }
        $1 == "Machine:" { sub(/^ *Machine: */, ""); machine = $0 }
        $1 == "Flags:" { hard = /hard-float/; soft = /soft-float/ }
        END {
            if (machine == "ARM")
                float = hard || (vfp && !soft) ? " with hard float" : " with soft float"
            print bits order " " machine float
        }' "$work/attributes" "$work/header"
}

# config_folders FILE [included]: the folders that the loader's configuration names. An included file includes no
# other, so that none can include itself.
config_folders() {
    config=$(in_root "$1")
    [ -f "$config" ] || return 0
    sed -n 's/#.*//; s/^[[:space:]]*//; s/[[:space:]]*$//; /^\//p' "$config"
    [ -z "${2-}" ] || return 0
    sed -n 's/#.*//; s/^[[:space:]]*include[[:space:]]*//p' "$config" | while read -r pattern; do
        case $pattern in
        /*) ;;
        *) pattern=/etc/$pattern ;;
        esac
        for file in "$(in_root "${pattern%/*}")"/${pattern##*/}; do
            config_folders "${file#"$root"}" included
        done
    done
}

# library_folders FOLDER...: where the host's process looks for libraries, as paths on the gateway.
library_folders() {
    printf '%s\n' "$@"
    config_folders /etc/ld.so.conf
    # The last two: the root may be a copy of /usr/lib alone.
    for folder in "$root"/lib/*-linux-* "$root"/usr/lib/*-linux-* "$root"/lib "$root"/usr/lib "$root"/lib64 \
        "$root"/usr/lib64 "$root"/*-linux-* "$root"; do
        [ ! -d "$(in_root "${folder#"$root"}")" ] || echo "${folder#"$root"}/"
    done
}

# find_library NAME [any]: the file that the loader takes for it; files of another kind it passes over.
find_library() {
    while read -r folder; do
        file=$(in_root "$folder/$1")
        [ -f "$file" ] || continue
        if [ "${2-}" = any ] || [ "$(kind "$file")" = "$library_kind" ]; then
            echo "$file"
            return 0
        fi
    done <"$work/folders"
    return 1
}

# needed FILE: the names of the libraries that it needs, each with the name of the file.
needed() {
    readelf -d "$1" 2>/dev/null | sed -n "s|.*(NEEDED).*\\[\\(.*\\)\\].*|\\1 ${1##*/}|p"
}

# exported FILE and imported FILE: the names of its dynamic symbols; those that may be missing are left out.
exported() {
    readelf -W --dyn-syms "$1" 2>/dev/null |
        awk '$7 != "UND" && $5 != "LOCAL" && NF >= 8 { sub(/@.*/, "", $8); print $8 }'
}
imported() {
    readelf -W --dyn-syms "$1" 2>/dev/null |
        awk '$7 == "UND" && $5 == "GLOBAL" && NF >= 8 { sub(/@.*/, "", $8); print $8 }'
}

check_kind() {
    if find_library libc.so.6 >/dev/null; then
        holds "the library is for $library_kind, and so is the gateway."
    elif libc=$(find_library libc.so.6 any); then
        fails "the library is for $library_kind, but the gateway is $(kind "$libc"); take the package for that."
        echo "The other points were not checked."
        exit 1
    else
        fails "there is no libc.so.6 in the library folders of $root/; copy the gateway's /lib too."
        echo "The other points were not checked."
        exit 1
    fi
}

# Looks for every needed library, for what those need and so on. Leaves the file "found" with name and path.
check_libraries() {
    : >"$work/seen"
    : >"$work/found"
    missing=0
    misnamed=0
    needed "$library" >"$work/level"
    while [ -s "$work/level" ]; do
        : >"$work/next"
        while read -r name by; do
            ! grep -Fqx "$name" "$work/seen" || continue
            echo "$name" >>"$work/seen"
            if file=$(find_library "$name"); then
                echo "$name $file" >>"$work/found"
                needed "$file" >>"$work/next"
                soname=$(readelf -d "$file" 2>/dev/null | sed -n 's/.*(SONAME).*\[\(.*\)\].*/\1/p')
                [ "${soname:-$name}" = "$name" ] && continue
                misnamed=1
                fails "$name, which $by needs, is another library; it calls itself $soname."
            else
                missing=1
                fails "$name, which $by needs, is not in the library folders; install it, or name the host's folder."
            fi
        done <"$work/level"
        mv "$work/next" "$work/level"
    done
    count=$(needed "$library" | grep -c .)
    [ $missing$misnamed != 00 ] || holds "all $count needed libraries are there, with those that they need."
}

# Compares the symbol versions that the library needs with those that the files found have.
check_versions() {
    readelf -V "$library" 2>/dev/null | awk '
        { for (i = 1; i < NF; i++) if ($i == "File:") file = $(i + 1)
          for (i = 1; i < NF; i++) if ($i == "Name:" && file != "") print "needs", file, $(i + 1) }' >"$work/versions"
    while read -r name file; do
        readelf -V "$file" 2>/dev/null | awk -v name="$name" '
            /^Version / { definitions = /^Version definition/ }
            definitions { for (i = 1; i < NF; i++) if ($i == "Name:") print "has", name, $(i + 1) }'
        echo "is $name there"
    done <"$work/found" >>"$work/versions"
    awk '
        function family(version) { sub(/_[0-9].*/, "", version); return version }
        function number(version) { sub(/^[^0-9]*_/, "", version); return version }
        function greater(a, b,   x, y, i) {
            split(a, x, /[._]/); split(b, y, /[._]/)
            for (i = 1; i <= 4; i++) if (x[i] + 0 != y[i] + 0) return x[i] + 0 > y[i] + 0
            return 0
        }
        $1 == "is" { there[$2] = 1 }
        $1 == "has" { has[$2, $3] = 1; stated[$2] = 1; provided[++provisions] = $2 " " $3 }
        $1 == "needs" { needs[++count] = $2 " " $3 }
        END {
            for (i = 1; i <= count; i++) {
                split(needs[i], pair, " ")
                if (!there[pair[1]])
                    continue
                name = family(pair[2])
                if (!(name in top)) { order[++families] = name; top[name] = number(pair[2]) }
                if (greater(number(pair[2]), top[name])) top[name] = number(pair[2])
                if (!index(from[name] " ", " " pair[1] " ")) from[name] = from[name] " " pair[1]
                if (!stated[pair[1]]) silent[name] = pair[1]
                else if (!((pair[1], pair[2]) in has)) lacks[name] = lacks[name] " " pair[2]
            }
            for (i = 1; i <= provisions; i++) {
                split(provided[i], pair, " ")
                name = family(pair[2])
                if (index(from[name] " ", " " pair[1] " ") && greater(number(pair[2]), best[name]))
                    best[name] = number(pair[2])
            }
            for (i = 1; i <= families; i++) {
                name = order[i]
                start = name " symbols up to " top[name] " are needed"
                if (lacks[name] != "")
                    print "FAILS: " start ", " (best[name] == "" ? "none" : "up to " best[name]) \
                        " are there; missing:" lacks[name] "."
                else if (silent[name] != "")
                    print "ok: " start "; " silent[name] " states no versions, so the loader does not ask."
                else
                    print "ok: " start ", up to " best[name] " are there."
            }
        }' "$work/versions" >"$work/sentences"
    cat "$work/sentences"
    ! grep -q '^FAILS' "$work/sentences" || failed=1
}

# Every symbol that no other library has must be in the host's.
check_host_symbols() {
    if [ $missing -eq 1 ]; then
        unknown "the symbols of libvel.so.1 were not compared, because libraries are missing."
        return
    fi
    while read -r name file; do
        [ "$name" = libvel.so.1 ] || exported "$file"
    done <"$work/found" | sort -u >"$work/others"
    imported "$library" | sort -u | comm -23 - "$work/others" >"$work/wanted"
    exported "$(find_library libvel.so.1)" | sort -u | comm -23 "$work/wanted" - >"$work/lacking"
    wanted=$(grep -c . "$work/wanted")
    lacking=$(grep -c . "$work/lacking")
    if [ -s "$work/lacking" ]; then
        fails "libvel.so.1 lacks $lacking of the $wanted symbols that the library imports from it: \
$(paste -s -d ' ' "$work/lacking"); build with VEL_ROOT against the host's framework."
    else
        holds "libvel.so.1 exports all $wanted symbols that the library imports from it."
    fi
}

# plugin_identifier: the interface identifier in the plug-in's metadata, which is CBOR behind 16 bytes: a map whose
# first key is 2 and has the identifier as text.
plugin_identifier() {
    readelf -x .qtmetadata "$library" 2>/dev/null | sed -n 's/^  0x[0-9a-f]* \(.\{35\}\).*/\1/p' | tr -d ' \n' | awk '
        function byte(i) {
            return 16 * (index(digits, substr($0, 2 * i + 1, 1)) - 1) + index(digits, substr($0, 2 * i + 2, 1)) - 1
        }
        BEGIN { digits = "0123456789abcdef" }
        substr($0, 33, 4) == "bf02" {
            length_ = byte(18) - 96
            start = 19
            if (length_ == 24) { length_ = byte(19); start = 20 }
            for (i = start; i < start + length_; i++) text = text sprintf("%c", byte(i))
            print text
        }'
}

# host_programs FOLDER...: libvel.so.1 and every program that names it. Other drivers are no witnesses: one may be an
# earlier, wrong build of this one. Neither is velhost, which is no host.
host_programs() {
    find_library libvel.so.1
    for folder in /bin /sbin /usr/bin /usr/sbin /usr/local/bin /usr/local/sbin /opt "$@"; do
        in_root "$folder"
        in_root "$folder/../bin"
    done | sort -u | while read -r place; do
        find "$place" -type f ! -name '*.so' ! -name '*.so.*' ! -name velhost \
            -exec grep -l 'libvel\.so\.1' {} + 2>/dev/null
    done
}

# Compares the interface identifier with the one that the host asks for, as far as that can be found.
check_identifier() {
    identifier=$(plugin_identifier)
    if [ -z "$identifier" ]; then
        fails "the library has no interface identifier: it is no Qt plug-in."
        return
    fi
    name=${identifier%/*}
    host_programs "$@" | sort -u | while read -r file; do
        readelf -p .rodata "$file" 2>/dev/null | awk -v name="${name##*.}/" -v file="${file#"$root"}" '
            index($0, name) {
                for (i = 1; i <= NF; i++)
                    if (match($i, /[A-Za-z0-9_.-]+\/[0-9][0-9.]*$/) && index($i, name))
                        print substr($i, RSTART), file
            }'
    done | sort -u >"$work/identifiers"
    witness=$(awk -v wanted="$identifier" '$1 == wanted { sub(/^[^ ]* /, ""); print; exit }' "$work/identifiers")
    if [ -n "$witness" ]; then
        holds "the interface identifier is $identifier, as in $witness."
    elif [ -s "$work/identifiers" ]; then
        read -r other file <"$work/identifiers"
        fails "the interface identifier is $identifier, but $file has $other; build with its VEL_INTERFACE_PREFIX."
    else
        unknown "the interface identifier $identifier: what the host asks for was not found; compare it by hand."
    fi
}

library_kind=$(kind "$library")
library_folders "$@" | awk '!seen[$0]++ && $0 != ""' >"$work/folders"
check_kind
check_libraries
check_versions
check_host_symbols
check_identifier "$@"

if [ $failed -eq 1 ]; then
    echo "The library will not work on this gateway."
    exit 1
fi
echo "Nothing that was found keeps the library from loading on this gateway."
