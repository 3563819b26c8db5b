#include "host/timetext.h"

QString timeText(const QDateTime &time)
{
    QString text = time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
    return text.replace(u'Z', QStringLiteral("+00:00"));
}
