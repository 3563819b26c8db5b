#include "cycle/cycletext.h"

#include <common/csv.h>
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

namespace {

/// What is printed of a device: its own message, as if of an item without a name, then its items.
QList<ItemReport> entriesOf(const DeviceReport &device)
{
    QList<ItemReport> entries = device.values;
    if (device.errorEnded || !device.error.isEmpty())
        entries.prepend({device.time, {}, {}, device.error});
    return entries;
}

QStringList tableRow(const DeviceReport &device, const ItemReport &entry)
{
    const bool isEnd = entry.item.isEmpty() && device.errorEnded;
    return {QString::number(device.cycle),
            timeText(entry.time),
            visible(device.device),
            visible(entry.item),
            valueText(entry),
            isEnd ? QStringLiteral("no error any more") : itemProblem(entry)};
}

QString jsonEntry(const DeviceReport &device, const ItemReport &entry)
{
    const bool isItem = !entry.item.isEmpty();
    QList<JsonMember> members{
        {"cycle", device.cycle}, {"time", timeText(entry.time)}, {"device", device.device}};
    if (isItem)
        members += {{"item", entry.item}, {"value", entry.value}};
    if (entry.isOld)
        members.append({"old", true});
    members.append({"error", entry.error});
    if (entry.expected)
        members.append({"expected", *entry.expected});
    if (!entry.suspect.isEmpty())
        members.append({"suspect", entry.suspect});
    return jsonLine(isItem ? "value" : "device", members);
}

QString csvEntry(const DeviceReport &device, const ItemReport &entry)
{
    return csvRecord({QString::number(device.cycle), timeText(entry.time), device.device,
                      entry.item, entry.value, entry.isOld ? QStringLiteral("old") : QString(),
                      entry.error, entry.expected.value_or(QString()), entry.suspect});
}

} // namespace

QList<QStringList> cycleRows(const QList<DeviceReport> &devices)
{
    QList<QStringList> rows{QStringLiteral("Cycle,Time,Device,Item,Value,Error").split(u',')};
    for (const DeviceReport &device : devices) {
        const QList<ItemReport> entries = entriesOf(device);
        for (const ItemReport &entry : entries)
            rows.append(tableRow(device, entry));
    }
    return rows;
}

QString cycleCsvHeader()
{
    return QStringLiteral("cycle,time,device,item,value,old,error,expected,suspect\r\n");
}

QString cycleText(OutputFormat format, const QList<DeviceReport> &devices)
{
    if (format == OutputFormat::Table) {
        const QList<QStringList> rows = cycleRows(devices);
        return rows.size() > 1 ? tableText(rows) : QString();
    }
    const auto textOf = format == OutputFormat::Csv ? csvEntry : jsonEntry;
    QString lines;
    for (const DeviceReport &device : devices) {
        const QList<ItemReport> entries = entriesOf(device);
        for (const ItemReport &entry : entries)
            lines += textOf(device, entry);
    }
    return lines;
}
