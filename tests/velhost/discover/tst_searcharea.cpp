#include "text.h"

#include <discover/search/searcharea.h>

#include <QHostAddress>
#include <QTest>

Q_DECLARE_METATYPE(InterfaceNetwork)

// What is asked: networks, their addresses, the choice of the user.

namespace {

Subnet subnet(const char *network)
{
    QString error;
    return parseSubnet(text(network), &error).value_or(Subnet());
}

/// A gateway with two networks, one of them twice, and a large one.
QList<InterfaceNetwork> gateway()
{
    return {{text("lo"), subnet("127.0.0.0/8")},      {text("eth0"), subnet("192.168.0.0/24")},
            {text("eth1"), subnet("192.168.0.0/24")}, {text("eth1"), subnet("10.1.2.4/30")},
            {text("tun0"), subnet("10.9.0.1/32")},    {text("big0"), subnet("172.16.0.0/12")}};
}

QString texts(const QList<Subnet> &subnets)
{
    QStringList result;
    for (const Subnet &one : subnets)
        result.append(subnetText(one));
    return result.join(u' ');
}

} // namespace

class tst_SearchArea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void subnets_data();
    void subnets();
    void refusedSubnets_data();
    void refusedSubnets();
    void endpoints();
    void millionsOfEndpoints();
    void areas_data();
    void areas();
    void allInterfaces();
    void largeNetworks_data();
    void largeNetworks();
    void noInterface_data();
    void noInterface();
};

void tst_SearchArea::subnets_data()
{
    QTest::addColumn<QString>("network");
    QTest::addColumn<QString>("read");
    QTest::addColumn<quint32>("count");
    QTest::addColumn<QString>("firstHost");
    QTest::addColumn<QString>("lastHost");
    QTest::addColumn<QString>("broadcast");

    const auto row = [](const char *network, const char *read, quint32 count, const char *firstHost,
                        const char *lastHost, const char *broadcast) {
        QTest::newRow(network) << text(network) << text(read) << count << text(firstHost)
                               << text(lastHost) << text(broadcast);
    };
    row("192.168.0.0/24", "192.168.0.0/24", 254, "192.168.0.1", "192.168.0.254",
        "192.168.0.255/32");
    row("192.168.0.77/24", "192.168.0.0/24", 254, "192.168.0.1", "192.168.0.254",
        "192.168.0.255/32");
    row("127.0.0.0/28", "127.0.0.0/28", 14, "127.0.0.1", "127.0.0.14", "127.0.0.15/32");
    row("10.0.0.5/29", "10.0.0.0/29", 6, "10.0.0.1", "10.0.0.6", "10.0.0.7/32");
    row("10.0.0.5/30", "10.0.0.4/30", 2, "10.0.0.5", "10.0.0.6", "10.0.0.7/32");
    row("10.0.0.5/31", "10.0.0.4/31", 2, "10.0.0.4", "10.0.0.5", "10.0.0.4/31");
    row("10.0.0.5/32", "10.0.0.5/32", 1, "10.0.0.5", "10.0.0.5", "10.0.0.5/32");
    row("10.0.0.5", "10.0.0.5/32", 1, "10.0.0.5", "10.0.0.5", "10.0.0.5/32");
    row("10.1.7.0/22", "10.1.4.0/22", 1022, "10.1.4.1", "10.1.7.254", "10.1.7.255/32");
    row("200.1.2.3/1", "128.0.0.0/1", 2147483646, "128.0.0.1", "255.255.255.254",
        "255.255.255.255/32");
    row("1.2.3.4/0", "0.0.0.0/0", 4294967294, "0.0.0.1", "255.255.255.254", "255.255.255.255/32");
}

void tst_SearchArea::subnets()
{
    QFETCH(QString, network);
    QFETCH(QString, read);
    QFETCH(quint32, count);
    QFETCH(QString, firstHost);
    QFETCH(QString, lastHost);
    QFETCH(QString, broadcast);

    QString error;
    const std::optional<Subnet> result = parseSubnet(network, &error);
    QCOMPARE(error, QString());
    QVERIFY(result.has_value());
    QCOMPARE(subnetText(*result), read);
    QCOMPARE(hostCount(*result), count);
    QCOMPARE(hostAt(*result, 0).toString(), firstHost);
    QCOMPARE(hostAt(*result, count - 1).toString(), lastHost);
    QCOMPARE(subnetText(broadcastOf(*result)), broadcast);
}

void tst_SearchArea::refusedSubnets_data()
{
    QTest::addColumn<QString>("network");

    for (const char *const network :
         {"", "lo", "192.168.0/24", "192.168.0.0/33", "192.168.0.0/", "192.168.0.0/-1",
          "192.168.0.0/024", "192.168.0.256/24", "192.168.0.010/24", "192.168.0.0 /24", "fe80::1",
          "192.168.0.1.1", "192.168.0.0/24\n", "192.168.0.0/255.255.255.0"})
        QTest::newRow(network) << text(network);
}

void tst_SearchArea::refusedSubnets()
{
    QFETCH(QString, network);

    QString error;
    QCOMPARE(parseSubnet(network, &error).has_value(), false);
    QCOMPARE(error,
             text("\"%1\" is no IPv4 network; write four numbers from 0 to 255 without leading "
                  "zeros and the number of shared bits, for example 192.168.0.0/24")
                 .arg(network));
}

void tst_SearchArea::endpoints()
{
    const Endpoints endpoints{{subnet("10.0.0.0/30"), subnet("10.9.0.1/32")}, {8501, 8500}};
    QStringList all;
    for (quint64 i = 0; i < endpoints.count(); ++i) {
        const Endpoint endpoint = endpoints.at(i);
        all.append(text("%1:%2").arg(endpoint.address.toString()).arg(endpoint.port));
    }
    QCOMPARE(all,
             QStringList({text("10.0.0.1:8501"), text("10.0.0.2:8501"), text("10.9.0.1:8501"),
                          text("10.0.0.1:8500"), text("10.0.0.2:8500"), text("10.9.0.1:8500")}));
}

void tst_SearchArea::millionsOfEndpoints()
{
    const Endpoints endpoints{{subnet("0.0.0.0/0")}, {1, 2, 3}};
    QCOMPARE(endpoints.count(), quint64{3} * 4294967294);
    const Endpoint last = endpoints.at(endpoints.count() - 1);
    QCOMPARE(last.address.toString(), text("255.255.255.254"));
    QCOMPARE(last.port, quint16{3});
}

void tst_SearchArea::areas_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<bool>("isInterfaceGiven");
    QTest::addColumn<QString>("subnet");
    QTest::addColumn<QString>("interfaces");
    QTest::addColumn<QString>("udp");
    QTest::addColumn<QString>("tcp");

    const auto row = [](const char *title, const char *interface, bool isGiven, const char *network,
                        const char *interfaces, const char *udp, const char *tcp) {
        QTest::newRow(title) << text(interface) << isGiven << text(network) << text(interfaces)
                             << text(udp) << text(tcp);
    };
    row("interface by default", "eth0", false, "", "eth0", "192.168.0.255/32", "192.168.0.0/24");
    row("interface", "eth0", true, "", "eth0", "192.168.0.255/32", "192.168.0.0/24");
    row("interface with two networks", "eth1", true, "", "eth1", "192.168.0.255/32 10.1.2.7/32",
        "192.168.0.0/24 10.1.2.4/30");
    row("no broadcast where there is but one address", "tun0", true, "", "tun0", "10.9.0.1/32",
        "10.9.0.1/32");
    row("network", "eth0", false, "127.0.0.0/28", "", "127.0.0.0/28", "127.0.0.0/28");
    row("network, and a default interface that is not there", "eth7", false, "127.0.0.1", "",
        "127.0.0.1/32", "127.0.0.1/32");
    row("both", "lo", true, "127.0.0.0/28", "lo", "127.255.255.255/32", "127.0.0.0/28");
    row("large interface, part of it", "big0", true, "172.16.4.0/22", "big0", "172.31.255.255/32",
        "172.16.4.0/22");
}

void tst_SearchArea::areas()
{
    QFETCH(QString, interface);
    QFETCH(bool, isInterfaceGiven);
    QFETCH(QString, subnet);
    QFETCH(QString, interfaces);
    QFETCH(QString, udp);
    QFETCH(QString, tcp);

    QString error;
    const std::optional<QString> network = subnet.isEmpty() ? std::nullopt : std::optional(subnet);
    const auto area = searchArea({interface, isInterfaceGiven, network, false}, gateway(), &error);
    QCOMPARE(error, QString());
    QVERIFY(area.has_value());
    QCOMPARE(area->interfaces.join(u' '), interfaces);
    QCOMPARE(texts(area->udp), udp);
    QCOMPARE(texts(area->tcp), tcp);
}

// All but loopback, and no network twice.
void tst_SearchArea::allInterfaces()
{
    QString error;
    const auto area = searchArea({QString(), true, {}, true}, gateway(), &error);
    QVERIFY(area.has_value());
    QCOMPARE(area->interfaces.join(u' '), text("eth0 eth1 tun0 big0"));
    QCOMPARE(texts(area->udp), text("192.168.0.255/32 10.1.2.7/32 10.9.0.1/32 172.31.255.255/32"));
    QCOMPARE(texts(area->tcp), text("192.168.0.0/24 10.1.2.4/30 10.9.0.1/32 172.16.0.0/12"));
}

void tst_SearchArea::largeNetworks_data()
{
    QTest::addColumn<QString>("network");
    QTest::addColumn<bool>("isForced");
    QTest::addColumn<QString>("error");

    const QString rest = text(" addresses, more than the 1022 of a /22; name a part of it with "
                              "--subnet, or add --force");
    QTest::newRow("/23") << text("10.0.0.0/23") << false << QString();
    QTest::newRow("/22") << text("10.0.0.0/22") << false << QString();
    QTest::newRow("/21") << text("10.0.0.0/21") << false
                         << text("the network 10.0.0.0/21 has 2046") + rest;
    QTest::newRow("/21, forced") << text("10.0.0.0/21") << true << QString();
    QTest::newRow("/0") << text("1.2.3.4/0") << false
                        << text("the network 0.0.0.0/0 has 4294967294") + rest;
}

void tst_SearchArea::largeNetworks()
{
    QFETCH(QString, network);
    QFETCH(bool, isForced);
    QFETCH(QString, error);

    QString found;
    const auto area = searchArea({{}, false, network, isForced}, {}, &found);
    QCOMPARE(area.has_value(), error.isEmpty());
    QCOMPARE(found, error);
    // The same for the network of an interface.
    found.clear();
    const QList<InterfaceNetwork> networks{{text("eth0"), subnet(network.toLatin1().constData())}};
    QCOMPARE(searchArea({text("eth0"), true, {}, isForced}, networks, &found).has_value(),
             error.isEmpty());
    QCOMPARE(found, error);
}

void tst_SearchArea::noInterface_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QList<InterfaceNetwork>>("networks");
    QTest::addColumn<QString>("error");

    using List = QList<InterfaceNetwork>;
    QTest::newRow("unknown")
        << text("eth7") << gateway()
        << text("no interface \"eth7\" is up and has an IPv4 address; there are: lo, eth0, eth1, "
                "tun0, big0");
    QTest::newRow("none at all") << text("eth0") << List()
                                 << text("no interface \"eth0\" is up and has an IPv4 address; "
                                         "there are: none");
    QTest::newRow("all of loopback alone")
        << QString() << List{gateway().constFirst()}
        << text("no interface but loopback is up and has an IPv4 address; connect one or name a "
                "network with --subnet");
}

void tst_SearchArea::noInterface()
{
    QFETCH(QString, interface);
    QFETCH(QList<InterfaceNetwork>, networks);
    QFETCH(QString, error);

    QString found;
    QCOMPARE(searchArea({interface, false, {}, true}, networks, &found).has_value(), false);
    QCOMPARE(found, error);
}

QTEST_GUILESS_MAIN(tst_SearchArea)
#include "tst_searcharea.moc"
