#include "plan/redirection.h"

#include <common/ipv4address.h>

#include <QRegularExpression>

namespace {

const QString portKey = QStringLiteral("port");
const QString timeoutKey = QStringLiteral("timeout");

} // namespace

DeviceInstancePlugin redirected(DeviceInstancePlugin device, quint16 port)
{
    device.ipAddress = QStringLiteral("127.0.0.1");
    device.parameters.insert(portKey, QString::number(port));
    // With a time-out of a few milliseconds the recorder itself could be too slow.
    if (device.parameters.contains(timeoutKey))
        device.parameters.insert(timeoutKey, QStringLiteral("10000"));
    return device;
}

Redirection redirectionTo(quint16 port)
{
    return [port](const DeviceInstancePlugin &device) { return redirected(device, port); };
}

DeviceInstancePlugin redirectedWhereValid(const DeviceInstancePlugin &device, quint16 port)
{
    static const QRegularExpression digit(QStringLiteral("[0-9]"));
    DeviceInstancePlugin result = redirected(device, port);
    if (!isDottedQuad(device.ipAddress))
        result.ipAddress = device.ipAddress;
    const auto original = device.parameters.constFind(portKey);
    if (original == device.parameters.constEnd())
        result.parameters.remove(portKey);
    else if (!digit.match(*original).hasMatch())
        result.parameters.insert(portKey, *original);
    return result;
}
