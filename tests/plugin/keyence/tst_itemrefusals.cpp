#include "hostrecords.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QTest>

namespace {

const QString loopback = QStringLiteral("127.0.0.1");

} // namespace

// Items that fail: what is still sent, returned and logged.
class tst_ItemRefusals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesItem_data();
    void refusesItem();
    void preReadWithoutAnswerWritesNothing();
};

void tst_ItemRefusals::refusesItem_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("memoryType");
    QTest::addColumn<QString>("dataType");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArrayList>("answers");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("logged");

    const auto row = [](const char *name, const char *command, const char *address,
                        const char *memoryType, const char *dataType, const char *value,
                        const QByteArray &lines, const QByteArrayList &answers, const char *error,
                        const char *logged) {
        QTest::newRow(name) << text(command) << text(address) << text(memoryType) << text(dataType)
                            << text(value) << lines << answers << text(error) << text(logged);
    };
    // A failed check returns the short text and logs it with the item's name; nothing is sent.
    const auto check = [&](const char *name, const char *command, const char *address,
                           const char *memoryType, const char *dataType, const char *value,
                           const char *error) {
        const QByteArray logged
            = '[' + QByteArray(command) + " data] item error from <Counter> :" + error;
        row(name, command, address, memoryType, dataType, value, "", {}, error, logged.constData());
    };
    check("bit with another value", "write", "DM100.3", "1", "0", "2", "data type not boolean");
    check("bit 16, read", "read", "DM100.16", "1", "0", "", "bit number invalid");
    check("bit 16, write", "write", "DM100.16", "1", "0", "1", "bit number invalid");
    check("short out of range", "write", "D201", "1", "1", "32768", "value out of range");
    check("float with an exponent", "write", "D201", "1", "7", "1e3",
          "invalid format for data type");
    check("bit without a bit in the address", "write", "D201", "1", "0", "1",
          "invalid format for data type");
    check("count of a short", "read", "D200-10", "1", "1", "", "invalid address");
    check("count of an unknown type", "read", "D200-10", "1", "10", "", "invalid address");
    check("count of an unknown type, write", "write", "D200-10", "1", "10", "1", "invalid address");
    check("range of a bit device", "read", "R100-105", "0", "0", "", "invalid address");
    check("ascii without length", "read", "D200", "1", "9", "", "data lenght invalid");
    check("ascii too long", "write", "D200-2", "1", "9", "ABCDE", "data lenght invalid");
    check("ascii of no words", "read", "D200-0", "1", "9", "", "data lenght invalid");
    check("unknown type, write", "write", "D201", "1", "10", "1", "data lenght invalid");

    const char *notSent = "[ ] not sent: Data item parameters invalid";
    row("no device letters", "read", "100", "1", "1", "old", "", {}, notSent, notSent);
    row("malformed address", "write", "DM100.x", "1", "1", "5", "", {}, notSent, notSent);
    row("empty address", "read", "", "1", "1", "old", "", {}, notSent, notSent);
    row("bit address of a short", "read", "DM100.3", "1", "1", "old", "", {}, notSent, notSent);
    row("bit of a bit device", "read", "R100.3", "0", "0", "old", "", {}, notSent, notSent);
    row("bit of a bit device, write", "write", "R100.3", "0", "0", "1", "", {}, notSent, notSent);
    row("unknown type, read", "read", "D201", "1", "10", "old", "", {}, notSent, notSent);
    row("empty ascii value", "write", "D200-2", "1", "9", "", "", {}, notSent, notSent);

    const char *refusedRead = "[RD D201\r] <Counter> :invalid address";
    row("read refused", "read", "D201", "1", "1", "old", "RD D201\r", {"E0\r\n"}, refusedRead,
        refusedRead);
    const char *refusedWrite = "[WR D201 0005\r] <Counter> :invalid address";
    row("write refused", "write", "D201", "1", "1", "5", "WR D201 0005\r", {"E4\r\n"}, refusedWrite,
        refusedWrite);
    const char *refusedPreRead = "[RD DM100\r] <Counter> :invalid address";
    row("read before a bit write refused", "write", "DM100.3", "1", "0", "1", "RD DM100\r",
        {"E1\r\n"}, refusedPreRead, refusedPreRead);
    const char *refusedBit = "[WR DM100 8\r] <Counter> :invalid address";
    row("bit write refused", "write", "DM100.3", "1", "0", "1", "RD DM100\rWR DM100 8\r",
        {"00000\r\n", "E1\r\n"}, refusedBit, refusedBit);
    const char *refusedDevice = "[RD R100\r] <Counter> :invalid address";
    row("read before a bit device's write refused", "write", "R100", "0", "0", "1", "RD R100\r",
        {"E0\r\n"}, refusedDevice, refusedDevice);
}

void tst_ItemRefusals::refusesItem()
{
    QFETCH(QString, command);
    QFETCH(QString, address);
    QFETCH(QString, memoryType);
    QFETCH(QString, dataType);
    QFETCH(QString, value);
    QFETCH(QByteArray, lines);
    QFETCH(QByteArrayList, answers);
    QFETCH(QString, logged);
    ScriptedPeer peer(script(answers));
    RecordingBackend host;
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    DataItem item = dataItem(text("Counter"), address, memoryType, dataType, value);
    QTEST(plugin.manageDataItem(item, command, socket), "error");
    QCOMPARE(host.errorLog, QStringList{logged});
    QCOMPARE(valueOf(item), value);
    QCOMPARE(item.item.lastError, QString());
    socket.disconnect();
    QCOMPARE(peer.finish(), lines);
}

void tst_ItemRefusals::preReadWithoutAnswerWritesNothing()
{
    ScriptedPeer peer;
    RecordingBackend host;
    Keyence plugin;
    Socket socket(loopback, peer.port(), 30);
    DataItem item = dataItem(text("Flag"), text("DM100.3"), text("1"), text("0"), text("1"));
    const QString error
        = text("[RD DM100\r ] socket read data error from <Flag> :Timeout reading (30ms)");
    QCOMPARE(plugin.manageDataItem(item, text("write"), socket), error);
    QCOMPARE(host.errorLog, QStringList{error});
    QCOMPARE(valueOf(item), text("1"));
    QCOMPARE(peer.finish(), QByteArray("RD DM100\r"));
}

QTEST_GUILESS_MAIN(tst_ItemRefusals)
#include "tst_itemrefusals.moc"
