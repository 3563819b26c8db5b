#include "write/writecommand.h"

#include "cli/plantarguments.h"
#include "cycle/cycle.h"
#include "cycle/cycletext.h"
#include "write/verifiedwrite.h"

#include <common/ipv4address.h>
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <algorithm>

namespace {

const QString yesOption = QStringLiteral("yes");
const QString noVerifyOption = QStringLiteral("no-verify");

/// Why the assignments need --yes; empty when all devices are on this machine. Every address that
/// is not loopback counts as a real controller.
QString confirmationError(const Plant &plant, const QList<Assignment> &assignments)
{
    QStringList targets;
    for (const Assignment &assignment : assignments) {
        const PlantDevice &device = plant.devices.at(assignment.device);
        if (!isLoopback(device.ip))
            targets.append(QStringLiteral("\"%1\" (%2)").arg(device.name, device.ip));
    }
    targets.removeDuplicates();
    if (targets.isEmpty())
        return {};
    return QStringLiteral("write would change devices that are not on this machine: %1; add --yes "
                          "to write to them")
        .arg(targets.join(QStringLiteral(", ")));
}

ExitCode writeOnly(const Session &session, const QList<Assignment> &assignments,
                   OutputFormat format)
{
    QList<LogList> lists = writeLists(session.devices, assignments);
    QList<DeviceReport> reports;
    for (LogList &list : lists)
        reports.append(writeDevice(session.loaded.plugin, &list, 1, session.host));
    print(stdout, cycleText(format, reports));
    const bool failed = std::any_of(reports.begin(), reports.end(),
                                    [](const DeviceReport &device) { return device.hasError(); });
    return failed ? ErrorFound : AllWell;
}

QJsonValue optionalJson(const std::optional<QString> &text)
{
    return text ? QJsonValue(*text) : QJsonValue();
}

QString writeJson(const WriteReport &write)
{
    return jsonLine("write", {{"cycle", 1},
                              {"time", timeText(write.time)},
                              {"device", write.device},
                              {"item", write.item},
                              {"old", optionalJson(write.oldValue)},
                              {"new", write.newValue},
                              {"readback", optionalJson(write.readBack)},
                              {"error", write.error}});
}

/// The verified writes in the order given, a line for each.
QString writesText(OutputFormat format, const QList<WriteReport> &writes)
{
    QString lines;
    QList<QStringList> rows{{QStringLiteral("Cycle"), QStringLiteral("Time"),
                             QStringLiteral("Device"), QStringLiteral("Item"),
                             QStringLiteral("Old"), QStringLiteral("New"),
                             QStringLiteral("Read back"), QStringLiteral("Error")}};
    for (const WriteReport &write : writes) {
        lines += writeJson(write);
        rows.append({QStringLiteral("1"), timeText(write.time), visible(write.device),
                     visible(write.item), visible(write.oldValue.value_or(QString())),
                     visible(write.newValue), visible(write.readBack.value_or(QString())),
                     visible(write.error)});
    }
    return format == OutputFormat::Json ? lines : tableText(rows);
}

ExitCode writeAndVerify(const Session &session, const QList<Assignment> &assignments,
                        OutputFormat format)
{
    QList<WriteReport> reports;
    for (const Assignment &assignment : assignments)
        reports.append(writeVerified(session, assignment));
    print(stdout, writesText(format, reports));
    const bool failed = std::any_of(reports.begin(), reports.end(), [](const WriteReport &report) {
        return !report.error.isEmpty();
    });
    return failed ? ErrorFound : AllWell;
}

ExitCode runWrite(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    const auto assignments = readAssignments(arguments.operands, *plant);
    if (!assignments)
        return WrongUsage;
    const QString refusal
        = arguments.has(yesOption) ? QString() : confirmationError(*plant, *assignments);
    if (!refusal.isEmpty()) {
        printError(refusal);
        return WrongUsage;
    }
    const auto write = arguments.has(noVerifyOption) ? writeOnly : writeAndVerify;
    return runSession(sessionSetup(arguments, *plant), [&](const Session &session) {
        return write(session, *assignments, arguments.format);
    });
}

} // namespace

Command writeCommand()
{
    return {QStringLiteral("write"),
            Operands::PlantAndAssignments,
            QStringLiteral("read, write and read back the named items, in the order given"),
            {QStringLiteral("table"), QStringLiteral("json")},
            {{yesOption, {}, QStringLiteral("change devices that are not on this machine, too")},
             {noVerifyOption, {}, QStringLiteral("only write, read nothing before or after")}},
            {{QStringLiteral("Write a value and read it back"),
              QStringLiteral("velhost write plant.json 'Press/Set point=250'")}},
            runWrite};
}
