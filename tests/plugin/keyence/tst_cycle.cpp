#include "fullqueue.h"
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

// Closes the connection of the device: an answer that does not come closes it.
void loseConnection(Keyence &plugin, const DeviceInstancePlugin &device)
{
    LogList unanswered = logList(device, {word("Counter", "D201")});
    plugin.readData(&unanswered);
}

} // namespace

// The read and write cycles of a device.
class tst_Cycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyListConnectsAndSendsNothing_data();
    void emptyListConnectsAndSendsNothing();
    void invalidDeviceIsNotServed_data();
    void invalidDeviceIsNotServed();
    void invalidDeviceIsNotConnected_data();
    void invalidDeviceIsNotConnected();
    void unreachableDeviceIsNotServed_data();
    void unreachableDeviceIsNotServed();
    void stoppedPluginServesNothing();
    void secondOfThreeReadsFails();
    void secondOfThreeWritesFails();
    void successClearsNoError_data();
    void successClearsNoError();
    void connectionIsKeptBetweenCycles();
    void lostConnectionIsReopened();
    void disconnectInMidCycleFailsTheRest();
    void devicesHaveTheirOwnConnections();
};

void tst_Cycle::emptyListConnectsAndSendsNothing_data()
{
    QTest::addColumn<bool>("write");

    QTest::newRow("read") << false;
    QTest::newRow("write") << true;
}

void tst_Cycle::emptyListConnectsAndSendsNothing()
{
    QFETCH(bool, write);
    ScriptedPeer peer;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port(), 20)};
    Keyence plugin;
    plugin.init();
    loseConnection(plugin, host.configuredDevices.at(0));
    host.errorLog.clear();

    LogList list = logList(host.configuredDevices.at(0), {});
    QVERIFY(write ? plugin.writeData(&list) : plugin.readData(&list));
    QCOMPARE(list.lastError, QString());
    QCOMPARE(host.errorLog, QStringList());
    plugin.stopPlugin();
    QCOMPARE(peer.finish(), QByteArray("RD D201\r"));
    QCOMPARE(peer.connectionCount(), 2);
}

void tst_Cycle::invalidDeviceIsNotServed_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<QString>("port");
    QTest::addColumn<bool>("write");
    QTest::addColumn<QString>("error");

    QTest::newRow("read, address")
        << text("127.0.0.256") << text("8501") << false << text("invalid address");
    QTest::newRow("write, address")
        << text("localhost") << text("8501") << true << text("invalid address");
    QTest::newRow("read, port") << text("127.0.0.1") << text("none") << false
                                << text("invalid port");
    QTest::newRow("write, port") << text("127.0.0.1") << QString() << true << text("invalid port");
}

void tst_Cycle::invalidDeviceIsNotServed()
{
    QFETCH(QString, ip);
    QFETCH(QString, port);
    QFETCH(bool, write);
    QFETCH(QString, error);
    ScriptedPeer peer;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();

    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201", "5")});
    list.ipAddress = ip;
    list.parameters.insert(text("port"), port);
    QVERIFY(write ? plugin.writeData(&list) : plugin.readData(&list));
    QCOMPARE(list.lastError, error);
    QCOMPARE(list.dataItems.at(0).item.lastError, QString());
    QCOMPARE(valueOf(list.dataItems.at(0)), text("5"));
    QCOMPARE(host.errorLog, QStringList{text("Error on device <Press>: ") + error});
    plugin.stopPlugin();
    // Only the connection of init().
    QCOMPARE(peer.finish(), QByteArray());
    QCOMPARE(peer.connectionCount(), 1);
}

void tst_Cycle::invalidDeviceIsNotConnected_data()
{
    invalidDeviceIsNotServed_data();
}

// The socket of init() is still connected to the peer, even if the record has changed.
void tst_Cycle::invalidDeviceIsNotConnected()
{
    QFETCH(QString, ip);
    QFETCH(QString, port);
    QFETCH(bool, write);
    ScriptedPeer peer;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port(), 20)};
    Keyence plugin;
    plugin.init();
    loseConnection(plugin, host.configuredDevices.at(0));

    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201", "5")});
    list.ipAddress = ip;
    list.parameters.insert(text("port"), port);
    QVERIFY(write ? plugin.writeData(&list) : plugin.readData(&list));
    QTEST(list.lastError, "error");
    plugin.stopPlugin();
    QCOMPARE(peer.finish(), QByteArray("RD D201\r"));
    QCOMPARE(peer.connectionCount(), 1);
}

void tst_Cycle::unreachableDeviceIsNotServed_data()
{
    emptyListConnectsAndSendsNothing_data();
}

void tst_Cycle::unreachableDeviceIsNotServed()
{
    QFETCH(bool, write);
    const FullQueue queue;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), queue.port(), 20)};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201", "5")});
    QVERIFY(write ? plugin.writeData(&list) : plugin.readData(&list));
    QCOMPARE(list.lastError, text("Not connected to PLC"));
    QCOMPARE(list.dataItems.at(0).item.lastError, QString());
    QCOMPARE(valueOf(list.dataItems.at(0)), text("5"));
    QCOMPARE(host.errorLog, QStringList{text("Not connected to PLC")});
}

void tst_Cycle::stoppedPluginServesNothing()
{
    ScriptedPeer peer;
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    plugin.stopPlugin();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201", "5")});
    QVERIFY(plugin.readData(&list));
    QCOMPARE(list.lastError, text("Not connected to PLC"));
    QCOMPARE(host.errorLog, QStringList{text("Not connected to PLC")});
    QCOMPARE(peer.finish(), QByteArray());
    QCOMPARE(peer.connectionCount(), 1);
}

void tst_Cycle::secondOfThreeReadsFails()
{
    ScriptedPeer peer({{"00001\r\n"}, {"E0\r\n"}, {"00003\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    LogList list
        = logList(host.configuredDevices.at(0),
                  {word("First", "D1"), word("Second", "D99999", "old"), word("Third", "D3")});
    QVERIFY(plugin.readData(&list));
    const QString error = text("[RD D99999\r] <Second> :invalid address");
    QCOMPARE(valueOf(list.dataItems.at(0)), text("1"));
    QCOMPARE(valueOf(list.dataItems.at(1)), text("old"));
    QCOMPARE(valueOf(list.dataItems.at(2)), text("3"));
    QCOMPARE(list.dataItems.at(0).item.lastError, QString());
    QCOMPARE(list.dataItems.at(1).item.lastError, error);
    QCOMPARE(list.dataItems.at(2).item.lastError, QString());
    QCOMPARE(list.lastError, QString());
    QCOMPARE(host.errorLog, QStringList{error});
    plugin.stopPlugin();
    QCOMPARE(peer.finish(), QByteArray("RD D1\rRD D99999\rRD D3\r"));
}

void tst_Cycle::secondOfThreeWritesFails()
{
    ScriptedPeer peer({{"OK\r\n"}, {"E4\r\n"}, {"OK\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0),
                           {word("First", "D1", "1"), word("Second", "D2", "2"),
                            word("Third", "D3", "3"), word("Fourth", "D4", "65536")});
    list.dataItems[1].item.setLastError(text("of old"));
    QVERIFY(plugin.writeData(&list));
    QCOMPARE(list.dataItems.at(0).item.lastError, QString());
    QCOMPARE(list.dataItems.at(1).item.lastError, text("of old"));
    QCOMPARE(list.dataItems.at(2).item.lastError, QString());
    QCOMPARE(list.dataItems.at(3).item.lastError, QString());
    QCOMPARE(host.errorLog,
             (QStringList{text("[WR D2 0002\r] <Second> :invalid address"),
                          text("[write data] item error from <Fourth> :value out of range")}));
    plugin.stopPlugin();
    QCOMPARE(peer.finish(), QByteArray("WR D1 0001\rWR D2 0002\rWR D3 0003\r"));
}

void tst_Cycle::successClearsNoError_data()
{
    emptyListConnectsAndSendsNothing_data();
}

void tst_Cycle::successClearsNoError()
{
    QFETCH(bool, write);
    ScriptedPeer peer({{"00001\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201", "5")});
    list.setLastError(text("the device's"));
    list.dataItems[0].item.setLastError(text("the item's"));
    QVERIFY(write ? plugin.writeData(&list) : plugin.readData(&list));
    QCOMPARE(host.errorLog, QStringList());
    QCOMPARE(valueOf(list.dataItems.at(0)), write ? text("5") : text("1"));
    QCOMPARE(list.lastError, text("the device's"));
    QCOMPARE(list.dataItems.at(0).item.lastError, text("the item's"));
    plugin.stopPlugin();
    QCOMPARE(peer.finish(), QByteArray(write ? "WR D201 0005\r" : "RD D201\r"));
}

void tst_Cycle::connectionIsKeptBetweenCycles()
{
    ScriptedPeer peer({{"00001\r\n"}, {"OK\r\n"}, {"00003\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port())};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201", "2")});
    plugin.readData(&list);
    list.dataItems[0].values[text("value")] = text("2");
    plugin.writeData(&list);
    plugin.readData(&list);
    QCOMPARE(valueOf(list.dataItems.at(0)), text("3"));
    plugin.stopPlugin();
    QCOMPARE(peer.finish(), QByteArray("RD D201\rWR D201 0002\rRD D201\r"));
    QCOMPARE(peer.connectionCount(), 1);
}

void tst_Cycle::lostConnectionIsReopened()
{
    ScriptedPeer peer({{""}, {"00002\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port(), 50)};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0), {word("Counter", "D201")});
    plugin.readData(&list);
    QCOMPARE(list.dataItems.at(0).item.lastError,
             text("[RD D201\r ] socket read data error from <Counter> :Timeout reading (50ms)"));
    plugin.readData(&list);
    QCOMPARE(valueOf(list.dataItems.at(0)), text("2"));
    plugin.stopPlugin();
    QCOMPARE(peer.finish(), QByteArray("RD D201\rRD D201\r"));
    QCOMPARE(peer.connectionCount(), 2);
}

void tst_Cycle::disconnectInMidCycleFailsTheRest()
{
    ScriptedPeer peer({{""}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port(), 50)};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0),
                           {word("First", "D1"), word("Second", "D2"), word("Third", "D3")});
    plugin.readData(&list);
    const QStringList errors
        = {text("[RD D1\r ] socket read data error from <First> :Timeout reading (50ms)"),
           text("[RD D2\r ] socket write data error from <Second> :Bad file descriptor"),
           text("[RD D3\r ] socket write data error from <Third> :Bad file descriptor")};
    QCOMPARE(host.errorLog, errors);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(list.dataItems.at(i).item.lastError, errors.at(i));
    QCOMPARE(list.lastError, QString());
    QCOMPARE(peer.finish(), QByteArray("RD D1\r"));
}

void tst_Cycle::devicesHaveTheirOwnConnections()
{
    ScriptedPeer first({{"00001\r\n"}});
    ScriptedPeer second({{"00002\r\n"}});
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), first.port()),
                              deviceRecord(2, text("Oven"), second.port())};
    Keyence plugin;
    plugin.init();
    LogList oven = logList(host.configuredDevices.at(1), {word("Heat", "D2")});
    LogList press = logList(host.configuredDevices.at(0), {word("Force", "D1")});
    plugin.readData(&oven);
    plugin.readData(&press);
    QCOMPARE(valueOf(oven.dataItems.at(0)), text("2"));
    QCOMPARE(valueOf(press.dataItems.at(0)), text("1"));
    plugin.stopPlugin();
    QCOMPARE(first.finish(), QByteArray("RD D1\r"));
    QCOMPARE(second.finish(), QByteArray("RD D2\r"));
}

QTEST_GUILESS_MAIN(tst_Cycle)
#include "tst_cycle.moc"
