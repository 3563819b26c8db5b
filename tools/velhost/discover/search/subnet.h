#pragma once

#include <QHostAddress>
#include <QString>

#include <optional>

/// A range of IPv4 addresses that share their first bits.
struct Subnet
{
    /// The first address: all bits after the prefix are zero.
    quint32 first = 0;
    /// How many bits are shared, 0 to 32.
    int prefix = 32;

    bool operator==(Subnet other) const { return first == other.first && prefix == other.prefix; }
};
Q_DECLARE_TYPEINFO(Subnet, Q_MOVABLE_TYPE);

/// The network that the address is in.
Subnet subnetOf(quint32 address, int prefix);

/// Reads a network such as "192.168.0.0/24", of which any address may be given, or a single
/// address. Returns nothing when the text is wrong; `error` then says what to write.
std::optional<Subnet> parseSubnet(const QString &text, QString *error);

/// The network as ADDRESS/PREFIX.
QString subnetText(Subnet subnet);

/// How many addresses devices can have: all but the first one, which is the network's own, and the
/// last one, which is for broadcasts. In a network of one or two addresses devices can have all.
quint32 hostCount(Subnet subnet);

/// The device address with that number, from 0 to hostCount() - 1.
QHostAddress hostAt(Subnet subnet, quint32 number);

/// The broadcast address as a network of its own. One of one or two addresses has none, and is
/// returned itself.
Subnet broadcastOf(Subnet subnet);
