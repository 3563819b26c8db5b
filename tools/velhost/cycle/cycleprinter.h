#pragma once

#include "cycle/report.h"
#include "host/outputformat.h"

#include <vel/records.h>

#include <QList>
#include <QString>
#include <QVector>

/// The devices of one cycle with their items; in CSV without the header. The message of a device
/// stands before its items. Empty when there is nothing to print.
QString cycleText(OutputFormat format, const QList<DeviceReport> &devices);

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
