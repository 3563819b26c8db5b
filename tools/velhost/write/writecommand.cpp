#include "write/writecommand.h"

#include "cli/options.h"
#include "cli/plantarguments.h"
#include "cycle/cycle.h"
#include "cycle/cycleprinter.h"
#include "host/stopsignals.h"
#include "host/timetext.h"
#include "plant/samevalue.h"

#include <common/csv.h>
#include <common/ipv4address.h>
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <cstring>
#include <functional>
#include <optional>

namespace {

const QString yesOption = QStringLiteral("yes");
const QString allowEmptyOption = QStringLiteral("allow-empty");
const QString noVerifyOption = QStringLiteral("no-verify");

/// Why the assignments need --yes; empty when all devices are on this machine. Every address that
/// is not loopback counts as a real controller.
QStringList confirmationErrors(const Plant &plant, const QList<Assignment> &assignments)
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
    return {QStringLiteral("write would change devices that are not on this machine: %1; add "
                           "--yes to write to them")
                .arg(targets.join(QStringLiteral(", ")))};
}

/// Why the values must not be written; empty when they may be. A script whose variable is not set
/// gives an empty one.
QStringList emptyValueErrors(const QStringList &texts, const QList<Assignment> &assignments)
{
    QStringList errors;
    for (int i = 0; i < assignments.size(); ++i) {
        if (assignments.at(i).value.isEmpty())
            errors.append(QStringLiteral("\"%1\": no value behind the \"=\"; write one, or add "
                                         "--allow-empty to write an empty text")
                              .arg(texts.at(i)));
    }
    return errors;
}

QString endedText(int signal)
{
    return QStringLiteral("not written, SIG%1 ended the program before")
        .arg(QString::fromLatin1(sigabbrev_np(signal)));
}

/// Calls `writeNext` so many times, with the number of the signal that came before or with 0. It
/// returns whether all is well.
ExitCode writeUntilSignal(int count, const std::function<bool(int index, int signal)> &writeNext)
{
    StopSignals stopSignals;
    ExitCode result = AllWell;
    int signal = 0;
    for (int i = 0; i < count; ++i) {
        if (!writeNext(i, signal))
            result = ErrorFound;
        if (signal == 0)
            signal = stopSignals.wait(0);
    }
    return signal == 0 ? result : exitCodeOf(signal);
}

ExitCode writeOnly(const Session &session, const QList<Assignment> &assignments,
                   OutputFormat format)
{
    QList<LogList> lists = writeLists(session.devices, assignments);
    CyclePrinter printer(format, false);
    return writeUntilSignal(lists.size(), [&](int index, int signal) {
        DeviceReport report
            = signal == 0 ? writeDevice(session, &lists[index], 1) : reportOf(lists.at(index), 1);
        for (ItemReport &item : report.values)
            item.error = signal == 0 ? item.error : endedText(signal);
        printer.printCycle({report});
        return !report.hasError();
    });
}

/// The result of writing one item between two reads.
struct WriteReport
{
    /// When the value was read back or the attempt failed.
    QDateTime time;
    QString device;
    QString item;
    /// The value before the write; nothing when it could not be read.
    std::optional<QString> oldValue;
    QString newValue;
    /// The value after the write; nothing when it could not be read or nothing was written.
    std::optional<QString> readBack;
    /// Empty if the value that was read back is the one that was written.
    QString error;
};

/// The report of an item before it is read and written.
WriteReport unwritten(const Session &session, const Assignment &assignment)
{
    const DeviceInstancePlugin &device = session.devices.at(assignment.device);
    const ItemInstancePlugin &item = device.items.at(assignment.item);
    return {QDateTime::currentDateTime(), device.name, item.name, {}, assignment.value, {}, {}};
}

/// Reads the item, writes it and reads it back. Each is a cycle with that item only, so that an
/// error belongs to this item. An item that cannot be read is not written.
WriteReport writeVerified(const Session &session, const Assignment &assignment)
{
    const DeviceInstancePlugin &device = session.devices.at(assignment.device);
    const ItemInstancePlugin &item = device.items.at(assignment.item);
    const ItemRead before = readItem(session, device, assignment.item);
    WriteReport report = unwritten(session, assignment);
    report.time = before.time;
    report.oldValue = before.value;
    if (!before.value) {
        report.error = u"not written, the old value cannot be read: " + before.error;
        return report;
    }
    const QString failure = writeError(session, device, assignment);
    if (!failure.isEmpty())
        report.error = u"write failed: " + failure;
    const ItemRead after = readItem(session, device, assignment.item);
    report.time = after.time;
    report.readBack = after.value;
    if (!report.error.isEmpty())
        return report;
    const ValueKind kind = valueKind(item.parameters, session.registration.itemColumns);
    if (!after.value)
        report.error = u"written, but cannot be read back: " + after.error;
    else if (!sameValue(assignment.value, *after.value, kind))
        report.error = QStringLiteral("the value read back is not the one written");
    return report;
}

const QString columns = QStringLiteral("Cycle,Time,Device,Item,Old,New,Read back,Error");
const QString csvHeader = QStringLiteral("cycle,time,device,item,old,new,readback,error\r\n");

QStringList fields(const WriteReport &write)
{
    return {QStringLiteral("1"),
            timeText(write.time),
            write.device,
            write.item,
            write.oldValue.value_or(QString()),
            write.newValue,
            write.readBack.value_or(QString()),
            write.error};
}

QStringList row(const WriteReport &write)
{
    QStringList cells = fields(write);
    for (QString &cell : cells)
        cell = visible(cell);
    return cells;
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

/// Prints the header, if there is one. Returns the widths of a table's columns, which fit the
/// assignments; an old value that is longer than the new one is not known before.
QVector<int> printHeader(OutputFormat format, const Session &session,
                         const QList<Assignment> &assignments)
{
    QList<QStringList> rows{columns.split(u',')};
    for (const Assignment &assignment : assignments) {
        WriteReport write = unwritten(session, assignment);
        write.oldValue = write.readBack = write.newValue;
        rows.append(row(write));
    }
    const QVector<int> widths = columnWidths(rows);
    if (format == OutputFormat::Table)
        print(stdout, tableLine(rows.first(), widths));
    if (format == OutputFormat::Csv)
        print(stdout, csvHeader);
    return widths;
}

QString writeText(OutputFormat format, const WriteReport &write, const QVector<int> &widths)
{
    if (format == OutputFormat::Json)
        return writeJson(write);
    return format == OutputFormat::Csv ? csvRecord(fields(write)) : tableLine(row(write), widths);
}

ExitCode writeAndVerify(const Session &session, const QList<Assignment> &assignments,
                        OutputFormat format)
{
    const QVector<int> widths = printHeader(format, session, assignments);
    return writeUntilSignal(assignments.size(), [&](int index, int signal) {
        const Assignment &assignment = assignments.at(index);
        WriteReport write
            = signal == 0 ? writeVerified(session, assignment) : unwritten(session, assignment);
        if (signal != 0)
            write.error = endedText(signal);
        print(stdout, writeText(format, write, widths));
        return write.error.isEmpty();
    });
}

ExitCode runWrite(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    const auto assignments = readAssignments(arguments, arguments.operands, *plant);
    if (!assignments)
        return WrongUsage;
    QStringList refusals;
    if (!arguments.has(allowEmptyOption))
        refusals = emptyValueErrors(arguments.operands, *assignments);
    if (!arguments.has(yesOption))
        refusals += confirmationErrors(*plant, *assignments);
    printError(refusals);
    if (!refusals.isEmpty())
        return WrongUsage;
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
            {QStringLiteral("table"), QStringLiteral("json"), QStringLiteral("csv")},
            QList<Option>{
                {yesOption, {}, QStringLiteral("change devices that are not on this machine, too")},
                {allowEmptyOption, {}, QStringLiteral("take a value without a character, too")},
                {noVerifyOption, {}, QStringLiteral("only write, read nothing before or after")}}
                + traceOptions(),
            {{QStringLiteral("Write a value and read it back"),
              QStringLiteral("velhost write plant.json 'Press/Set point=250'")}},
            runWrite};
}
