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
    enum class Content {
        Everything, ///< as a table: one for each cycle
        Changes,    ///< as a table: the same, with the changes only
        ChangeLines ///< as a table: one header, then a line for each change
    };

    /// Prints the header, if there is one for all cycles.
    CyclePrinter(OutputFormat format, Content content, const QList<DeviceInstancePlugin> &devices);

    void printCycle(const QList<DeviceReport> &devices);

private:
    OutputFormat m_format;
    bool m_hasLines;
    bool m_onlyChanges;
    bool m_isFirst = true;
    QVector<int> m_lineWidths;
    QList<DeviceReport> m_before;
};
