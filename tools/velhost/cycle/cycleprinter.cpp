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

QString changeLineHeader(const QVector<int> &widths)
{
    return tableLine({QStringLiteral("Time"), QStringLiteral("Device"), QStringLiteral("Item"),
                      QStringLiteral("Value"), QStringLiteral("Error")},
                     widths);
}

/// A line for each device with a message and for each item.
QString changeLines(const QList<DeviceReport> &devices, const QVector<int> &widths)
{
    QString lines;
    TimeTexts times;
    for (const DeviceReport &device : devices) {
        const QString name = visible(device.device);
        if (device.hasMessage())
            lines += tableLine(
                {times.text(device.time), name, {}, {}, visible(deviceMessage(device))}, widths);
        for (const ItemReport &item : device.values)
            lines += tableLine({times.text(item.time), name, visible(item.item), valueText(item),
                                itemProblem(item)},
                               widths);
    }
    return lines;
}

} // namespace

CyclePrinter::CyclePrinter(OutputFormat format, Content content,
                           const QList<DeviceInstancePlugin> &devices)
    : m_format(format), m_hasLines(content == Content::ChangeLines),
      m_onlyChanges(content != Content::Everything),
      m_lineWidths(m_hasLines ? changeLineWidths(devices) : QVector<int>())
{
    if (m_format == OutputFormat::Csv)
        print(stdout, cycleCsvHeader());
    if (m_hasLines)
        print(stdout, changeLineHeader(m_lineWidths));
}

void CyclePrinter::printCycle(const QList<DeviceReport> &devices)
{
    const QList<DeviceReport> shown = m_onlyChanges ? m_changeFilter.filter(devices) : devices;
    QString text = m_hasLines ? changeLines(shown, m_lineWidths) : cycleText(m_format, shown);
    if (text.isEmpty())
        return;
    if (m_format == OutputFormat::Table && !m_hasLines && !m_isFirst)
        text.prepend(u'\n');
    m_isFirst = false;
    print(stdout, text);
}
