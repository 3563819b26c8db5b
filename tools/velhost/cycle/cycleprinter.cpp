#include "cycle/cycleprinter.h"

#include "cycle/cycletext.h"

#include <common/console.h>
#include <common/table.h>
#include <common/visibletext.h>

namespace {

constexpr int timeWidth = 29;
constexpr int valueWidth = 10;

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

CyclePrinter::CyclePrinter(OutputFormat format, bool onlyChanges,
                           const QList<DeviceInstancePlugin> &lineDevices)
    : m_format(format), m_onlyChanges(onlyChanges)
{
    if (format == OutputFormat::Csv)
        print(stdout, cycleCsvHeader());
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
