#include "write/verifiedwrite.h"

#include "cycle/cycle.h"
#include "plant/samevalue.h"

WriteReport unwritten(const Session &session, const Assignment &assignment)
{
    const DeviceInstancePlugin &device = session.devices.at(assignment.device);
    const ItemInstancePlugin &item = device.items.at(assignment.item);
    return {QDateTime::currentDateTime(), device.name, item.name, {}, assignment.value, {}, {}};
}

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
