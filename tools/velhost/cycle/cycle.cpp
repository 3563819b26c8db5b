#include "cycle/cycle.h"

#include "plant/samevalue.h"

#include <QDateTime>
#include <QElapsedTimer>

#include <algorithm>

namespace {

const QString valueKey = QStringLiteral("value");

void appendItem(LogList *list, const DeviceInstancePlugin &device, int item, const QString &value)
{
    DataItem dataItem;
    dataItem.values.insert(valueKey, value);
    dataItem.item = device.items.at(item);
    dataItem.device = device;
    list->dataItems.append(dataItem);
}

/// Clears what the plug-in sets. A time stamp that is still invalid after the call was not set.
void beginCycle(LogList *list)
{
    list->setLastError({});
    for (ItemInstancePlugin &item : list->items)
        item.setLastError({});
    for (DataItem &dataItem : list->dataItems) {
        dataItem.item.setLastError({});
        dataItem.device.setLastError({});
        dataItem.timestamp = {};
    }
}

void beginCall(const Session &session, const LogList &list, qint64 cycle, bool isRead)
{
    session.host.beginCall(list.name, cycle);
    if (session.wire != nullptr)
        session.wire->beginCall(&list, isRead);
}

/// Returns what WireOutput::endCall() does.
QMap<int, QString> endCall(const Session &session, const LogList &list, qint64 cycle)
{
    session.host.endCall();
    return session.wire != nullptr ? session.wire->endCall(list, cycle) : QMap<int, QString>();
}

/// The device's record has that item alone, so that a cycle of one item does not cost more with
/// each item that the device has besides.
LogList listOf(DeviceInstancePlugin device, int item, const QString &value)
{
    device.items = {device.items.at(item)};
    return writeLists({device}, {{0, 0, value}}).at(0);
}

} // namespace

QList<LogList> readLists(const QList<DeviceInstancePlugin> &devices)
{
    QList<LogList> lists;
    for (const DeviceInstancePlugin &device : devices) {
        LogList list{device, {}};
        for (int item = 0; item < device.items.size(); ++item)
            appendItem(&list, device, item, {});
        lists.append(list);
    }
    return lists;
}

QList<LogList> writeLists(const QList<DeviceInstancePlugin> &devices,
                          const QList<Assignment> &assignments)
{
    QList<LogList> lists;
    for (const Assignment &assignment : assignments) {
        const DeviceInstancePlugin &device = devices.at(assignment.device);
        auto list = std::find_if(lists.begin(), lists.end(), [&](const LogList &candidate) {
            return candidate.name == device.name;
        });
        if (list == lists.end())
            list = lists.insert(lists.end(), {device, {}});
        appendItem(&*list, device, assignment.item, assignment.value);
    }
    return lists;
}

DeviceReport reportOf(const LogList &list, qint64 cycle)
{
    const QDateTime now = QDateTime::currentDateTime();
    DeviceReport report;
    report.time = now;
    report.cycle = cycle;
    report.device = list.name;
    report.error = list.lastError;
    for (const DataItem &dataItem : list.dataItems) {
        report.values.append({dataItem.timestamp.isValid() ? dataItem.timestamp : now,
                              dataItem.item.name, dataItem.values.value(valueKey),
                              dataItem.item.lastError, false});
    }
    return report;
}

DeviceReport readDevice(const Session &session, LogList *list, qint64 cycle)
{
    beginCycle(list);
    beginCall(session, *list, cycle, true);
    QElapsedTimer sinceCall;
    sinceCall.start();
    const bool done = session.loaded.plugin->readData(list);
    const qint64 nanoseconds = sinceCall.nsecsElapsed();
    const QMap<int, QString> suspects = endCall(session, *list, cycle);
    DeviceReport result = reportOf(*list, cycle);
    result.microseconds = nanoseconds / 1000;
    if (!done && result.error.isEmpty())
        result.error = QStringLiteral("readData() returned false");
    for (int i = 0; i < result.values.size(); ++i) {
        ItemReport &item = result.values[i];
        item.suspect = suspects.value(i);
        // When the device does not answer, the plug-in sets no error on the items that it did not
        // try.
        const bool failed = !result.error.isEmpty() || !item.error.isEmpty();
        item.isOld = failed && !item.value.isEmpty();
    }
    return result;
}

DeviceReport readPlantDevice(const Session &session, int device, LogList *list, qint64 cycle)
{
    DeviceReport report = readDevice(session, list, cycle);
    const QList<PlantItem> &items = session.plant.devices.at(device).items;
    for (int i = 0; i < items.size() && report.error.isEmpty(); ++i) {
        const std::optional<QString> &expect = items.at(i).expect;
        ItemReport &item = report.values[i];
        // The kind matters only where the texts differ.
        if (!expect || !item.error.isEmpty() || *expect == item.value)
            continue;
        const ValueKind kind = valueKind(session.devices.at(device).items.at(i).parameters,
                                         session.registration.itemColumns);
        if (!sameValue(*expect, item.value, kind, items.at(i).tolerance))
            item.expected = expect;
    }
    return report;
}

DeviceReport writeDevice(const Session &session, LogList *list, qint64 cycle)
{
    beginCycle(list);
    const int errorsBefore = session.host.errorCount();
    beginCall(session, *list, cycle, false);
    const bool done = session.loaded.plugin->writeData(list);
    endCall(session, *list, cycle);
    const int errors = session.host.errorCount() - errorsBefore;
    DeviceReport result = reportOf(*list, cycle);
    if (result.error.isEmpty() && errors > 0)
        result.error = QStringLiteral("write failed: %1 in the error log")
                           .arg(errors == 1 ? QStringLiteral("1 entry")
                                            : QStringLiteral("%1 entries").arg(errors));
    if (result.error.isEmpty() && !done)
        result.error = QStringLiteral("writeData() returned false");
    return result;
}

ItemRead readItem(const Session &session, const DeviceInstancePlugin &device, int item)
{
    LogList list = listOf(device, item, {});
    const DeviceReport report = readDevice(session, &list, 1);
    const ItemReport &itemReport = report.values.first();
    const QString error = report.error.isEmpty() ? itemReport.error : report.error;
    if (!error.isEmpty())
        return {itemReport.time, {}, error};
    return {itemReport.time, itemReport.value, {}};
}

QString writeError(const Session &session, const DeviceInstancePlugin &device,
                   const Assignment &assignment)
{
    LogList list = listOf(device, assignment.item, assignment.value);
    const int errorsBefore = session.host.errorCount();
    const DeviceReport report = writeDevice(session, &list, 1);
    return session.host.errorCount() > errorsBefore ? session.host.lastError() : report.error;
}
