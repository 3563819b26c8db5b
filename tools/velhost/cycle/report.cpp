#include "cycle/report.h"

#include <common/visibletext.h>

#include <algorithm>

namespace {

bool isUnchanged(const ItemReport &before, const ItemReport &now)
{
    return before.value == now.value && before.error == now.error && (now.isOld || !before.isOld);
}

} // namespace

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
            if (item >= last.values.size() || !isUnchanged(last.values.at(item), now))
                change.values.append(now);
        }
        changes.append(change);
    }
    return changes;
}
