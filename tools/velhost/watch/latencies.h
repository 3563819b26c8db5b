#pragma once

#include <QtGlobal>

#include <array>

/// How long calls took, in memory that does not grow with their number: each is counted in a bucket
/// that is at most a 64th of its lower end wide. So a percentile is right within 0.8 percent, and
/// exact below 128 microseconds; the longest is always exact.
class Latencies
{
public:
    /// Counts one call; less than 0 counts as 0.
    void add(qint64 microseconds);

    /// Calls so far.
    qint64 count() const { return m_count; }

    /// The longest so far in microseconds, 0 without any.
    qint64 longest() const { return m_longest; }

    /// The shortest time in microseconds within which `percent` (1 to 100) of the calls were done;
    /// 0 without any.
    qint64 percentile(int percent) const;

private:
    static constexpr int bucketBits = 6;
    /// What lasts longer, some 50 days, is counted in the last bucket.
    static constexpr int maximumBits = 42;
    static constexpr int bucketCount = (maximumBits - bucketBits + 1) << bucketBits;

    static int bucketOf(qint64 microseconds);
    static qint64 middleOf(int bucket);

    std::array<qint64, bucketCount> m_buckets{};
    qint64 m_count = 0;
    qint64 m_shortest = 0;
    qint64 m_longest = 0;
};
