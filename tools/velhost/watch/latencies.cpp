#include "watch/latencies.h"

#include <algorithm>

void Latencies::add(qint64 microseconds)
{
    qint64 unit = 1;
    while (microseconds / unit >= 1000)
        unit *= 10;
    ++m_counts[(microseconds + unit / 2) / unit * unit];
    ++m_count;
    m_longest = std::max(m_longest, microseconds);
}

qint64 Latencies::percentile(int percent) const
{
    const qint64 wanted = (m_count * percent + 99) / 100;
    qint64 counted = 0;
    for (const auto &[time, count] : m_counts) {
        counted += count;
        if (counted >= wanted)
            return std::min(time, m_longest);
    }
    return 0;
}
