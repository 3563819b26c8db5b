#include "host/timetext.h"

QString timeText(const QDateTime &time)
{
    // The system looks up its time zone in a file each time, and many items have the same time.
    static thread_local QDateTime last;
    static thread_local QString text;
    // Equal times of other kinds can have different offsets.
    const bool isSame
        = last.timeSpec() == Qt::LocalTime && time.timeSpec() == Qt::LocalTime && last == time;
    if (!isSame || text.isEmpty()) {
        last = time;
        text = time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
        text.replace(u'Z', QStringLiteral("+00:00"));
    }
    return text;
}
