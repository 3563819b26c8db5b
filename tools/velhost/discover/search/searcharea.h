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

/// Where a search asks.
struct SearchArea
{
    /// The interfaces whose networks are asked by broadcast.
    QStringList interfaces;
    /// What is asked by UDP; a broadcast address is a network of its own.
    QList<Subnet> udp;
    /// What is asked by TCP, address by address.
    QList<Subnet> tcp;
};

/// What the user chose of it.
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

/// One place to ask.
struct Endpoint
{
    QHostAddress address;
    quint16 port = 0;
};

/// Every port of every address, not stored one by one: a network may have millions.
class Endpoints
{
public:
    Endpoints(const QList<Subnet> &subnets, const QVector<quint16> &ports);

    quint64 count() const;

    /// From 0 to count() - 1. All addresses at the first port come first, so that a controller,
    /// which takes few connections, is not asked at all its ports at once.
    Endpoint at(quint64 number) const;

private:
    QList<Subnet> m_subnets;
    QVector<quint16> m_ports;
    quint64 m_hosts = 0;
};

/// The IPv4 networks of the machine's interfaces that are up.
QList<InterfaceNetwork> machineNetworks();

/// The area of a search. An interface alone: a broadcast in its networks, and their addresses by
/// TCP. A network alone: its addresses by UDP and TCP. Both: a broadcast in the interface's
/// networks, and the given one's addresses by TCP. Returns nothing when it cannot be; `error` then
/// says what to change.
std::optional<SearchArea> searchArea(const AreaChoice &choice,
                                     const QList<InterfaceNetwork> &networks, QString *error);
