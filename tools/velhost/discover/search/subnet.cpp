#include "discover/search/subnet.h"

#include <common/ipv4address.h>

#include <QRegularExpression>

#include <algorithm>

namespace {

quint32 lastAddress(Subnet subnet)
{
    const quint64 size = quint64{1} << (32 - subnet.prefix);
    return static_cast<quint32>(subnet.first + (size - 1));
}

/// In such a network each address is a device's.
bool isTiny(Subnet subnet)
{
    return subnet.prefix >= 31;
}

bool isPartOf(Subnet part, Subnet whole)
{
    return part.prefix >= whole.prefix && subnetOf(part.first, whole.prefix).first == whole.first;
}

} // namespace

Subnet subnetOf(quint32 address, int prefix)
{
    const quint64 size = quint64{1} << (32 - prefix);
    return {static_cast<quint32>(address & ~(size - 1)), prefix};
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
    const quint64 size = quint64{1} << (32 - subnet.prefix);
    return static_cast<quint32>(isTiny(subnet) ? size : size - 2);
}

QHostAddress hostAt(Subnet subnet, quint32 number)
{
    return QHostAddress(subnet.first + number + (isTiny(subnet) ? 0 : 1));
}

std::optional<QHostAddress> broadcastAddress(Subnet subnet)
{
    return isTiny(subnet) ? std::nullopt : std::optional(QHostAddress(lastAddress(subnet)));
}

QList<Subnet> withoutOverlap(const QList<Subnet> &subnets)
{
    QList<Subnet> result;
    for (const Subnet &subnet : subnets) {
        const auto holdsIt = [&](Subnet other) { return isPartOf(subnet, other); };
        if (std::any_of(result.begin(), result.end(), holdsIt))
            continue;
        const auto isInIt = [&](Subnet other) { return isPartOf(other, subnet); };
        result.erase(std::remove_if(result.begin(), result.end(), isInIt), result.end());
        result.append(subnet);
    }
    return result;
}
