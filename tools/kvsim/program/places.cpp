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

QString placesError(const QHostAddress &address, quint16 port, int count, Consecutive consecutive)
{
    if (count == 1)
        return {};
    if (consecutive == Consecutive::Addresses)
        return addressesError(address, count);
    if (port + count - 1 > lastPort)
        return QStringLiteral("%1 controllers from port %2 on do not fit before 65536; write "
                              "fewer, or a lower --port.")
            .arg(count)
            .arg(port);
    return {};
}

} // namespace

QString addPlaces(const QHostAddress &address, quint16 port, int count, Consecutive consecutive,
                  QList<Place> *places)
{
    QString error = placesError(address, port, count, consecutive);
    if (!error.isEmpty())
        return error;
    for (int i = 0; i < count; ++i) {
        const auto offset = static_cast<quint16>(i);
        Place place{QByteArray::number(i + 1), address, port, {}};
        if (i > 0 && consecutive == Consecutive::Addresses)
            place.address = QHostAddress(address.toIPv4Address() + offset);
        const quint16 portOffset = consecutive == Consecutive::Ports ? offset : 0;
        if (port == 0)
            place.portOffset = portOffset;
        else
            place.port = static_cast<quint16>(port + portOffset);
        places->append(place);
    }
    return {};
}
