#include "cycle/cycletext.h"

#include <common/csv.h>
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

namespace {

QString deviceJsonLines(const DeviceReport &device)
{
    QString lines;
    TimeTexts times;
    const JsonMember cycle("cycle", device.cycle);
    const JsonMember name("device", device.device);
    if (device.hasMessage())
        lines += jsonLine(
            "device", {cycle, {"time", times.text(device.time)}, name, {"error", device.error}});
    for (const ItemReport &item : device.values) {
        QList<JsonMember> members{cycle,
                                  {"time", times.text(item.time)},
                                  name,
                                  {"item", item.item},
                                  {"value", item.value}};
        if (item.isOld)
            members.append({"old", true});
        members.append({"error", item.error});
        if (item.expected)
            members.append({"expected", *item.expected});
        if (!item.suspect.isEmpty())
            members.append({"suspect", item.suspect});
        lines += jsonLine("value", members);
    }
    return lines;
}

void appendDeviceRows(const DeviceReport &device, QList<QStringList> *rows)
{
    const QString cycle = QString::number(device.cycle);
    const QString name = visible(device.device);
    TimeTexts times;
    if (device.hasMessage())
        rows->append(
            {cycle, times.text(device.time), name, {}, {}, visible(deviceMessage(device))});
    for (const ItemReport &item : device.values)
        rows->append({cycle, times.text(item.time), name, visible(item.item), valueText(item),
                      itemProblem(item)});
}

QString cycleTable(const QList<DeviceReport> &devices)
{
    QList<QStringList> rows{{QStringLiteral("Cycle"), QStringLiteral("Time"),
                             QStringLiteral("Device"), QStringLiteral("Item"),
                             QStringLiteral("Value"), QStringLiteral("Error")}};
    for (const DeviceReport &device : devices)
        appendDeviceRows(device, &rows);
    return rows.size() > 1 ? tableText(rows) : QString();
}

QString cycleCsv(const QList<DeviceReport> &devices)
{
    QString records;
    TimeTexts times;
    for (const DeviceReport &device : devices) {
        const QString cycle = QString::number(device.cycle);
        if (device.hasMessage())
            records += csvRecord(
                {cycle, times.text(device.time), device.device, {}, {}, {}, device.error, {}, {}});
        for (const ItemReport &item : device.values) {
            const QString isOld = item.isOld ? QStringLiteral("old") : QString();
            records
                += csvRecord({cycle, times.text(item.time), device.device, item.item, item.value,
                              isOld, item.error, item.expected.value_or(QString()), item.suspect});
        }
    }
    return records;
}

} // namespace

QString cycleCsvHeader()
{
    return csvRecord({QStringLiteral("cycle"), QStringLiteral("time"), QStringLiteral("device"),
                      QStringLiteral("item"), QStringLiteral("value"), QStringLiteral("old"),
                      QStringLiteral("error"), QStringLiteral("expected"),
                      QStringLiteral("suspect")});
}

QString cycleText(OutputFormat format, const QList<DeviceReport> &devices)
{
    if (format == OutputFormat::Table)
        return cycleTable(devices);
    if (format == OutputFormat::Csv)
        return cycleCsv(devices);
    QString lines;
    for (const DeviceReport &device : devices)
        lines += deviceJsonLines(device);
    return lines;
}
