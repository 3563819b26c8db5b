#!/bin/sh
# bench.sh: measures the plug-in and the programs, prints the table, and writes docs/performance.md with its plots.
# Nothing else should run on the machine meanwhile. It takes about five minutes, and needs an amd64 processor, because
# that is what the budget's instructions are counted on.
set -eu
cd "$(dirname "$0")/.."
[ "$(uname -m)" = x86_64 ] || {
    echo "bench: this is no amd64 machine; the programs in bench/ run on any, one by one." >&2
    exit 2
}

scripts/install-packages.sh bench
cmake --preset release >/dev/null
cmake --build --preset release --target bench_exchange bench_devices bench_tools bench_hostlink bench_itemdata tst_budget

programs=build/release/bin
results=build/bench
mkdir -p "$results"
for name in exchange devices tools; do
    echo "== bench_$name"
    "$programs/bench_$name" >"$results/$name.csv"
done
for name in hostlink itemdata; do
    echo "== bench_$name"
    "$programs/bench_$name" --benchmark_repetitions=16 --benchmark_min_time=0.02 --benchmark_report_aggregates_only=true \
        --benchmark_out="$results/$name.json" --benchmark_out_format=json >/dev/null
done
echo "== tst_budget"
"$programs/tst_budget" -o "$results/budget.xml,xml" -o -,txt

scripts/performance-page.py "$results"
