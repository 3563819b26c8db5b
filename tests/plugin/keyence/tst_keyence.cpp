#include "hostrecords.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QTest>

namespace {

DataItem word(const char *name, const char *address, const char *value = "")
{
    return dataItem(text(name), text(address), text("1"), text("3"), text(value));
}

// All fields of a column, one line each, so that QCOMPARE shows a difference.
QStringList describe(const DatabaseColumnStructure &column)
{
    QStringList lines = {column.name, QString::number(column.type),
                         QString::number(column.intValue), column.defaultValue, column.description};
    for (const auto &entry : column.selectionValues)
        lines.append(entry.text + text(" = ") + entry.value);
    return lines;
}

// The null texts of the column, as column and field.
QStringList nullTexts(const DatabaseColumnStructure &column)
{
    QStringList result;
    const auto check = [&](const QString &value, const QString &field) {
        if (value.isNull())
            result.append(column.name + text(": ") + field);
    };
    check(column.name, text("name"));
    check(column.defaultValue, text("default"));
    check(column.description, text("description"));
    for (const auto &entry : column.selectionValues) {
        check(entry.text, text("text of a selection"));
        check(entry.value, text("value of ") + entry.text);
    }
    return result;
}

const QStringList discoveryFlags = {QStringLiteral("__vel_discovery_editable = 1"),
                                    QStringLiteral("__vel_discovery_parameter_only = 1")};

} // namespace

// The registration, and the calls besides init() and the cycles.
class tst_Keyence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registration();
    void itemColumns();
    void deviceColumns();
    void networkInterfaceColumn_data();
    void networkInterfaceColumn();
    void noTextOfAColumnIsNull();

    void operationsThatDoNothing();
    void logsPassTextsUnchanged();
    void initDeviceData_data();
    void initDeviceData();
    void connectDeviceConnectsAgain();
    void connectDeviceOfAnUnknownId();
    void worksWithoutAHost();
};

void tst_Keyence::registration()
{
    RecordingBackend host;
    Keyence plugin;
    QVERIFY(plugin.init());
    QCOMPARE(host.registrations.size(), 1);
    const PluginRegistration &said = host.registrations.constFirst();
    QCOMPARE(said.name, text("keyence"));
    QCOMPARE(said.version, 4U);
    QVERIFY(said.pluginColumns.isEmpty());
    QCOMPARE(said.itemColumns.size(), 3);
    QCOMPARE(said.deviceColumns.size(), 6);
    QVERIFY(said.fileColumns.isEmpty());

    const PluginInitOptions &options = said.options;
    QCOMPARE(options.unused1, 24);
    QCOMPARE(options.flag2, false);
    QCOMPARE(options.flag3, false);
    QCOMPARE(options.unused4, true);
    QCOMPARE(options.unused5, 180);
    QCOMPARE(options.flag6, true);
    QCOMPARE(options.flag7, false);
    QCOMPARE(options.unused8, false);
    QCOMPARE(options.unused9, false);
    QCOMPARE(options.text10, text("discover"));
    QVERIFY(options.unused11.isEmpty());
}

void tst_Keyence::itemColumns()
{
    RecordingBackend host;
    Keyence plugin;
    plugin.init();
    const QList<DatabaseColumnStructure> columns = host.registrations.constFirst().itemColumns;
    QCOMPARE(
        describe(columns.at(0)),
        (QStringList{text("memory_address"), text("2"), text("3"), QString(),
                     text("Device address, for example D201 or DM100.3. ASCII length goes in "
                          "the address: D200-10 reads 10 words (20 characters). D200-209 reads "
                          "D200 through D209.")}));
    QCOMPARE(describe(columns.at(1)),
             (QStringList{text("memory_type"), text("0"), text("3"), QString(), QString(),
                          text("Bit device = 0"), text("Word device = 1")}));
    QCOMPARE(describe(columns.at(2)),
             (QStringList{text("data_type"), text("0"), text("3"), QString(), QString(),
                          text("BIT = 0"), text("Short = 1"), text("Long = 2"), text("Word = 3"),
                          text("DWord = 4"), text("Hexadecimal 16Bit = 5"),
                          text("Hexadecimal 32Bit = 6"), text("Float = 7"), text("Double = 8"),
                          text("ASCII = 9"), text("Unknown Data Type = 10")}));
}

void tst_Keyence::deviceColumns()
{
    RecordingBackend host;
    Keyence plugin;
    plugin.init();
    const QList<DatabaseColumnStructure> columns = host.registrations.constFirst().deviceColumns;
    QCOMPARE(describe(columns.at(0)), (QStringList{text("port"), text("0"), text("3"), text("8501"),
                                                   text("TCP Host Link port (default 8501)")}));
    QCOMPARE(describe(columns.at(1)), (QStringList{text("timeout"), text("0"), text("0"),
                                                   text("2000"), text("Connection timeout")}));
    QCOMPARE(
        describe(columns.at(2)),
        (QStringList{text("timeout_ms"), text("0"), text("0"), text("60000"),
                     text("Overall discovery window in milliseconds (UDP Host Link search then "
                          "TCP subnet probe). Default 60000 is 60 seconds.")})
            + discoveryFlags);
    QCOMPARE(columns.at(3).name, text("network_interface"));
    QCOMPARE(describe(columns.at(4)),
             (QStringList{text("udp_ports"), text("8"), text("256"), text("8500-8510"),
                          text("UDP ports for Host Link ?K broadcast. Use commas and ranges, for "
                               "example 8501,8500 or 8500-8510. Default 8500-8510 (Host Link 8501, "
                               "KV STUDIO 8500, and nearby ports).")})
                 + discoveryFlags);
    QCOMPARE(
        describe(columns.at(5)),
        (QStringList{text("tcp_ports"), text("8"), text("256"), text("8500-8510"),
                     text("TCP ports for Host Link identify. Use commas and ranges, for example "
                          "8501,8500 or 8500-8510. Default 8500-8510. A very wide range is "
                          "truncated (max 64 ports).")})
            + discoveryFlags);
}

void tst_Keyence::networkInterfaceColumn_data()
{
    QTest::addColumn<QStringList>("interfaces");
    QTest::addColumn<QStringList>("offered");

    QTest::newRow("none") << QStringList() << QStringList();
    QTest::newRow("one") << QStringList{text("eth0")} << QStringList{text("eth0 = eth0")};
    QTest::newRow("the host's order") << QStringList{text("wlan0"), text("eth0")}
                                      << QStringList{text("wlan0 = wlan0"), text("eth0 = eth0")};
    QTest::newRow("without a name") << QStringList{text("eth0"), QString(), text("eth1")}
                                    << QStringList{text("eth0 = eth0"), text("eth1 = eth1")};
}

void tst_Keyence::networkInterfaceColumn()
{
    QFETCH(QStringList, interfaces);
    QFETCH(QStringList, offered);
    RecordingBackend host;
    for (const QString &name : qAsConst(interfaces))
        host.interfaces.append({name});
    Keyence plugin;
    plugin.init();
    QCOMPARE(describe(host.registrations.constFirst().deviceColumns.at(3)),
             (QStringList{text("network_interface"), text("8"), text("64"), text("eth0"),
                          text("Ethernet interface used for Host Link UDP broadcast. Default is "
                               "eth0. Choose All IPv4 interfaces to broadcast on every NIC."),
                          text("All IPv4 interfaces = ")})
                 + offered + discoveryFlags);
}

// A null text compares equal to an empty one, but a database stores it differently.
void tst_Keyence::noTextOfAColumnIsNull()
{
    RecordingBackend host;
    host.interfaces = {{text("eth0")}, {QString()}};
    Keyence plugin;
    plugin.init();
    const PluginRegistration &said = host.registrations.constFirst();
    const QList<DatabaseColumnStructure> columns = said.itemColumns + said.deviceColumns;
    QCOMPARE(columns.size(), 9);
    QStringList found;
    for (const DatabaseColumnStructure &column : columns)
        found += nullTexts(column);
    QCOMPARE(found.join(text(", ")), QString());
    QVERIFY(!said.name.isNull());
    QVERIFY(!said.options.text10.isNull());
}

void tst_Keyence::operationsThatDoNothing()
{
    RecordingBackend host;
    Keyence plugin;
    LogList list = logList(deviceRecord(1, text("Press"), 1), {word("Counter", "D201", "old")});
    QVERIFY(plugin.getEventData(&list));
    QVERIFY(plugin.logCallback(&list));
    QVERIFY(plugin.stopPlugin());
    QCOMPARE(list.lastError, QString());
    QCOMPARE(valueOf(list.dataItems.at(0)), text("old"));
    QCOMPARE(host.errorLog, QStringList());
    QVERIFY(host.registrations.isEmpty());
}

void tst_Keyence::logsPassTextsUnchanged()
{
    RecordingBackend host;
    Keyence plugin;
    plugin.writeDebugLog(text(" debug\r "));
    plugin.writeErrorLog(text(" error\r "));
    plugin.writeErrorLog(QString());
    QCOMPARE(host.debugLog, QStringList{text(" debug\r ")});
    QCOMPARE(host.errorLog, (QStringList{text(" error\r "), QString()}));
}

void tst_Keyence::initDeviceData_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("error");

    QTest::newRow("good") << text("127.0.0.1") << text("8501") << QString();
    QTest::newRow("bad address") << text("plc") << text("8501") << text("invalid address");
    QTest::newRow("bad port") << text("127.0.0.1") << text("x") << text("invalid port");
    QTest::newRow("both bad") << text("plc") << QString() << text("invalid port");
}

void tst_Keyence::initDeviceData()
{
    QFETCH(QString, ip);
    QFETCH(QString, port);
    QFETCH(QString, error);
    RecordingBackend host;
    Keyence plugin;
    LogList list = logList(deviceRecord(1, text("Press"), 0), {});
    list.ipAddress = ip;
    list.parameters = {{text("port"), port}};
    QCOMPARE(plugin.initDeviceData(&list), error.isEmpty());
    QCOMPARE(list.lastError, error);
    QCOMPARE(host.errorLog, error.isEmpty()
                                ? QStringList()
                                : QStringList{text("Error on device <Press>: ") + error});

    // A device without a port gets an empty one.
    list.parameters.clear();
    QVERIFY(!plugin.initDeviceData(&list));
    QCOMPARE(list.parameters, (QMap<QString, QString>{{text("port"), QString()}}));
    QVERIFY(!list.parameters.value(text("port")).isNull());
}

// An open connection is not used in place of a new one.
void tst_Keyence::connectDeviceConnectsAgain()
{
    ScriptedPeer peer;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    QVERIFY(peer.waitForConnections(1));
    QVERIFY(plugin.connectDevice(&host.configuredDevices[0]));
    QVERIFY(peer.waitForConnections(2));
    QCOMPARE(host.errorLog, QStringList());
}

void tst_Keyence::connectDeviceOfAnUnknownId()
{
    RecordingBackend host;
    Keyence plugin;
    ScriptedPeer peer;
    DeviceInstancePlugin device = deviceRecord(9, text("Press"), peer.port());
    QVERIFY(!plugin.connectDevice(&device));
    QCOMPARE(device.lastError, QString());
    QCOMPARE(host.errorLog, QStringList());
    QCOMPARE(peer.finish(), QByteArray());
    QCOMPARE(peer.connectionCount(), 0);
}

// Without a backend the calls of the library do nothing and return empty lists.
void tst_Keyence::worksWithoutAHost()
{
    Keyence plugin;
    QVERIFY(plugin.init());
    plugin.writeDebugLog(text("nobody hears it"));
    LogList list = logList(deviceRecord(1, text("Press"), 8501), {});
    QVERIFY(plugin.readData(&list));
    QCOMPARE(list.lastError, text("Not connected to PLC"));
    QVERIFY(plugin.stopPlugin());
}

QTEST_GUILESS_MAIN(tst_Keyence)
#include "tst_keyence.moc"
