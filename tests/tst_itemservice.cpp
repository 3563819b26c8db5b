#include "hostrecords.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QTest>

namespace {

QList<Answer> script(const QByteArrayList &answers)
{
    QList<Answer> result;
    for (const QByteArray &bytes : answers)
        result.append({bytes});
    return result;
}

const QString loopback = QStringLiteral("127.0.0.1");

} // namespace

// One item from its parameters to its value.
class tst_ItemService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsItem_data();
    void readsItem();
    void writesItem_data();
    void writesItem();
    void bitWriteKeepsTheOtherBits_data();
    void bitWriteKeepsTheOtherBits();
    void refusesItem_data();
    void refusesItem();
    void preReadWithoutAnswerWritesNothing();
    void configurationIsNotChanged();
};

void tst_ItemService::readsItem_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("memoryType");
    QTest::addColumn<QString>("dataType");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("value");

    const auto row
        = [](const char *name, const char *address, const char *memoryType, const char *dataType,
             const QByteArray &line, const QByteArray &answer, const QString &value) {
              QTest::newRow(name) << text(address) << text(memoryType) << text(dataType) << line
                                  << answer << value;
          };
    row("bit of a word", "DM100.3", "1", "0", "RD DM100\r", "00008\r\n", text("1"));
    row("bit of a word, clear", "DM100.4", "1", "0", "RD DM100\r", "00008\r\n", text("0"));
    row("bit without a bit in the address", "DM100", "1", "0", "RD DM100\r", "65535\r\n",
        text("0"));
    row("short", "D201", "1", "1", "RD D201\r", "65535\r\n", text("-1"));
    row("long", "D201", "1", "2", "RDS D201 2\r", "65535 65535\r\n", text("-1"));
    row("word", "D201", "1", "3", "RD D201\r", "65535\r\n", text("65535"));
    row("dword", "D201", "1", "4", "RDS D201 2\r", "00000 00001\r\n", text("65536"));
    row("hex16", "D201", "1", "5", "RD D201\r", "00255\r\n", text("FF"));
    row("hex32", "D201", "1", "6", "RDS D201 2\r", "04660 43981\r\n", text("ABCD1234"));
    row("float", "D201", "1", "7", "RDS D201 2\r", "04059 16457\r\n", text("3.1416"));
    row("double", "D201", "1", "8", "RDS D201 4\r", "00000 00000 00000 16368\r\n", text("1"));
    row("ascii count", "D200-2", "1", "9", "RDS D200 2\r", "16961 17475\r\n", text("ABCD"));
    row("ascii count of one", "D200-1", "1", "9", "RD D200\r", "16961\r\n", text("AB"));
    row("ascii range", "D200-209", "1", "9", "RDS D200 10\r",
        "16961 17475 17989 18503 19017 19531 20045 20559 21073 21587\r\n",
        text("ABCDEFGHIJKLMNOPQRST"));
    row("ascii ends at the first zero byte", "D200-2", "1", "9", "RDS D200 2\r", "00065 17475\r\n",
        text("A"));
    row("ascii of zero words", "D200-2", "1", "9", "RDS D200 2\r", "00000 00000\r\n", QString());
    row("ascii is UTF-8", "D200-1", "1", "9", "RD D200\r", "43459\r\n", QString(QChar(0xE9)));
    row("hexadecimal device number", "W1F", "1", "3", "RD W1F\r", "00031\r\n", text("31"));
    row("bit device", "R100", "0", "0", "RD R100\r", "1\r\n", text("1"));
    row("bit device declared short", "R100", "0", "1", "RD R100\r", "1\r\n", text("1"));
    row("bit device declared ascii", "R100", "0", "9", "RD R100\r", "0\r\n", text("0"));
    row("bit device of an unknown type", "R100", "0", "10", "RD R100\r", "0\r\n", text("0"));
    row("memory type is compared exactly", "D201", "00", "1", "RD D201\r", "65535\r\n", text("-1"));
    row("no memory type", "D201", "", "1", "RD D201\r", "65535\r\n", text("-1"));
    row("type that is no number is bit", "DM100.3", "1", "Short", "RD DM100\r", "8\r\n", text("1"));
    row("no line end", "D201", "1", "3", "RD D201\r", "00005", text("5"));
    row("answer that is no number", "D201", "1", "3", "RD D201\r", "OK\r\n", text("0"));
    row("answer ends at the first zero byte", "D201", "1", "3", "RD D201\r",
        QByteArray("5\0 6\r\n", 6), text("5"));
    row("answer of too many words", "D201", "1", "3", "RD D201\r", "1 2\r\n", text("0"));
}

void tst_ItemService::readsItem()
{
    QFETCH(QString, address);
    QFETCH(QString, memoryType);
    QFETCH(QString, dataType);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, answer);
    ScriptedPeer peer({{answer}});
    RecordingBackend host;
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    // What a cycle before left as value must not matter: it is far too long for the item.
    DataItem item
        = dataItem(text("Counter"), address, memoryType, dataType, QString(100, QLatin1Char('x')));
    QCOMPARE(plugin.manageDataItem(item, text("read"), socket), QString());
    QTEST(valueOf(item), "value");
    QCOMPARE(host.errorLog, QStringList());
    socket.disconnect();
    QCOMPARE(peer.finish(), line);
}

void tst_ItemService::writesItem_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("memoryType");
    QTest::addColumn<QString>("dataType");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArrayList>("answers");

    const QByteArrayList ok = {"OK\r\n"};
    const auto row
        = [](const char *name, const char *address, const char *memoryType, const char *dataType,
             const char *value, const QByteArray &lines, const QByteArrayList &answers) {
              QTest::newRow(name) << text(address) << text(memoryType) << text(dataType)
                                  << text(value) << lines << answers;
          };
    row("short", "D201", "1", "1", "12", "WR D201 0012\r", ok);
    row("short, negative", "D201", "1", "1", "-5", "WR D201 00-5\r", ok);
    row("short, greatest", "D201", "1", "1", "32767", "WR D201 32767\r", ok);
    row("long of one word", "D100", "1", "2", "5", "WRS D100 2 5\r", ok);
    row("long", "D100", "1", "2", "-1", "WRS D100 2 65535 65535\r", ok);
    row("word", "D201", "1", "3", "65535", "WR D201 65535\r", ok);
    row("dword", "D201", "1", "4", "65536", "WRS D201 2 0 1\r", ok);
    row("hex16", "D201", "1", "5", "FF", "WR D201 0255\r", ok);
    row("hex32", "D201", "1", "6", "ABCD1234", "WRS D201 2 4660 43981\r", ok);
    row("float", "D201", "1", "7", "1", "WRS D201 2 0 16256\r", ok);
    row("double", "D201", "1", "8", "1", "WRS D201 4 0 0 0 16368\r", ok);
    row("ascii count", "D200-2", "1", "9", "ABCD", "WRS D200 2  16961 17475\r", ok);
    row("ascii range", "D200-201", "1", "9", "ABC", "WRS D200 2  16961 67\r", ok);
    row("ascii of one word", "D200-1", "1", "9", "A", "WR D200  65\r", ok);
    row("empty value of a short", "D201", "1", "1", "", "WR D201 0000\r", ok);
    row("an answer without OK", "D201", "1", "1", "12", "WR D201 0012\r", {"00012\r\n"});

    row("bit set", "DM100.3", "1", "0", "1", "RD DM100\rWR DM100 8\r", {"00000\r\n", "OK\r\n"});
    row("bit cleared", "DM100.3", "1", "0", "0", "RD DM100\rWR DM100 0\r", {"00008\r\n", "OK\r\n"});
    row("bit set above 32767", "DM100.3", "1", "0", "1", "RD DM100\rWR DM100 40008\r",
        {"40000\r\n", "OK\r\n"});
    row("highest bit cleared", "DM100.15", "1", "0", "0", "RD DM100\rWR DM100 32767\r",
        {"65535\r\n", "OK\r\n"});
    row("empty value clears a bit", "DM100.3", "1", "0", "", "RD DM100\rWR DM100 1\r",
        {"00009\r\n", "OK\r\n"});
    row("empty value without a bit in the address", "DM100", "1", "0", "",
        "RD DM100\rWR DM100 40000\r", {"40000\r\n", "OK\r\n"});

    row("bit device set", "R100", "0", "0", "1", "RD R100\rWR R100 0001\r", {"0\r\n", "OK\r\n"});
    row("bit device set already", "R100", "0", "0", "1", "RD R100\rWR R100 0001\r",
        {"1\r\n", "OK\r\n"});
    row("bit device cleared", "R100", "0", "0", "0", "RD R100\rWR R100 0000\r",
        {"1\r\n", "OK\r\n"});
    row("bit device, any other number sets", "R100", "0", "0", "-7", "RD R100\rWR R100 0001\r",
        {"0\r\n", "OK\r\n"});
    row("bit device, no number clears", "R100", "0", "0", "on", "RD R100\rWR R100 0000\r",
        {"1\r\n", "OK\r\n"});
    row("bit device, empty value clears", "R100", "0", "0", "", "RD R100\rWR R100 0000\r",
        {"1\r\n", "OK\r\n"});
    row("bit device declared without a type", "R100", "0", "", "1", "RD R100\rWR R100 0001\r",
        {"0\r\n", "OK\r\n"});
    row("bit device declared short", "R100", "0", "1", "5", "WR R100 0001\r", ok);
    row("bit device declared word, zero", "R100", "0", "3", "0", "WR R100 0000\r", ok);
    row("bit device of an unknown type", "R100", "0", "10", "1", "WR R100 0001\r", ok);
}

void tst_ItemService::writesItem()
{
    QFETCH(QString, address);
    QFETCH(QString, memoryType);
    QFETCH(QString, dataType);
    QFETCH(QString, value);
    QFETCH(QByteArray, lines);
    QFETCH(QByteArrayList, answers);
    ScriptedPeer peer(script(answers));
    RecordingBackend host;
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    DataItem item = dataItem(text("Counter"), address, memoryType, dataType, value);
    QCOMPARE(plugin.manageDataItem(item, text("write"), socket), QString());
    QCOMPARE(valueOf(item), value);
    QCOMPARE(host.errorLog, QStringList());
    socket.disconnect();
    QCOMPARE(peer.finish(), lines);
}

void tst_ItemService::bitWriteKeepsTheOtherBits_data()
{
    QTest::addColumn<int>("word");

    for (const int word : {0, 1, 21845, 32767, 32768, 43690, 65534, 65535})
        QTest::addRow("%d", word) << word;
}

// Every bit is set and cleared in turn over one connection.
void tst_ItemService::bitWriteKeepsTheOtherBits()
{
    QFETCH(int, word);
    QList<Answer> answers;
    QByteArray lines;
    const auto expect = [&](int changed) {
        answers += {{QByteArray::number(word) + "\r\n"}, {"OK\r\n"}};
        lines += "RD DM100\rWR DM100 " + QByteArray::number(changed) + "\r";
    };
    for (int bit = 0; bit < 16; ++bit) {
        expect(word | (1 << bit));
        expect(word & ~(1 << bit));
    }
    ScriptedPeer peer(answers);
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    for (int bit = 0; bit < 16; ++bit) {
        for (const char *value : {"1", "0"}) {
            DataItem item = dataItem(text("Flag"), text("DM100.") + QString::number(bit), text("1"),
                                     text("0"), text(value));
            QCOMPARE(plugin.manageDataItem(item, text("write"), socket), QString());
        }
    }
    socket.disconnect();
    QCOMPARE(peer.finish(), lines);
}

void tst_ItemService::refusesItem_data()
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
    // A check that fails is returned in short and logged with the item's name; nothing is sent.
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

void tst_ItemService::refusesItem()
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

void tst_ItemService::preReadWithoutAnswerWritesNothing()
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

void tst_ItemService::configurationIsNotChanged()
{
    ScriptedPeer peer({{"1\r\n"}, {"1\r\n"}, {"OK\r\n"}});
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    DataItem item;
    item.item.name = text("Switch");
    item.item.parameters
        = {{text("memory_address"), text("R100")}, {text("memory_type"), text("0")}};
    const QMap<QString, QString> before = item.item.parameters;
    QCOMPARE(plugin.manageDataItem(item, text("read"), socket), QString());
    QCOMPARE(plugin.manageDataItem(item, text("write"), socket), QString());
    QCOMPARE(item.item.parameters, before);
    QCOMPARE(item.values, (QMap<QString, QString>{{text("value"), text("1")}}));
}

QTEST_GUILESS_MAIN(tst_ItemService)
#include "tst_itemservice.moc"
