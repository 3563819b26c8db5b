#include "write/writecommand.h"

#include "cycle/cycle.h"
#include "write/writeoutput.h"

#include <algorithm>

namespace {

ExitCode writeOnly(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
                   const Host &host)
{
    QList<LogList> lists = writeLists(devices, job.assignments);
    QList<DeviceReport> reports;
    for (LogList &list : lists)
        reports.append(writeDevice(plugin, &list, 1, host));
    print(stdout, cycleText(job.commandLine.format, reports));
    const bool failed = std::any_of(reports.begin(), reports.end(),
                                    [](const DeviceReport &device) { return device.hasError(); });
    return failed ? ErrorFound : AllWell;
}

} // namespace

ExitCode runWrite(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
                  const Host &host)
{
    if (!job.commandLine.verifies)
        return writeOnly(plugin, devices, job, host);
    QList<WriteReport> reports;
    for (const Assignment &assignment : job.assignments)
        reports.append(writeVerified(plugin, devices.at(assignment.device), assignment, host));
    print(stdout, writesText(job.commandLine.format, reports));
    const bool failed = std::any_of(reports.begin(), reports.end(), [](const WriteReport &report) {
        return !report.error.isEmpty();
    });
    return failed ? ErrorFound : AllWell;
}
