#pragma once

#include "cli/commandline.h"
#include "cycle/changes.h"

#include <vel/records.h>

#include <QList>
#include <QVector>

/// Prints cycles to standard output one after the other, as the command line wants them: for `read`
/// a table each, for `watch` a line for each change, for both of them records in JSON and CSV.
class CyclePrinter
{
public:
    /// Prints what stands above all cycles.
    CyclePrinter(const CommandLine &commandLine, const QList<DeviceInstancePlugin> &devices);

    void printCycle(const QList<DeviceReport> &devices);

private:
    QString textOf(const QList<DeviceReport> &devices) const;

    OutputFormat m_format;
    bool m_hasLines;
    bool m_onlyChanges;
    bool m_isFirst = true;
    QVector<int> m_lineWidths;
    Changes m_changes;
};
