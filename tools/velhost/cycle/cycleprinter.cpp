#include "cycle/cycleprinter.h"

#include "cycle/changelines.h"
#include "cycle/cycletext.h"

#include <common/console.h>

CyclePrinter::CyclePrinter(OutputFormat format, Content content,
                           const QList<DeviceInstancePlugin> &devices)
    : m_format(format), m_hasLines(content == Content::ChangeLines),
      m_onlyChanges(content != Content::Everything), m_lineWidths(changeLineWidths(devices))
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
