#include "cycle/oneitem.h"

#include "cycle/cycle.h"

namespace {

/// The device's record has that item alone, so that a cycle of one item does not cost more with each
/// item that the device has besides.
LogList listOf(DeviceInstancePlugin device, int item, const QString &value)
{
    device.items = {device.items.at(item)};
    return writeLists({device}, {{0, 0, value}}).at(0);
}

} // namespace

ItemRead readItem(VELInterface *plugin, const DeviceInstancePlugin &device, int item)
{
    LogList list = listOf(device, item, {});
    const DeviceReport report = readDevice(plugin, &list, 1);
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
    const DeviceReport report = writeDevice(session.loaded.plugin, &list, 1, session.host);
    return session.host.errorCount() > errorsBefore ? session.host.lastError() : report.error;
}
