#include "plan/plancommand.h"

#include "cli/plantarguments.h"
#include "cycle/cycle.h"
#include "plan/plan.h"
#include "plan/recorder.h"
#include "plan/redirection.h"
#include "plant/rules.h"

#include <algorithm>

namespace {

constexpr int maximumRttMs = 60 * 1000;
constexpr int defaultRttMs = 1;
const QString rttOption = QStringLiteral("rtt");
const QString writeOption = QStringLiteral("write");

/// Why the plug-in never serves the device; empty when it can. The plug-in itself is asked first,
/// with a list without items.
QString refusal(VELInterface *plugin, const DeviceInstancePlugin &device, quint16 recorderPort)
{
    LogList list{redirectedWhereValid(device, recorderPort), {}};
    const DeviceReport report = readDevice(plugin, &list, 1);
    if (!report.error.isEmpty())
        return report.error;
    const QString port = device.parameters.value(QStringLiteral("port"));
    if (isUsablePort(port))
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

Plan makePlan(const Session &session, const QList<Assignment> &assignments, Recorder *recorder)
{
    VELInterface *const plugin = session.loaded.plugin;
    Plan plan;
    for (const DeviceInstancePlugin &device : session.devices) {
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
    for (const Assignment &assignment : assignments) {
        const DeviceInstancePlugin &device = session.devices.at(assignment.device);
        PlannedItem item{device.name,
                         device.items.at(assignment.item).name,
                         true,
                         {},
                         plan.budgets.at(assignment.device).error};
        if (item.error.isEmpty()) {
            item.error = writeError(session, redirected(device, recorder->port()), assignment);
            item.lines = recorder->takeLines();
        }
        plan.items.append(item);
    }
    return plan;
}

bool hasError(const Plan &plan)
{
    const bool itemFailed
        = std::any_of(plan.items.begin(), plan.items.end(),
                      [](const PlannedItem &item) { return !item.error.isEmpty(); });
    const bool deviceFailed
        = std::any_of(plan.budgets.begin(), plan.budgets.end(),
                      [](const DeviceBudget &budget) { return !budget.error.isEmpty(); });
    return itemFailed || deviceFailed;
}

ExitCode runPlan(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    const auto assignments = readAssignments(arguments.options.value(writeOption), *plant);
    if (!assignments)
        return WrongUsage;
    Recorder recorder;
    if (recorder.port() == 0) {
        printError(QStringLiteral("plan cannot listen on 127.0.0.1"));
        return ErrorFound;
    }
    SessionSetup setup = sessionSetup(arguments, *plant);
    setup.redirection = [port = recorder.port()](const DeviceInstancePlugin &device) {
        return redirected(device, port);
    };
    return runSession(setup, [&](const Session &session) {
        const Plan plan = makePlan(session, *assignments, &recorder);
        print(stdout, planText(arguments.format, plan, arguments.number(rttOption, defaultRttMs)));
        return hasError(plan) ? ErrorFound : AllWell;
    });
}

} // namespace

Command planCommand()
{
    return {QStringLiteral("plan"),
            Operands::Plant,
            QStringLiteral("show what each item would send and what a cycle costs, without the "
                           "plant's network"),
            {QStringLiteral("table"), QStringLiteral("json")},
            {{writeOption,
              QStringLiteral("DEVICE/ITEM=VALUE"),
              QStringLiteral("show what a write of this would send, too; may be repeated"),
              {},
              true},
             {rttOption, QStringLiteral("MS"),
              QStringLiteral("milliseconds that an exchange takes at best (default %1)")
                  .arg(defaultRttMs),
              Option::Range{0, maximumRttMs}}},
            {},
            runPlan};
}
