#pragma once

#include "memory/generator.h"

#include <QString>
#include <QStringList>

/// What a file of values holds, or what is wrong with it.
struct ValuesFile
{
    Timeline timeline;
    QStringList errors;
};

/// The values, each for so many milliseconds; then again from the first, unless `once`.
Timeline evenTimeline(const QVector<qint64> &values, qint64 period, bool once);

/// Reads a file with a value from `minimum` to `maximum` in each line, each for `period`
/// milliseconds; with period 0 a time in milliseconds and a value, a comma or a semicolon between.
/// Then again from the first, unless `once`; with times, when the last value was there as long as
/// the one before it. Empty lines and lines that begin with '#' say nothing.
ValuesFile readValuesFile(const QString &fileName, qint64 minimum, qint64 maximum, qint64 period,
                          bool once);
