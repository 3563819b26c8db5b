#include "cycle/cycleprinter.h"

#include "cycle/changelines.h"
#include "cycle/csv.h"
#include <common/console.h>

CyclePrinter::CyclePrinter(const CommandLine &commandLine,
                           const QList<DeviceInstancePlugin> &devices)
    : m_format(commandLine.format),
      m_hasLines(commandLine.command == Command::Watch && m_format == OutputFormat::Table),
      m_onlyChanges(m_hasLines || commandLine.onlyChanges), m_lineWidths(changeLineWidths(devices))
{
    if (m_format == OutputFormat::Csv)
        print(stdout, cycleCsvHeader());
    if (m_hasLines)
        print(stdout, changeLineHeader(m_lineWidths));
}

void CyclePrinter::printCycle(const QList<DeviceReport> &devices)
{
    QString text = textOf(m_onlyChanges ? m_changes.take(devices) : devices);
    if (text.isEmpty())
        return;
    if (m_format == OutputFormat::Table && !m_hasLines && !m_isFirst)
        text.prepend(u'\n');
    m_isFirst = false;
    print(stdout, text);
}

QString CyclePrinter::textOf(const QList<DeviceReport> &devices) const
{
    return m_hasLines ? changeLines(devices, m_lineWidths) : cycleText(m_format, devices);
}
