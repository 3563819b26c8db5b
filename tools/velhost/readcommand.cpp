#include "readcommand.h"

#include "cycle.h"

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>

namespace {

/// Prints the cycle; true when nothing in it has an error.
bool printCycle(OutputFormat format, const QList<DeviceReport> &devices, bool isFirst)
{
    QString text = cycleText(format, devices);
    if (format == OutputFormat::Table && !isFirst)
        text.prepend(u'\n');
    print(stdout, text);
    return std::none_of(devices.begin(), devices.end(),
                        [](const DeviceReport &device) { return device.hasError(); });
}

} // namespace

ExitCode runRead(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices,
                 const CommandLine &commandLine)
{
    QList<LogList> lists = readLists(devices);
    ExitCode result = AllWell;
    for (int cycle = 1; cycle <= commandLine.cycles; ++cycle) {
        QElapsedTimer sinceStart;
        sinceStart.start();
        QList<DeviceReport> reports;
        for (LogList &list : lists)
            reports.append(readDevice(plugin, &list, cycle));
        if (!printCycle(commandLine.format, reports, cycle == 1))
            result = ErrorFound;
        const qint64 rest = commandLine.intervalMs - sinceStart.elapsed();
        if (cycle < commandLine.cycles && rest > 0)
            QThread::msleep(static_cast<unsigned long>(rest));
    }
    return result;
}
