#include "cycle/cycleprinter.h"

#include "host/timetext.h"

#include <common/console.h>
#include <common/csv.h>
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

namespace {

constexpr int timeWidth = 29;
constexpr int valueWidth = 10;
const QString cycleCsvHeader
    = QStringLiteral("cycle,time,device,item,value,old,error,expected,suspect\r\n");

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

/// The rows of a table of one cycle, below a header.
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

/// The widths of the columns before the error, so that lines that are printed one by one are
/// aligned. The lengths of the values are not known before, so that column has a fixed width.
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

/// Rows of a table without the cycle, as lines with these widths.
QString changeLines(const QList<QStringList> &rows, const QVector<int> &widths)
{
    QString lines;
    for (const QStringList &row : rows)
        lines += tableLine(row.mid(1), widths);
    return lines;
}

} // namespace

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

CyclePrinter::CyclePrinter(OutputFormat format, bool onlyChanges,
                           const QList<DeviceInstancePlugin> &lineDevices)
    : m_format(format), m_onlyChanges(onlyChanges)
{
    if (format == OutputFormat::Csv)
        print(stdout, cycleCsvHeader);
    if (lineDevices.isEmpty())
        return;
    m_lineWidths = changeLineWidths(lineDevices);
    print(stdout, changeLines(cycleRows({}), m_lineWidths));
}

void CyclePrinter::printCycle(const QList<DeviceReport> &devices)
{
    const QList<DeviceReport> shown = m_onlyChanges ? changesOf(m_before, devices) : devices;
    m_before = devices;
    if (!m_lineWidths.isEmpty()) {
        print(stdout, changeLines(cycleRows(shown).mid(1), m_lineWidths));
        return;
    }
    QString text = cycleText(m_format, shown);
    if (text.isEmpty())
        return;
    if (m_format == OutputFormat::Table && !m_isFirst)
        text.prepend(u'\n');
    m_isFirst = false;
    print(stdout, text);
}
