#include "sidebyside.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>

#include <sched.h>

namespace {

double microsecondsOf(const Variant &variant)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    variant.run();
    const std::chrono::duration<double, std::micro> time = Clock::now() - begin;
    variant.cleanUp();
    return time.count();
}

} // namespace

void stayOnOneProcessor()
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(::sched_getcpu()), &one);
    if (::sched_setaffinity(0, sizeof one, &one) != 0)
        std::fprintf(stderr, "not pinned to one processor: expect a wider spread\n");
}

std::vector<Times> inTurns(const std::vector<Variant> &variants, int parts)
{
    for (const Variant &variant : variants)
        microsecondsOf(variant);
    std::vector<Times> times(variants.size());
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t turn = 0; turn < variants.size(); ++turn) {
            const std::size_t next = (round + turn) % variants.size();
            times[next].push_back(microsecondsOf(variants[next]) / parts);
        }
    }
    return times;
}

Times ratios(const Times &longer, const Times &shorter)
{
    Times result;
    for (std::size_t round = 0; round < longer.size(); ++round)
        result.push_back(longer[round] / shorter[round]);
    return result;
}

void printHeader()
{
    std::printf("figure,size,median,least,greatest\n");
}

void printFigure(const std::string &name, int size, Times values)
{
    std::sort(values.begin(), values.end());
    const double median = (values[values.size() / 2] + values[(values.size() - 1) / 2]) / 2;
    std::printf("%s,%d,%.3f,%.3f,%.3f\n", name.c_str(), size, median, values.front(),
                values.back());
    std::fflush(stdout);
}
