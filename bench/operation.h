#pragma once

#include "allocations.h"

#include <benchmark/benchmark.h>

#include <string>

/// Adds a benchmark of one operation: its time, and its allocations a call.
template<typename Operation>
void addOperation(const std::string &name, Operation operation)
{
    const auto run = [operation](benchmark::State &state) {
        const long before = allocationCount();
        for ([[maybe_unused]] const auto round : state)
            benchmark::DoNotOptimize(operation());
        state.counters["allocations"] = benchmark::Counter(
            static_cast<double>(allocationCount() - before), benchmark::Counter::kAvgIterations);
    };
#ifdef __clang_analyzer__
    // It would take for a leak what the library keeps.
    (void)name, (void)run;
#else
    benchmark::RegisterBenchmark(name.c_str(), run);
#endif
}

/// Runs what was added, with the arguments of Google Benchmark; returns the program's exit code.
inline int runOperations(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
