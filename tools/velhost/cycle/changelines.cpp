#include "cycle/changelines.h"

#include <common/table.h>
#include <common/textwidth.h>

#include <common/visibletext.h>

namespace {

constexpr int timeWidth = 29;
constexpr int valueWidth = 10;

QString line(const QStringList &cells, const QVector<int> &widths)
{
    QString text;
    for (int column = 0; column < cells.size(); ++column)
        text += paddedToWidth(cells.at(column), widths.value(column) + 2);
    while (text.endsWith(u' '))
        text.chop(1);
    return text + u'\n';
}

} // namespace

QVector<int> changeLineWidths(const QList<DeviceInstancePlugin> &devices)
{
    QList<QStringList> names{{QStringLiteral("Device"), QStringLiteral("Item")}};
    for (const DeviceInstancePlugin &device : devices) {
        names.append({visible(device.name), QString()});
        for (const ItemInstancePlugin &item : device.items)
            names.append({QString(), visible(item.name)});
    }
    return QVector<int>{timeWidth} + columnWidths(names) + QVector<int>{valueWidth};
}

QString changeLineHeader(const QVector<int> &widths)
{
    return line({QStringLiteral("Time"), QStringLiteral("Device"), QStringLiteral("Item"),
                 QStringLiteral("Value"), QStringLiteral("Error")},
                widths);
}

QString changeLines(const QList<DeviceReport> &devices, const QVector<int> &widths)
{
    QString lines;
    for (const DeviceReport &device : devices) {
        const QString name = visible(device.device);
        if (device.hasMessage())
            lines += line({timeText(device.time), name, {}, {}, visible(deviceMessage(device))},
                          widths);
        for (const ItemReport &item : device.values)
            lines += line({timeText(item.time), name, visible(item.item), valueText(item),
                           visible(itemProblem(item))},
                          widths);
    }
    return lines;
}
