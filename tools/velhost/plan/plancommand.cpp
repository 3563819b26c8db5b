#include "plan/plancommand.h"

#include "cli/plantarguments.h"
#include "cycle/cycle.h"
#include "host/progressline.h"
#include "plan/plan.h"
#include "plan/recorder.h"

#include <algorithm>

namespace {

constexpr int maximumRttMs = 60 * 1000;
constexpr int defaultRttMs = 1;
// A plan that is ready sooner shows no progress.
constexpr int quietMs = 500;
const QString rttOption = QStringLiteral("rtt");
const QString writeOption = QStringLiteral("write");

/// Why the plug-in never serves the device; empty when it can. The plug-in itself is asked first,
/// with a list without items.
QString refusal(const Session &session, const DeviceInstancePlugin &device, quint16 recorderPort)
{
    LogList list{redirectedWhereValid(device, recorderPort), {}};
    const DeviceReport report = readDevice(session, &list, 1);
    if (!report.error.isEmpty())
        return report.error;
    // The plug-in also takes a sign, and spaces around the number.
    const QString port = device.parameters.value(QStringLiteral("port"));
    if (port.toInt() >= 1 && port.toInt() <= 65535)
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

/// The plug-in, what it is asked for, and the plan so far.
struct Planning
{
    const Session &session;
    Recorder *recorder = nullptr;
    ProgressLine *progress = nullptr;
    /// How many items the plan will have.
    int total = 0;
    Plan plan = {};
};

/// Adds what the plug-in sends to write the value to the item; to read it where there is no value.
void addItem(int deviceIndex, int itemIndex, const std::optional<QString> &value,
             Planning *planning)
{
    auto &[session, recorder, progress, total, plan] = *planning;
    const DeviceInstancePlugin &device = session.devices.at(deviceIndex);
    PlannedItem item{device.name,
                     device.items.at(itemIndex).name,
                     value ? QStringLiteral("write") : QStringLiteral("read"),
                     {},
                     plan.budgets.at(deviceIndex).error};
    if (item.error.isEmpty()) {
        const DeviceInstancePlugin target = redirected(device, recorder->port());
        item.error = value ? writeError(session, target, {deviceIndex, itemIndex, *value})
                           : readItem(session, target, itemIndex).error;
        item.lines = recorder->takeLines();
    }
    plan.items.append(item);
    if (progress->isDue())
        progress->show(QStringLiteral("planned %1 of %2 items").arg(plan.items.size()).arg(total));
}

Plan makePlan(const Session &session, const QList<Assignment> &assignments, Recorder *recorder,
              ProgressLine *progress)
{
    const QList<DeviceInstancePlugin> &devices = session.devices;
    int total = assignments.size();
    for (const DeviceInstancePlugin &device : devices)
        total += device.items.size();
    Planning planning{session, recorder, progress, total};
    for (int i = 0; i < devices.size(); ++i) {
        const DeviceInstancePlugin &device = devices.at(i);
        planning.plan.budgets.append(budgetOf(device, refusal(session, device, recorder->port())));
        for (int item = 0; item < device.items.size(); ++item) {
            addItem(i, item, {}, &planning);
            planning.plan.budgets.last().exchanges += planning.plan.items.last().lines.size();
        }
    }
    for (const auto &[device, item, value] : assignments)
        addItem(device, item, value, &planning);
    progress->clear();
    return planning.plan;
}

bool hasError(const Plan &plan)
{
    const auto fails = [](const auto &part) { return !part.error.isEmpty(); };
    return std::any_of(plan.items.begin(), plan.items.end(), fails)
           || std::any_of(plan.budgets.begin(), plan.budgets.end(), fails);
}

ExitCode runPlan(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    const auto assignments
        = readAssignments(arguments, arguments.options.value(writeOption), *plant);
    if (!assignments)
        return WrongUsage;
    Recorder recorder;
    if (recorder.port() == 0) {
        printError(QStringLiteral("plan cannot listen on 127.0.0.1"));
        return ErrorFound;
    }
    ProgressLine progress(quietMs);
    SessionSetup setup = sessionSetup(arguments, *plant);
    setup.progress = &progress;
    setup.redirection
        = [&](const DeviceInstancePlugin &device) { return redirected(device, recorder.port()); };
    return runSession(setup, [&](const Session &session) {
        const Plan plan = makePlan(session, *assignments, &recorder, &progress);
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
