#pragma once

#include <QtGlobal>

#include <map>

/// Durations of calls, counted by their first three digits, so that the memory does not grow with
/// their number. A percentile is right within 0.5 percent, and exact below 1000 microseconds. The
/// longest duration is always exact.
class Latencies
{
public:
    void add(qint64 microseconds);

    /// The number of calls.
    qint64 count() const { return m_count; }

    /// The longest call in microseconds; 0 without any.
    qint64 longest() const { return m_longest; }

    /// The time in microseconds within which `percent` (1 to 100) of the calls returned; 0 without
    /// any.
    qint64 percentile(int percent) const;

private:
    /// By the rounded time.
    std::map<qint64, qint64> m_counts;
    qint64 m_count = 0;
    qint64 m_longest = 0;
};
