#pragma once

#include "cycle/report.h"
#include "host/outputformat.h"

#include <vel/records.h>

#include <QList>
#include <QVector>

/// Prints cycles to standard output, in JSON and CSV as records.
class CyclePrinter
{
public:
    /// Prints the header, if there is one for all cycles. As a table each cycle has one of its own,
    /// or, with the devices, there is one header and then a line for each change.
    CyclePrinter(OutputFormat format, bool onlyChanges,
                 const QList<DeviceInstancePlugin> &lineDevices = {});

    void printCycle(const QList<DeviceReport> &devices);

private:
    OutputFormat m_format;
    bool m_onlyChanges;
    bool m_isFirst = true;
    /// Empty without lines.
    QVector<int> m_lineWidths;
    QList<DeviceReport> m_before;
};
