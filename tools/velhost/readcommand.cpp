#include "readcommand.h"

#include "changes.h"
#include "csv.h"
#include "cycle.h"
#include "stopsignals.h"

#include <QElapsedTimer>

#include <algorithm>

namespace {

bool hasError(const QList<DeviceReport> &devices)
{
    return std::any_of(devices.begin(), devices.end(),
                       [](const DeviceReport &device) { return device.hasError(); });
}

/// Prints cycles one after the other, as the command line wants them.
class CyclePrinter
{
public:
    explicit CyclePrinter(const CommandLine &commandLine)
        : m_format(commandLine.format), m_onlyChanges(commandLine.onlyChanges)
    {
        if (m_format == OutputFormat::Csv)
            print(stdout, cycleCsvHeader());
    }

    void printCycle(const QList<DeviceReport> &devices)
    {
        QString text = cycleText(m_format, m_onlyChanges ? m_changes.take(devices) : devices);
        if (text.isEmpty())
            return;
        if (m_format == OutputFormat::Table && !m_isFirst)
            text.prepend(u'\n');
        m_isFirst = false;
        print(stdout, text);
    }

private:
    OutputFormat m_format;
    bool m_onlyChanges;
    bool m_isFirst = true;
    Changes m_changes;
};

} // namespace

ExitCode runRead(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices,
                 const CommandLine &commandLine)
{
    StopSignals stopSignals;
    CyclePrinter printer(commandLine);
    QList<LogList> lists = readLists(devices);
    ExitCode result = AllWell;
    for (int cycle = 1; cycle <= commandLine.cycles; ++cycle) {
        QElapsedTimer sinceStart;
        sinceStart.start();
        QList<DeviceReport> reports;
        for (LogList &list : lists)
            reports.append(readDevice(plugin, &list, cycle));
        printer.printCycle(reports);
        if (hasError(reports))
            result = ErrorFound;
        const bool isLast = cycle == commandLine.cycles;
        const int signal
            = stopSignals.wait(isLast ? 0 : commandLine.intervalMs - sinceStart.elapsed());
        if (signal != 0)
            return signal == SIGINT ? Interrupted : Terminated;
    }
    return result;
}
