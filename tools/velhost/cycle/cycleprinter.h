#pragma once

#include "cycle/changefilter.h"
#include "host/outputformat.h"

#include <vel/records.h>

#include <QList>
#include <QVector>

/// Prints cycles to standard output one after the other: in JSON and CSV as records.
class CyclePrinter
{
public:
    enum class Content {
        Everything, ///< for people a table a cycle
        Changes,    ///< the same of what has changed
        ChangeLines ///< for people a line for each change, below one header
    };

    /// Prints what stands above all cycles.
    CyclePrinter(OutputFormat format, Content content, const QList<DeviceInstancePlugin> &devices);

    void printCycle(const QList<DeviceReport> &devices);

private:
    OutputFormat m_format;
    bool m_hasLines;
    bool m_onlyChanges;
    bool m_isFirst = true;
    QVector<int> m_lineWidths;
    ChangeFilter m_changeFilter;
};
