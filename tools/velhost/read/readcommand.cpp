#include "read/readcommand.h"

#include "cycle/cycle.h"
#include "cycle/cycleprinter.h"
#include "host/stopsignals.h"

#include <QElapsedTimer>

#include <algorithm>

namespace {

bool hasError(const QList<DeviceReport> &devices)
{
    return std::any_of(devices.begin(), devices.end(),
                       [](const DeviceReport &device) { return device.hasError(); });
}

} // namespace

ExitCode runRead(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices,
                 const CommandLine &commandLine)
{
    StopSignals stopSignals;
    CyclePrinter printer(commandLine, devices);
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
