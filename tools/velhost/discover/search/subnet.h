#pragma once

#include <QHostAddress>
#include <QList>
#include <QString>

#include <optional>

/// A range of IPv4 addresses that share their first bits.
struct Subnet
{
    /// The first address, the bits behind the prefix zero.
    quint32 first = 0;
    /// How many bits are shared, 0 to 32.
    int prefix = 32;
};
Q_DECLARE_TYPEINFO(Subnet, Q_MOVABLE_TYPE);

/// The network that the address is in.
Subnet subnetOf(quint32 address, int prefix);

/// Reads "192.168.0.0/24", also with an address from the middle, or an address alone. Returns
/// nothing when the text is neither; `error` then says what to write.
std::optional<Subnet> parseSubnet(const QString &text, QString *error);

/// As parseSubnet() reads it.
QString subnetText(Subnet subnet);

/// How many addresses a device may have there: all but the first and the last, which stand for the
/// network and for everyone in it. A network of one or two addresses has no such two.
quint32 hostCount(Subnet subnet);

/// The address of the device with that number, from 0 to hostCount() - 1.
QHostAddress hostAt(Subnet subnet, quint32 number);

/// The address that everyone in the network listens to; nothing in a network of one or two.
std::optional<QHostAddress> broadcastAddress(Subnet subnet);

/// The networks without those that are part of another one, so that no address is in two.
QList<Subnet> withoutOverlap(const QList<Subnet> &subnets);
