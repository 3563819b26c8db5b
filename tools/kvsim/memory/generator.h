#pragma once

#include <QVector>

#include <functional>

/// Gives the value that a word or bit has so many milliseconds after the start. The same time gives
/// the same value.
using Generator = std::function<qint64(qint64 elapsed)>;

/// Goes from `from` to `to`, both included, in even steps, and starts again after each period.
Generator ramp(qint64 from, qint64 to, qint64 period);

/// A sine wave around `mean`, at most `amplitude` above and below it, rounded.
Generator sine(qint64 mean, qint64 amplitude, qint64 period);

/// `high` for the first half of each period, then `low`.
Generator square(qint64 low, qint64 high, qint64 period);

/// A random number from `minimum` to `maximum`, a new one in each period, all equally likely. The
/// same seed gives the same numbers.
Generator randomNumbers(qint64 minimum, qint64 maximum, qint64 period, quint32 seed);

/// Values with the times at which they begin.
struct Timeline
{
    /// In rising order. The first value also holds before its time.
    QVector<qint64> times;
    /// One for each time, at least one.
    QVector<qint64> values;
};

/// The values at their times. They start again when the last one has held as long as the one before
/// it; if `once`, the last one stays.
Generator replay(Timeline timeline, bool once);
