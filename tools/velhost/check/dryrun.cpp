#include "check/dryrun.h"

#include "cycle/cycle.h"
#include "plan/recorder.h"
#include "plant/records.h"
#include "plant/samevalue.h"

#include <common/json/jsonnode.h>

#include <QLocale>
#include <QSet>

#include <cmath>

namespace {

using Column = DatabaseColumnStructure;

/// The plug-in, the controller and the device that it gets, and what was found.
struct DryRun
{
    const Session &session;
    /// Takes the plug-in's log entries, which the findings tell.
    const Host &listener;
    Recorder *recorder = nullptr;
    DeviceInstancePlugin device = {};
    QList<Problem> problems = {};
};

/// The item's parameters as its user knows them.
QString parametersText(const ItemInstancePlugin &item, const QList<Column> &columns)
{
    QStringList texts;
    for (const Column &column : columns) {
        const QString value = item.parameters.value(column.name);
        texts.append(
            value.isEmpty()
                ? QString(u"no " + column.name)
                : QStringLiteral("%1 \"%2\"").arg(column.name, displayText(value, column)));
    }
    return texts.join(QStringLiteral(", "));
}

ItemRead readWith(const QByteArray &words, int item, DryRun *dryRun)
{
    // What is recorded then is this item's alone.
    dryRun->recorder->takeLines();
    dryRun->recorder->setWords(words);
    const int errorsBefore = dryRun->listener.errorCount();
    ItemRead read = readItem(dryRun->session, dryRun->device, item);
    // The log tells more than the item's own error.
    if (!read.error.isEmpty() && dryRun->listener.errorCount() > errorsBefore)
        read.error = dryRun->listener.lastError();
    return read;
}

/// Writes the text, as if to the controller, and reads what was sent.
ItemRead writeAndRead(const QString &text, int item, DryRun *dryRun)
{
    dryRun->recorder->takeLines();
    writeError(dryRun->session, dryRun->device, {0, item, text});
    const QList<QByteArray> lines = dryRun->recorder->takeLines();
    if (lines.isEmpty() || !lines.last().startsWith("WR"))
        return {};
    const bool isOneWord = lines.last().startsWith("WR ");
    const QList<QByteArray> sent = lines.last().simplified().split(' ').mid(isOneWord ? 2 : 3);
    QByteArray words;
    for (const QByteArray &field : sent)
        words += QByteArray::number(static_cast<quint16>(field.toInt())) + ' ';
    // Words that are not written are left as they were.
    return readWith(words + "00000", item, dryRun);
}

/// The plug-in itself tells whether the item can have the value: it is written and read back.
void checkExpected(const PlantItem &draft, int item, DryRun *dryRun)
{
    const QList<Column> &columns = dryRun->session.registration.itemColumns;
    const ItemInstancePlugin &record = dryRun->device.items.at(item);
    const ValueKind kind = valueKind(record.parameters, columns);
    if (kind != ValueKind::Number && draft.tolerance > 0)
        addError(member(draft.place, QStringLiteral("tolerance")),
                 QStringLiteral("only decimal numbers have one; leave it out"), &dryRun->problems);
    QStringList candidates{*draft.expect};
    if (const std::optional<double> number = decimalNumber(*draft.expect))
        // A plug-in may take no exponent, or only whole numbers.
        candidates << QString::number(*number, 'f', QLocale::FloatingPointShortest)
                   << QString::number(std::round(*number), 'f', 0);
    for (const QString &candidate : std::as_const(candidates)) {
        const ItemRead read = writeAndRead(candidate, item, dryRun);
        if (read.value && sameValue(*draft.expect, *read.value, kind, draft.tolerance))
            return;
    }
    addError(member(draft.place, QStringLiteral("expect")),
             QStringLiteral("%1 can never read \"%2\"")
                 .arg(parametersText(record, columns), *draft.expect),
             &dryRun->problems);
}

void checkItem(const PlantItem &draft, int item, DryRun *dryRun)
{
    const ItemRead zeros = readWith("00000", item, dryRun);
    const QString parameters
        = parametersText(dryRun->device.items.at(item), dryRun->session.registration.itemColumns);
    if (!zeros.error.isEmpty()) {
        addError(draft.place,
                 QStringLiteral("the plug-in refuses %1: %2; velhost explain tells what to do")
                     .arg(parameters, zeros.error),
                 &dryRun->problems);
        return;
    }
    if (dryRun->recorder->takeLines().isEmpty()) {
        addWarning(draft.place, QStringLiteral("was not checked: the plug-in sent nothing for it"),
                   &dryRun->problems);
        return;
    }
    const ItemRead ones = readWith("65535", item, dryRun);
    if (ones.error.isEmpty() && ones.value == zeros.value)
        addWarning(draft.place,
                   QStringLiteral("%1 reads %2 for ever, whatever the controller holds; choose "
                                  "another type, or a bit of the word as in DM100.3")
                       .arg(parameters, *zeros.value),
                   &dryRun->problems);
    else if (draft.expect && draft.expect != zeros.value && draft.expect != ones.value)
        checkExpected(draft, item, dryRun);
}

} // namespace

Plant devicesOnly(const Plant &draft)
{
    Plant plant;
    plant.networkInterfaces = draft.networkInterfaces;
    for (const PlantDevice &device : draft.devices)
        plant.devices.append({plant.devices.size(), device.name, {}, {}, {}});
    return plant;
}

QList<Problem> dryRunProblems(const Session &session, const Plant &draft, Recorder *recorder,
                              const QList<Problem> &found)
{
    // An error in a parameter is one of the parameters together.
    QSet<QString> faultyPlaces;
    for (const Problem &problem : found) {
        if (!problem.isWarning)
            faultyPlaces << problem.place << problem.place.section(u'.', 0, -2) + u".*";
    }
    const auto areReadable = [&](const QString &parameters) {
        return !faultyPlaces.contains(parameters) && !faultyPlaces.contains(parameters + u".*");
    };
    const Host listener({}, [](const LogEntry &) {});
    DryRun dryRun{session, listener, recorder};
    QList<Problem> known;
    const QList<DeviceInstancePlugin> devices = deviceRecords(draft, session.registration, &known);
    for (int i = 0; i < devices.size(); ++i) {
        const PlantDevice &source = draft.devices.at(i);
        const QString defaults = member(source.place, QStringLiteral("itemDefaults"));
        if (source.items.isEmpty() || !areReadable(defaults))
            continue;
        dryRun.device = redirected(devices.at(i), recorder->port());
        dryRun.device.id = i;
        LogList withoutItems{dryRun.device, {}};
        const QString error = readDevice(session, &withoutItems, 1).error;
        if (!error.isEmpty())
            addWarning(source.place, u"its items were not checked, the plug-in says: " + error,
                       &dryRun.problems);
        for (int item = 0; error.isEmpty() && item < source.items.size(); ++item) {
            const QString &itemPlace = source.items.at(item).place;
            if (!faultyPlaces.contains(itemPlace)
                && areReadable(member(itemPlace, QStringLiteral("parameters"))))
                checkItem(source.items.at(item), item, &dryRun);
        }
    }
    return dryRun.problems;
}
