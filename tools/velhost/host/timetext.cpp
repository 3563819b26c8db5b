#include "host/timetext.h"

QString timeText(const QDateTime &time)
{
    QString text = time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
    if (text.endsWith(u'Z')) {
        text.chop(1);
        text += u"+00:00";
    }
    return text;
}
