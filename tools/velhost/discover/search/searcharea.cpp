#include "discover/search/searcharea.h"

#include <QNetworkInterface>

namespace {

constexpr int shortestPrefix = 22;

/// The networks of that interface, by broadcast and by TCP; of all but loopback when it is empty.
SearchArea areaOf(const QString &interface, const QList<InterfaceNetwork> &networks)
{
    SearchArea area;
    for (const InterfaceNetwork &network : networks) {
        const bool isChosen = interface.isEmpty() ? !QHostAddress(network.subnet.first).isLoopback()
                                                  : network.interface == interface;
        if (!isChosen)
            continue;
        area.interfaces.append(network.interface);
        if (!area.tcp.contains(network.subnet)) {
            area.udp.append(broadcastOf(network.subnet));
            area.tcp.append(network.subnet);
        }
    }
    area.interfaces.removeDuplicates();
    return area;
}

QString noNetworkError(const QString &interface, const QList<InterfaceNetwork> &networks)
{
    if (interface.isEmpty())
        return QStringLiteral("no interface but loopback is up and has an IPv4 address; connect "
                              "one or name a network with --subnet");
    QStringList names;
    for (const InterfaceNetwork &network : networks)
        names.append(network.interface);
    names.removeDuplicates();
    return QStringLiteral("no interface \"%1\" is up and has an IPv4 address; there are: %2")
        .arg(interface,
             names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", ")));
}

QString tooLargeError(Subnet subnet)
{
    return QStringLiteral("the network %1 has %2 addresses, more than the 1022 of a /22; name a "
                          "part of it with --subnet, or add --force")
        .arg(subnetText(subnet), QString::number(hostCount(subnet)));
}

} // namespace

quint64 addressCount(const QList<Subnet> &subnets)
{
    quint64 count = 0;
    for (const Subnet &subnet : subnets)
        count += hostCount(subnet);
    return count;
}

quint64 Endpoints::count() const
{
    return addressCount(subnets) * static_cast<quint64>(ports.size());
}

Endpoint Endpoints::at(quint64 number) const
{
    for (const quint16 port : ports) {
        for (const Subnet &subnet : subnets) {
            if (number < hostCount(subnet))
                return {hostAt(subnet, static_cast<quint32>(number)), port};
            number -= hostCount(subnet);
        }
    }
    return {};
}

QList<InterfaceNetwork> machineNetworks()
{
    QList<InterfaceNetwork> networks;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        if (!interface.flags().testFlag(QNetworkInterface::IsUp))
            continue;
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries) {
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol && entry.prefixLength() >= 0)
                networks.append(
                    {interface.name(), subnetOf(entry.ip().toIPv4Address(), entry.prefixLength())});
        }
    }
    return networks;
}

std::optional<SearchArea> searchArea(const AreaChoice &choice,
                                     const QList<InterfaceNetwork> &networks, QString *error)
{
    SearchArea area;
    const bool broadcasts = choice.isInterfaceGiven || !choice.subnet;
    if (broadcasts)
        area = areaOf(choice.interface, networks);
    if (broadcasts && area.tcp.isEmpty()) {
        *error = noNetworkError(choice.interface, networks);
        return {};
    }
    if (choice.subnet) {
        const std::optional<Subnet> subnet = parseSubnet(*choice.subnet, error);
        if (!subnet)
            return {};
        area.tcp = {*subnet};
        if (!broadcasts)
            area.udp = area.tcp;
    }
    for (const Subnet &subnet : std::as_const(area.tcp)) {
        if (subnet.prefix < shortestPrefix && !choice.isForced) {
            *error = tooLargeError(subnet);
            return {};
        }
    }
    return area;
}
