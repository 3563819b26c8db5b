#include "check/dryrun.h"

#include "cycle/cycle.h"
#include "plan/recorder.h"
#include "plan/redirection.h"
#include "plant/records.h"

#include <common/json/jsonplace.h>

#include <QSet>

#include <algorithm>

namespace {

using Column = DatabaseColumnStructure;

/// The plug-in, the controller that it gets, and what was found.
struct DryRun
{
    const Session &session;
    /// Takes the plug-in's log entries, which the findings tell.
    const Host &listener;
    Recorder *recorder = nullptr;
    QList<Problem> problems = {};
};

/// Whether the parameters at that place came out of the file without an error.
bool areReadable(const QSet<QString> &faultyPlaces, const QString &parameters,
                 const QList<Column> &columns)
{
    return !faultyPlaces.contains(parameters)
           && std::none_of(columns.begin(), columns.end(), [&](const Column &column) {
                  return faultyPlaces.contains(member(parameters, column.name));
              });
}

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

ItemRead readWith(const QByteArray &word, const DeviceInstancePlugin &device, int item,
                  DryRun *dryRun)
{
    // What is recorded then is this item's alone.
    dryRun->recorder->takeLines();
    dryRun->recorder->setWord(word);
    const int errorsBefore = dryRun->listener.errorCount();
    ItemRead read = readItem(dryRun->session, device, item);
    // The log tells more than the item's own error.
    if (!read.error.isEmpty() && dryRun->listener.errorCount() > errorsBefore)
        read.error = dryRun->listener.lastError();
    return read;
}

void checkItem(const DeviceInstancePlugin &device, int item, const QString &place, DryRun *dryRun)
{
    const ItemRead zeros = readWith("00000", device, item, dryRun);
    const QString parameters
        = parametersText(device.items.at(item), dryRun->session.registration.itemColumns);
    if (!zeros.error.isEmpty()) {
        addError(place,
                 QStringLiteral("the plug-in refuses %1: %2; velhost explain tells what to do")
                     .arg(parameters, zeros.error),
                 &dryRun->problems);
        return;
    }
    if (dryRun->recorder->takeLines().isEmpty()) {
        addWarning(place, QStringLiteral("was not checked: the plug-in sent nothing for it"),
                   &dryRun->problems);
        return;
    }
    const ItemRead ones = readWith("65535", device, item, dryRun);
    if (ones.error.isEmpty() && ones.value == zeros.value)
        addWarning(place,
                   QStringLiteral("%1 reads %2 for ever, whatever the controller holds; choose "
                                  "another type, or a bit of the word as in DM100.3")
                       .arg(parameters, *zeros.value),
                   &dryRun->problems);
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
    QSet<QString> faultyPlaces;
    for (const Problem &problem : found) {
        if (!problem.isWarning)
            faultyPlaces.insert(problem.place);
    }
    const Host listener({}, [](const LogEntry &) {});
    DryRun dryRun{session, listener, recorder};
    QList<Problem> known;
    const QList<DeviceInstancePlugin> devices = deviceRecords(draft, session.registration, &known);
    const QList<Column> &columns = session.registration.itemColumns;
    for (int i = 0; i < devices.size(); ++i) {
        const PlantDevice &source = draft.devices.at(i);
        const QString defaults = member(source.place, QStringLiteral("itemDefaults"));
        if (source.items.isEmpty() || !areReadable(faultyPlaces, defaults, columns))
            continue;
        DeviceInstancePlugin device = redirected(devices.at(i), recorder->port());
        device.id = i;
        LogList withoutItems{device, {}};
        const QString error = readDevice(session, &withoutItems, 1).error;
        if (!error.isEmpty())
            addWarning(source.place, u"its items were not checked, the plug-in says: " + error,
                       &dryRun.problems);
        for (int item = 0; error.isEmpty() && item < device.items.size(); ++item) {
            const QString &itemPlace = source.items.at(item).place;
            if (!faultyPlaces.contains(itemPlace)
                && areReadable(faultyPlaces, member(itemPlace, QStringLiteral("parameters")),
                               columns))
                checkItem(device, item, itemPlace, &dryRun);
        }
    }
    return dryRun.problems;
}
