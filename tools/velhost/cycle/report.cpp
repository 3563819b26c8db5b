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
    return visible(item.value) + (item.isOld ? QStringLiteral(" (old)") : QString());
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

QList<DeviceReport> changesOf(const QList<DeviceReport> &before, const QList<DeviceReport> &devices)
{
    const auto isSame = [](const ItemReport &last, const ItemReport &now) {
        return last.value == now.value && last.error == now.error && last.suspect == now.suspect
               && (now.isOld || !last.isOld);
    };
    QList<DeviceReport> changes;
    for (int i = 0; i < devices.size(); ++i) {
        const DeviceReport last = before.value(i);
        DeviceReport change = devices.at(i);
        change.errorEnded = change.error.isEmpty() && !last.error.isEmpty();
        if (change.error == last.error)
            change.error.clear();
        change.values.clear();
        for (int item = 0; item < devices.at(i).values.size(); ++item) {
            const ItemReport &now = devices.at(i).values.at(item);
            if (item >= last.values.size() || !isSame(last.values.at(item), now))
                change.values.append(now);
        }
        changes.append(change);
    }
    return changes;
}
