#include "cycle/report.h"

#include <common/visibletext.h>

#include <algorithm>

bool DeviceReport::hasError() const
{
    return !error.isEmpty()
           || std::any_of(values.begin(), values.end(),
                          [](const ItemReport &item) { return !itemProblem(item).isEmpty(); });
}

QString valueText(const ItemReport &item)
{
    QString text = visible(item.value);
    if (item.isOld)
        text += u" (old)";
    return text;
}

QString itemProblem(const ItemReport &item)
{
    if (!item.error.isEmpty())
        return visible(item.error);
    if (!item.suspect.isEmpty())
        return u"suspect: " + item.suspect;
    return item.expected ? QStringLiteral("expected \"%1\"").arg(visible(*item.expected))
                         : QString();
}

QString reasonOf(const ItemReport &item)
{
    return item.error.section(u'<' + item.item + u"> :", -1);
}
