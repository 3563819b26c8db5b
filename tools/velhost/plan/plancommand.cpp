#include "plan/plancommand.h"

#include "cycle/cycle.h"
#include "cycle/verifiedwrite.h"
#include "plan/plan.h"
#include "plan/planhost.h"

#include <algorithm>

namespace {

/// Why the device can never be served; empty when it can. The plug-in judges first, by a list
/// without items.
QString refusal(VELInterface *plugin, const DeviceInstancePlugin &device, quint16 recorderPort)
{
    LogList list{judgeable(device, recorderPort), {}};
    const DeviceReport report = readDevice(plugin, &list, 1);
    if (!report.error.isEmpty())
        return report.error;
    const QString port = device.parameters.value(QStringLiteral("port"));
    bool isNumber = false;
    const int number = port.toInt(&isNumber);
    if (isNumber && number >= 1 && number <= 65535)
        return {};
    return QStringLiteral("the port \"%1\" is no number from 1 to 65535: no connection is possible")
        .arg(port);
}

DeviceBudget budgetOf(const DeviceInstancePlugin &device, const QString &error)
{
    bool isNumber = false;
    const int timeout = device.parameters.value(QStringLiteral("timeout")).toInt(&isNumber);
    const bool isKnown = isNumber && timeout > 1;
    return {device.name, 0, isKnown ? std::optional(timeout) : std::nullopt, error};
}

Plan makePlan(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
              const Host &host, Recorder *recorder)
{
    Plan plan;
    for (const DeviceInstancePlugin &device : devices) {
        DeviceBudget budget = budgetOf(device, refusal(plugin, device, recorder->port()));
        const DeviceInstancePlugin target = redirected(device, recorder->port());
        for (int i = 0; i < device.items.size(); ++i) {
            PlannedItem item{device.name, device.items.at(i).name, false, {}, budget.error};
            if (budget.error.isEmpty()) {
                item.error = readItem(plugin, target, i).error;
                item.lines = recorder->takeLines();
            }
            budget.exchanges += item.lines.size();
            plan.items.append(item);
        }
        plan.budgets.append(budget);
    }
    for (const Assignment &assignment : job.assignments) {
        const DeviceInstancePlugin &device = devices.at(assignment.device);
        PlannedItem item{device.name,
                         device.items.at(assignment.item).name,
                         true,
                         {},
                         plan.budgets.at(assignment.device).error};
        if (item.error.isEmpty()) {
            item.error = writeError(plugin, redirected(device, recorder->port()), assignment, host);
            item.lines = recorder->takeLines();
        }
        plan.items.append(item);
    }
    return plan;
}

} // namespace

ExitCode runPlan(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
                 const Host &host, Recorder *recorder)
{
    const Plan plan = makePlan(plugin, devices, job, host, recorder);
    print(stdout, planText(job.commandLine.format, plan, job.commandLine.rttMs));
    const bool itemFailed
        = std::any_of(plan.items.begin(), plan.items.end(),
                      [](const PlannedItem &item) { return !item.error.isEmpty(); });
    const bool deviceFailed
        = std::any_of(plan.budgets.begin(), plan.budgets.end(),
                      [](const DeviceBudget &budget) { return !budget.error.isEmpty(); });
    return itemFailed || deviceFailed ? ErrorFound : AllWell;
}
