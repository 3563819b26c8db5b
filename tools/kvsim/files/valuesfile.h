#pragma once

#include "memory/generator.h"

#include <QStringList>

/// Reads a file with a value from `minimum` to `maximum` in each line, which holds for `period`
/// milliseconds. With period 0 a line has a time in milliseconds and a value, with a comma or a
/// semicolon between. Empty lines and lines that begin with '#' are skipped. Adds what is wrong
/// with the file.
Timeline readValuesFile(const QString &fileName, qint64 minimum, qint64 maximum, qint64 period,
                        QStringList *errors);
