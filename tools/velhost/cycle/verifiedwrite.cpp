#include "cycle/verifiedwrite.h"

#include "cycle/cycle.h"
#include "plant/samevalue.h"

namespace {

LogList listOf(const DeviceInstancePlugin &device, int item, const QString &value)
{
    return writeLists({device}, {{0, item, value}}).at(0);
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

QString writeError(VELInterface *plugin, const DeviceInstancePlugin &device,
                   const Assignment &assignment, const Host &host)
{
    LogList list = listOf(device, assignment.item, assignment.value);
    const int errorsBefore = host.errorCount();
    const DeviceReport report = writeDevice(plugin, &list, 1, host);
    return host.errorCount() > errorsBefore ? host.lastError() : report.error;
}

WriteReport writeVerified(VELInterface *plugin, const DeviceInstancePlugin &device,
                          const Assignment &assignment, const Host &host)
{
    const ItemInstancePlugin &item = device.items.at(assignment.item);
    const ItemRead before = readItem(plugin, device, assignment.item);
    WriteReport report{before.time, device.name, item.name, before.value, assignment.value, {}, {}};
    if (!before.value) {
        report.error = u"not written, the old value cannot be read: " + before.error;
        return report;
    }
    const QString failure = writeError(plugin, device, assignment, host);
    if (!failure.isEmpty())
        report.error = u"write failed: " + failure;
    const ItemRead after = readItem(plugin, device, assignment.item);
    report.time = after.time;
    report.readBack = after.value;
    if (!report.error.isEmpty())
        return report;
    const ValueKind kind = valueKind(item.parameters, host.registration()->itemColumns);
    if (!after.value)
        report.error = u"written, but cannot be read back: " + after.error;
    else if (!sameValue(assignment.value, *after.value, kind))
        report.error = QStringLiteral("the value read back is not the one written");
    return report;
}
