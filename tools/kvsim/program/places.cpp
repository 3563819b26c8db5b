#include "program/places.h"

namespace {

constexpr quint32 lastHost = 254;
constexpr int lastPort = 65535;

QString addressesError(const QHostAddress &address, int count)
{
    if (address.protocol() != QAbstractSocket::IPv4Protocol)
        return QStringLiteral("'%1' has no consecutive addresses; write --bind with an IPv4 "
                              "address, or --consecutive ports.")
            .arg(address.toString());
    const quint32 host = address.toIPv4Address() & 255U;
    if (host == 0)
        return QStringLiteral("'%1' is no address of one controller; write --bind with an address "
                              "such as 127.0.0.1, or --consecutive ports.")
            .arg(address.toString());
    if (host + static_cast<quint32>(count) - 1 > lastHost)
        return QStringLiteral("%1 controllers from %2 on do not fit before .255; write fewer, or a "
                              "lower --bind.")
            .arg(count)
            .arg(address.toString());
    return {};
}

} // namespace

QString placesError(const Place &first, int count, bool consecutivePorts)
{
    if (count <= 1)
        return {};
    if (!consecutivePorts)
        return addressesError(first.address, count);
    if (first.port + count - 1 > lastPort)
        return QStringLiteral("%1 controllers from port %2 on do not fit before 65536; write "
                              "fewer, or a lower --port.")
            .arg(count)
            .arg(first.port);
    return {};
}

void placeControllers(const Place &first, bool consecutivePorts, const Controllers &controllers)
{
    for (int i = 0; i < controllers.size(); ++i) {
        Place &place = controllers.at(i)->place;
        const auto offset = static_cast<quint16>(i);
        const quint16 portOffset = consecutivePorts ? offset : 0;
        if (place.name.isEmpty())
            place.name = QByteArray::number(i + 1);
        place.address = first.address;
        if (i > 0 && !consecutivePorts)
            place.address = QHostAddress(first.address.toIPv4Address() + offset);
        if (place.port == 0 && first.port == 0)
            place.portOffset = portOffset;
        else if (place.port == 0)
            place.port = static_cast<quint16>(first.port + portOffset);
    }
}
