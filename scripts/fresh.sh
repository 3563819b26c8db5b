#!/bin/sh
# fresh.sh [COMMAND...]: runs each command, default the demonstration and the tests, as the first one ever on a bare
# Debian 12: in a root folder of its own that holds the smallest system and a clone of what is committed here. At the
# end it prints exit code and seconds of each. A machine that has seen an earlier run does not show what a script
# forgets to install.
#
# The bare system is kept in build/fresh for the next time. It comes from Debian's own archive, or from the one that
# FRESH_MIRROR names.
# Exit code: 0 all commands ended with 0, 1 one did not, 3 a root cannot be made here.
set -eu
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- scripts/demo.sh scripts/test.sh

folder=$PWD/build/fresh
system=$folder/bookworm.tar
root=$folder/root

give_up() {
    echo "fresh: no root can be made here: $1" >&2
    exit 3
}

[ "$(id -u)" -eq 0 ] || give_up "only root may; run this as root."
unshare --mount --pid --fork --root=/ --mount-proc true ||
    give_up "this machine lets no process have mounts and process numbers of its own; see the message above."
scripts/install-packages.sh bare-system || give_up "packages are missing; see the message above."
mkdir -p "$folder"
if [ ! -f "$system" ]; then
    echo "Making a bare Debian 12"
    mmdebstrap --quiet --variant=minbase bookworm "$folder/unfinished.tar" ${FRESH_MIRROR:+"$FRESH_MIRROR"} ||
        give_up "mmdebstrap failed; see its messages above."
    mv "$folder/unfinished.tar" "$system"
fi
[ -z "$(git status --porcelain)" ] || echo "fresh: what is not committed is not in the clone." >&2

remove_root() {
    rm -rf --one-file-system "$root"
}
trap remove_root EXIT
trap 'exit 1' HUP INT TERM

make_root() {
    remove_root
    mkdir "$root"
    tar --extract --file="$system" --directory="$root" || give_up "$system cannot be unpacked."
    cp /etc/resolv.conf "$root/etc" || give_up "there is no /etc/resolv.conf, so no package would be found."
    git clone --quiet --no-hardlinks . "$root/root/libkeyence" || give_up "this folder cannot be cloned."
}

# run COMMAND: in the root. No process of it is left behind.
run() {
    # shellcheck disable=SC2016 # for the inner shell
    env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM="${TERM:-dumb}" \
        ${http_proxy:+"http_proxy=$http_proxy"} ${https_proxy:+"https_proxy=$https_proxy"} \
        unshare --mount --pid --fork --kill-child sh -c '
            mount --rbind /dev "$1/dev"
            exec unshare --mount --root="$1" --wd=/root/libkeyence --mount-proc sh -c "$2"' \
        sh "$root" "$1" </dev/null
}

report=
failed=0
for command in "$@"; do
    echo "== $command"
    make_root
    begin=$(date +%s)
    status=0
    run "$command" || status=$?
    [ "$status" -eq 0 ] || failed=1
    report=$report$(printf '\n%9s  %7s  %s' "$status" "$(($(date +%s) - begin))" "$command")
done
printf 'Exit code  Seconds  Command, the first one on a bare machine%s\n' "$report"
exit $failed
