#!/bin/sh
# fuzz.sh [SECONDS]: feeds the fuzz targets with what libFuzzer makes of their corpora, two at a time, for so many
# seconds in all, default 120. What it finds worth keeping stays in build/fuzz/corpus, where the next run begins. A
# finding ends with 1 and stays in build/fuzz/findings.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh fuzz

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

findings=build/fuzz/findings
logs=build/fuzz/logs
mkdir -p $findings $logs
# A target that ends in the middle leaves its temporary files.
TMPDIR=$(mktemp -d)
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

targets=$(ls fuzz/corpus)
# shellcheck disable=SC2086 # one word a target
set -- "${1:-120}" $targets
share=$(($1 * 2 / ($# - 1)))
[ $share -gt 0 ] || share=1
shift

# options TARGET: what AddressSanitizer is told. Qt keeps the memory of an object in JSON whose key is given again
# behind it. What a file is read into has 16 MiB, which would be mapped anew each time below the threshold.
options() {
    case $1 in
    *file) echo detect_leaks=0:clear_shadow_mmap_threshold=100000000 ;;
    *) echo detect_leaks=1 ;;
    esac
}

# run_target TARGET: its exit code and what it says stand in the logs.
run_target() {
    mkdir -p "build/fuzz/corpus/$1"
    status=0
    ASAN_OPTIONS=$(options "$1") "build/fuzz/bin/fuzz_$1" -max_total_time=$share -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$findings/$1-" "build/fuzz/corpus/$1" "fuzz/corpus/$1" \
        >"$logs/$1.log" 2>&1 </dev/null || status=$?
    echo $status >"$logs/$1.status"
}

while [ $# -gt 0 ]; do
    run_target "$1" &
    shift
    if [ $# -gt 0 ]; then
        run_target "$1" &
        shift
    fi
    wait
done

# last NAME LOG: the last number behind the name.
last() {
    sed -n "s/.*$1: *\([0-9]*\).*/\1/p" "$2" | tail -n 1
}

found=
printf '%-12s %12s %8s %8s %8s %9s\n' Target Executions Corpus Coverage Features Findings
for target in $targets; do
    log=$logs/$target.log
    executions=$(last stat::number_of_executed_units "$log")
    finding=0
    if [ "$(cat "$logs/$target.status")" -ne 0 ] || [ "${executions:-0}" -eq 0 ]; then
        finding=1
        found="$found $target"
    fi
    printf '%-12s %12s %8s %8s %8s %9s\n' "$target" "${executions:--}" "$(last corp "$log")" \
        "$(last cov "$log")" "$(last ft "$log")" $finding
done

for target in $found; do
    log=$logs/$target.log
    echo
    echo "$target, all of it in $log:"
    grep -E 'It does not hold|runtime error:|^SUMMARY|^actual|^==.*ERROR' "$log" || tail -n 5 "$log"
    artefact=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    [ -z "$artefact" ] || echo "Repeat it with: ASAN_OPTIONS=$(options "$target") build/fuzz/bin/fuzz_$target $artefact"
done
[ -z "$found" ]
