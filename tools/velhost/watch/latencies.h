#pragma once

#include <QtGlobal>

#include <array>

/// A histogram of durations, whose memory does not grow with their number. The width of a bucket is
/// at most a 64th of its lower end. So a percentile is right within 0.8 percent, and exact below
/// 128 microseconds. The longest duration is always exact.
class Latencies
{
public:
    /// Adds a call; a negative time counts as 0.
    void add(qint64 microseconds);

    /// The number of calls.
    qint64 count() const { return m_count; }

    /// The longest call in microseconds; 0 without any.
    qint64 longest() const { return m_longest; }

    /// The time in microseconds within which `percent` (1 to 100) of the calls returned; 0 without
    /// any.
    qint64 percentile(int percent) const;

private:
    static constexpr int bucketBits = 6;
    /// Longer calls, of about 50 days, are counted in the last bucket.
    static constexpr int maximumBits = 42;
    static constexpr int bucketCount = (maximumBits - bucketBits + 1) << bucketBits;

    static int bucketOf(qint64 microseconds);
    static qint64 middleOf(int bucket);

    std::array<qint64, bucketCount> m_buckets{};
    qint64 m_count = 0;
    qint64 m_shortest = 0;
    qint64 m_longest = 0;
};
