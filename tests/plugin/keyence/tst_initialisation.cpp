#include "fullqueue.h"
#include "hostrecords.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "systemcalls.h"
#include "text.h"

#include <QTest>

#include <cerrno>

namespace {

using Parameters = QMap<QString, QString>;

DataItem word(const char *name, const char *address, const char *value = "")
{
    return dataItem(text(name), text(address), text("1"), text("3"), text(value));
}

// The connect fails, so that no port of this machine is used.
void refuseNextConnect()
{
    SystemCalls::fail(SystemCalls::Call::Connect, ECONNREFUSED);
}

} // namespace

// The plug-in's init(): the calls to the host and the connections.
class tst_Initialisation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SystemCalls::watch(); }
    void cleanup() { SystemCalls::stop(); }

    void declaresBeforeItAsksForDevices();
    void connectsEveryDevice();
    void reportsNothingOfItsOwn();
    void keepsTheFirstOfTwoDevices();
    void secondTimeKeepsTheConnection();
    void keepsAnEntryMadeByACycle();
    void afterStop();

    void port_data();
    void port();
    void portBeyondTheNumbersIsNotConnected_data();
    void portBeyondTheNumbersIsNotConnected();
    void deviceWithoutPort();
    void timeout_data();
    void timeout();
};

void tst_Initialisation::declaresBeforeItAsksForDevices()
{
    RecordingBackend host;
    Keyence plugin;
    QVERIFY(plugin.init());
    QCOMPARE(host.requests, (QStringList{text("getNetworkInterfaces"), text("initPlugin"),
                                         text("getPluginDevices")}));
}

void tst_Initialisation::connectsEveryDevice()
{
    ScriptedPeer first;
    ScriptedPeer second;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(7, text("Press"), first.port()),
                              deviceRecord(-3, text("Oven"), second.port())};
    Keyence plugin;
    QVERIFY(plugin.init());
    QVERIFY(first.waitForConnections(1));
    QVERIFY(second.waitForConnections(1));
    QVERIFY(plugin.stopPlugin());
    QCOMPARE(first.finish(), QByteArray());
    QCOMPARE(second.finish(), QByteArray());
}

void tst_Initialisation::reportsNothingOfItsOwn()
{
    const FullQueue queue;
    RecordingBackend host;
    DeviceInstancePlugin wrongAddress = deviceRecord(1, text("Press"), 8501);
    wrongAddress.ipAddress = text("256.0.0.1");
    host.configuredDevices = {wrongAddress, deviceRecord(2, text("Oven"), queue.port(), 20)};
    Keyence plugin;
    QVERIFY(plugin.init());
    QCOMPARE(host.errorLog, QStringList());
    QCOMPARE(host.debugLog, QStringList());
}

void tst_Initialisation::keepsTheFirstOfTwoDevices()
{
    ScriptedPeer first({{"00001\r\n"}});
    ScriptedPeer second({{"00002\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), first.port()),
                              deviceRecord(1, text("Oven"), second.port())};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(1), {word("Counter", "D201")});
    plugin.readData(&list);
    QCOMPARE(valueOf(list.dataItems.at(0)), text("1"));
    plugin.stopPlugin();
    QCOMPARE(first.finish(), QByteArray("RD D201\r"));
    QCOMPARE(second.finish(), QByteArray());
}

void tst_Initialisation::secondTimeKeepsTheConnection()
{
    ScriptedPeer peer({{"00001\r\n"}, {"00002\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201")});
    plugin.readData(&list);
    plugin.init();
    plugin.readData(&list);
    QCOMPARE(valueOf(list.dataItems.at(0)), text("2"));
    plugin.stopPlugin();
    // Both lines came over the first of the two connections.
    QCOMPARE(peer.finish(), QByteArray("RD D201\rRD D201\r"));
    QCOMPARE(peer.connectionCount(), 2);
    QCOMPARE(host.registrations.size(), 2);
}

void tst_Initialisation::keepsAnEntryMadeByACycle()
{
    ScriptedPeer peer;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    plugin.stopPlugin();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201")});
    plugin.readData(&list);
    plugin.init();
    plugin.readData(&list);
    QCOMPARE(host.errorLog,
             (QStringList{text("Not connected to PLC"), text("Not connected to PLC")}));
}

void tst_Initialisation::afterStop()
{
    ScriptedPeer peer({{"00001\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    plugin.stopPlugin();
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201")});
    plugin.readData(&list);
    QCOMPARE(valueOf(list.dataItems.at(0)), text("1"));
    QCOMPARE(host.errorLog, QStringList());
}

void tst_Initialisation::port_data()
{
    QTest::addColumn<Parameters>("parameters");
    QTest::addColumn<int>("connectedPort");

    const auto row = [](const char *name, const char *given, int connectedPort) {
        QTest::newRow(name) << Parameters{{text("port"), text(given)}} << connectedPort;
    };
    QTest::newRow("missing") << Parameters() << 0;
    row("empty", "", 0);
    row("no number", "none", 0);
    row("a number and a letter", "85x", 0);
    row("decimal", "8501", 8501);
    row("hexadecimal", "0x2135", 0);
    row("leading zero", "010", 10);
    row("leading zero of no octal number", "08501", 8501);
    row("greatest number", "2147483647", 65535);
    row("above the greatest number", "2147483648", 0);
    row("above the greatest number, 8501 in 16 bits", "2147492149", 0);
    row("eleven digits", "99999999999", 0);
}

void tst_Initialisation::port()
{
    QFETCH(Parameters, parameters);
    QFETCH(int, connectedPort);
    RecordingBackend host;
    DeviceInstancePlugin device = deviceRecord(1, text("Press"), 0);
    device.parameters = parameters;
    host.configuredDevices = {device};
    refuseNextConnect();
    Keyence plugin;
    QVERIFY(plugin.init());
    QCOMPARE(SystemCalls::failures(), 1);
    QCOMPARE(SystemCalls::ports(), QList<int>{connectedPort});
}

void tst_Initialisation::portBeyondTheNumbersIsNotConnected_data()
{
    QTest::addColumn<QString>("port");

    QTest::newRow("above the greatest number") << text("2147483648");
    QTest::newRow("eleven digits") << text("99999999999");
}

// The text is accepted as a port, but nothing can listen there.
void tst_Initialisation::portBeyondTheNumbersIsNotConnected()
{
    QFETCH(QString, port);
    RecordingBackend host;
    DeviceInstancePlugin device = deviceRecord(1, text("Press"), 0);
    device.parameters.insert(text("port"), port);
    host.configuredDevices = {device};
    Keyence plugin;
    QVERIFY(plugin.init());
    LogList list = logList(device, {word("Counter", "D201", "old")});
    QVERIFY(plugin.readData(&list));
    QCOMPARE(SystemCalls::ports(), (QList<int>{0, 0}));
    QCOMPARE(list.lastError, text("Not connected to PLC"));
    QCOMPARE(host.errorLog, QStringList{text("Not connected to PLC")});
    QCOMPARE(valueOf(list.dataItems.at(0)), text("old"));
}

void tst_Initialisation::deviceWithoutPort()
{
    RecordingBackend host;
    DeviceInstancePlugin device = deviceRecord(1, text("Press"), 0);
    device.parameters.remove(text("port"));
    host.configuredDevices = {device};
    Keyence plugin;
    QVERIFY(plugin.init());
    LogList list = logList(device, {word("Counter", "D201", "old")});
    QVERIFY(plugin.readData(&list));
    QCOMPARE(list.lastError, text("invalid port"));
    QCOMPARE(host.errorLog, QStringList{text("Error on device <Press>: invalid port")});
    QCOMPARE(valueOf(list.dataItems.at(0)), text("old"));
}

void tst_Initialisation::timeout_data()
{
    QTest::addColumn<Parameters>("parameters");
    QTest::addColumn<int>("waited");

    const auto row = [](const char *name, const char *given, int waited) {
        QTest::newRow(name) << Parameters{{text("timeout"), text(given)}} << waited;
    };
    QTest::newRow("missing") << Parameters() << 1000;
    row("empty", "", 1000);
    row("no number", "soon", 1000);
    row("hexadecimal", "0x7D0", 1000);
    row("leading zero", "02000", 2000);
    row("beyond signed 16 bits", "40000", 40000);
    row("beyond 16 bits", "70000", 70000);
    row("greatest number", "2147483647", 2147483647);
    row("above the greatest number", "2147483648", 1000);
}

// The time-outs of poll() for the connect and for the answer.
void tst_Initialisation::timeout()
{
    QFETCH(Parameters, parameters);
    QFETCH(int, waited);
    ScriptedPeer peer({{"00001\r\n"}});
    RecordingBackend host;
    DeviceInstancePlugin device = deviceRecord(1, text("Press"), 0);
    device.parameters = parameters;
    device.parameters.insert(text("port"), QString::number(peer.port()));
    host.configuredDevices = {device};
    Keyence plugin;
    QVERIFY(plugin.init());
    QCOMPARE(SystemCalls::waits(), QList<int>{waited});
    LogList list = logList(device, {word("Counter", "D201")});
    QVERIFY(plugin.readData(&list));
    QCOMPARE(valueOf(list.dataItems.at(0)), text("1"));
    QCOMPARE(SystemCalls::waits(), (QList<int>{waited, waited}));
}

QTEST_GUILESS_MAIN(tst_Initialisation)
#include "tst_initialisation.moc"
