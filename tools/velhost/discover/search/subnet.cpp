#include "discover/search/subnet.h"

#include <common/ipv4address.h>

#include <QRegularExpression>

namespace {

/// How many addresses a network with that prefix has.
quint64 sizeOf(int prefix)
{
    return quint64{1} << (32 - prefix);
}

/// In such a network each address is a device's.
bool isTiny(Subnet subnet)
{
    return subnet.prefix >= 31;
}

} // namespace

Subnet subnetOf(quint32 address, int prefix)
{
    return {static_cast<quint32>(address & ~(sizeOf(prefix) - 1)), prefix};
}

std::optional<Subnet> parseSubnet(const QString &text, QString *error)
{
    static const QRegularExpression form(
        QStringLiteral("\\A([0-9.]+)(?:/(3[0-2]|[12]?[0-9]))?\\z"));
    const QRegularExpressionMatch match = form.match(text);
    const std::optional<quint32> address = ipv4Address(match.captured(1));
    if (!address) {
        *error = QStringLiteral("\"%1\" is no IPv4 network; write four numbers from 0 to 255 "
                                "without leading zeros and the number of shared bits, for example "
                                "192.168.0.0/24")
                     .arg(text);
        return {};
    }
    return subnetOf(*address, match.captured(2).isEmpty() ? 32 : match.captured(2).toInt());
}

QString subnetText(Subnet subnet)
{
    return QStringLiteral("%1/%2").arg(QHostAddress(subnet.first).toString()).arg(subnet.prefix);
}

quint32 hostCount(Subnet subnet)
{
    return static_cast<quint32>(sizeOf(subnet.prefix) - (isTiny(subnet) ? 0 : 2));
}

QHostAddress hostAt(Subnet subnet, quint32 number)
{
    return QHostAddress(subnet.first + number + (isTiny(subnet) ? 0 : 1));
}

Subnet broadcastOf(Subnet subnet)
{
    if (isTiny(subnet))
        return subnet;
    return {static_cast<quint32>(subnet.first + sizeOf(subnet.prefix) - 1), 32};
}
