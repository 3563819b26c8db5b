#pragma once

#include "discover/search/subnet.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// A network that an interface of the machine is in.
struct InterfaceNetwork
{
    QString interface;
    Subnet subnet;
};

/// The addresses of a search.
struct SearchArea
{
    /// The interfaces whose networks are asked by broadcast.
    QStringList interfaces;
    /// The networks to ask by UDP; a broadcast address is a network of one address.
    QList<Subnet> udp;
    /// The networks to ask by TCP, each address separately.
    QList<Subnet> tcp;
};

/// The choice of the user.
struct AreaChoice
{
    /// An interface's name; empty for all but loopback.
    QString interface;
    bool isInterfaceGiven = false;
    /// As parseSubnet() takes it; nothing for the networks of the interface.
    std::optional<QString> subnet;
    /// Whether a network larger than a /22 may be asked address by address.
    bool isForced = false;
};

/// One address and port to ask.
struct Endpoint
{
    QHostAddress address;
    quint16 port = 0;
};

/// Every port of every address. They are computed, not stored: a network may have millions.
struct Endpoints
{
    QList<Subnet> subnets;
    QVector<quint16> ports;

    quint64 count() const;

    /// `number` is 0 to count() - 1. All addresses come with the first port, then all with the
    /// second one: a controller accepts few connections at once.
    Endpoint at(quint64 number) const;
};

/// How many addresses devices can have in these networks.
quint64 addressCount(const QList<Subnet> &subnets);

/// The IPv4 networks of the machine's interfaces that are up.
QList<InterfaceNetwork> machineNetworks();

/// The area of a search. An interface alone: broadcasts in its networks, and their addresses by
/// TCP. A network alone: its addresses by UDP and TCP. Both: broadcasts in the networks of the
/// interface, and the addresses of the given network by TCP. Returns nothing when the choice is
/// wrong; `error` then says what to change.
std::optional<SearchArea> searchArea(const AreaChoice &choice,
                                     const QList<InterfaceNetwork> &networks, QString *error);
