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

/// A timeline in which each value holds for `period` milliseconds. It starts again after the last
/// one, unless `once`.
Timeline evenTimeline(const QVector<qint64> &values, qint64 period, bool once);

/// Reads a file with a value from `minimum` to `maximum` in each line, which holds for `period`
/// milliseconds. With period 0 a line has a time in milliseconds and a value, with a comma or a
/// semicolon between. Unless `once`, the timeline starts again: with times, when the last value has
/// held as long as the one before it. Empty lines and lines that begin with '#' are skipped.
ValuesFile readValuesFile(const QString &fileName, qint64 minimum, qint64 maximum, qint64 period,
                          bool once);
