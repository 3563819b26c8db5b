#pragma once

#include <QDateTime>
#include <QString>

/// ISO 8601 with milliseconds and the offset from UTC, in the time's own zone.
QString timeText(const QDateTime &time);
