#include "discover/search/subnet.h"

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

/// No leading zeros: the system reads such a number as octal.
const QString numberForm = QStringLiteral("(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])");
const QString prefixForm = QStringLiteral("(?:/(3[0-2]|[12]?[0-9]))?");

} // namespace

Subnet subnetOf(quint32 address, int prefix)
{
    const quint64 size = quint64{1} << (32 - prefix);
    return {static_cast<quint32>(address & ~(size - 1)), prefix};
}

std::optional<Subnet> parseSubnet(const QString &text, QString *error)
{
    static const QRegularExpression form(
        QStringLiteral("\\A%1\\.%1\\.%1\\.%1%2\\z").arg(numberForm, prefixForm));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        *error = QStringLiteral("\"%1\" is no IPv4 network; write four numbers from 0 to 255 "
                                "without leading zeros and the number of shared bits, for example "
                                "192.168.0.0/24")
                     .arg(text);
        return {};
    }
    quint32 address = 0;
    for (int i = 1; i <= 4; ++i)
        address = address << 8 | match.captured(i).toUInt();
    return subnetOf(address, match.captured(5).isEmpty() ? 32 : match.captured(5).toInt());
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
