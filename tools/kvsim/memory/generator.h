#pragma once

#include <QVector>

#include <functional>

/// A value that changes by itself: what it is so many milliseconds after the start. The same time
/// gives the same value.
using Generator = std::function<qint64(qint64 elapsed)>;

/// From `from` to `to`, both included, by even steps, once in `period` and then again.
Generator ramp(qint64 from, qint64 to, qint64 period);

/// `mean` and up to `amplitude` above and below it, rounded.
Generator sine(qint64 mean, qint64 amplitude, qint64 period);

/// `high` for the first half of each period, then `low`.
Generator square(qint64 low, qint64 high, qint64 period);

/// Another number from `minimum` to `maximum` in each period, all as likely. The same seed gives
/// the same numbers.
Generator randomNumbers(qint64 minimum, qint64 maximum, qint64 period, quint32 seed);

/// Values with the times at which they begin.
struct Timeline
{
    /// Rising; the first value is there before its time too.
    QVector<qint64> times;
    /// As many, at least one.
    QVector<qint64> values;
    /// When it starts over; 0: never, the last value stays.
    qint64 length = 0;
};

Generator replay(Timeline timeline);
