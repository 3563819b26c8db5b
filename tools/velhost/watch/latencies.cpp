#include "watch/latencies.h"

#include <QtAlgorithms>

#include <algorithm>

void Latencies::add(qint64 microseconds)
{
    const qint64 time = std::max<qint64>(microseconds, 0);
    m_shortest = m_count == 0 ? time : std::min(m_shortest, time);
    m_longest = std::max(m_longest, time);
    ++m_count;
    ++m_buckets.at(static_cast<std::size_t>(bucketOf(time)));
}

qint64 Latencies::percentile(int percent) const
{
    if (m_count == 0)
        return 0;
    // Rounded up; the obvious product could overflow.
    const qint64 wanted = m_count / 100 * percent + (m_count % 100 * percent + 99) / 100;
    int bucket = 0;
    qint64 counted = m_buckets.front();
    while (counted < wanted)
        counted += m_buckets.at(static_cast<std::size_t>(++bucket));
    return qBound(m_shortest, middleOf(bucket), m_longest);
}

/// The first 128 buckets are one microsecond wide. After them each doubling of the time has 64
/// buckets, each twice as wide as those before.
int Latencies::bucketOf(qint64 microseconds)
{
    const qint64 time = std::min(microseconds, (Q_INT64_C(1) << maximumBits) - 1);
    const int usedBits = 64 - static_cast<int>(qCountLeadingZeroBits(static_cast<quint64>(time)));
    const int shift = std::max(usedBits - bucketBits - 1, 0);
    return (shift << bucketBits) + static_cast<int>(time >> shift);
}

qint64 Latencies::middleOf(int bucket)
{
    const int shift = std::max((bucket >> bucketBits) - 1, 0);
    const qint64 lower = static_cast<qint64>(bucket - (shift << bucketBits)) << shift;
    return lower + (Q_INT64_C(1) << shift) / 2;
}
