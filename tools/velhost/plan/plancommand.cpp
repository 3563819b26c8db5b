#include "plan/plancommand.h"

#include "cli/plantarguments.h"
#include "cycle/cycle.h"
#include "host/progressline.h"
#include "plan/recorder.h"

#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int maximumRttMs = 60 * 1000;
constexpr int defaultRttMs = 1;
// A plan that is ready sooner shows no progress.
constexpr int quietMs = 500;
const QString rttOption = QStringLiteral("rtt");
const QString writeOption = QStringLiteral("write");

/// What the plug-in sends for one item.
struct PlannedItem
{
    QString device;
    QString item;
    /// read or write
    QString operation;
    /// The command lines, each with its carriage return; empty when nothing is sent.
    QList<QByteArray> lines;
    /// Empty: no error.
    QString error;
};

/// The exchanges and times of one read cycle of a device.
struct DeviceBudget
{
    QString device;
    int exchanges = 0;
    /// The device's time-out in milliseconds. Nothing when its parameter "timeout" is no whole
    /// number above 1: only the plug-in knows what it makes of that.
    std::optional<int> timeoutMs;
    /// Why the plug-in never serves the device; empty: no error.
    QString error;
};

struct Plan
{
    QList<PlannedItem> items;
    QList<DeviceBudget> budgets;
};

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

/// How long this many time-outs last in milliseconds; null where the time-out is unknown.
QJsonValue worstJson(const DeviceBudget &budget, qint64 timeouts)
{
    return budget.timeoutMs ? QJsonValue(timeouts * *budget.timeoutMs) : QJsonValue();
}

QString worstText(const DeviceBudget &budget, qint64 timeouts)
{
    return budget.timeoutMs ? QString::number(timeouts * *budget.timeoutMs)
                            : QStringLiteral("unknown");
}

/// The items with their command lines, then the budget of each device. An exchange takes `rttMs`
/// milliseconds at best and the device's time-out at worst.
QString planJson(const Plan &plan, int rttMs)
{
    QString text;
    for (const PlannedItem &item : plan.items) {
        QJsonArray commands;
        for (const QByteArray &line : item.lines)
            commands.append(QJsonObject{{QStringLiteral("line"), QString::fromLocal8Bit(line)},
                                        {QStringLiteral("words"), wordCount(line)}});
        text += jsonLine("plan", {{"device", item.device},
                                  {"item", item.item},
                                  {"operation", item.operation},
                                  {"commands", commands},
                                  {"error", item.error}});
    }
    for (const DeviceBudget &budget : plan.budgets) {
        text += jsonLine("budget", {{"device", budget.device},
                                    {"exchanges", budget.exchanges},
                                    {"best_ms", qint64(budget.exchanges) * rttMs},
                                    {"worst_ms", worstJson(budget, budget.exchanges)},
                                    {"connect_ms", worstJson(budget, 1)},
                                    {"error", budget.error}});
    }
    return text;
}

/// A row for each command line, at least one; the error in the first one.
void appendItemRows(const PlannedItem &item, QList<QStringList> *rows)
{
    for (int i = 0; i == 0 || i < item.lines.size(); ++i) {
        const QByteArray line = item.lines.value(i);
        rows->append({visible(item.device), visible(item.item), item.operation,
                      line.isEmpty() ? QString() : QString::number(wordCount(line)),
                      visible(QString::fromLocal8Bit(line)),
                      i == 0 ? visible(item.error) : QString()});
    }
}

QString planTable(const Plan &plan, int rttMs)
{
    QList<QStringList> items{
        QStringLiteral("Device Item Operation Words Command Error").split(u' ')};
    for (const PlannedItem &item : plan.items)
        appendItemRows(item, &items);
    QList<QStringList> budgets{{QStringLiteral("Device"), QStringLiteral("Exchanges a cycle"),
                                QStringLiteral("Best ms"), QStringLiteral("Worst ms"),
                                QStringLiteral("Connect ms"), QStringLiteral("Error")}};
    for (const DeviceBudget &budget : plan.budgets) {
        budgets.append({visible(budget.device), QString::number(budget.exchanges),
                        QString::number(qint64(budget.exchanges) * rttMs),
                        worstText(budget, budget.exchanges), worstText(budget, 1),
                        visible(budget.error)});
    }
    return tableText(items) + u'\n' + tableText(budgets);
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
        const int rttMs = arguments.number(rttOption, defaultRttMs);
        const Plan plan = makePlan(session, *assignments, &recorder, &progress);
        print(stdout, arguments.format == OutputFormat::Json ? planJson(plan, rttMs)
                                                             : planTable(plan, rttMs));
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
