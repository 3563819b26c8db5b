#include "hostrecords.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QTest>

namespace {

using Values = QMap<QString, QString>;

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
    void writeKeepsTheValues_data();
    void writeKeepsTheValues();
    void bitWriteKeepsTheOtherBits_data();
    void bitWriteKeepsTheOtherBits();
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
    row("line feed before a short", "D201", "1", "1", "RD D201\r", "\n5\r\n", text("5"));
    row("line feed before a long", "D201", "1", "2", "RDS D201 2\r", "\n65535 65535\r\n",
        text("-1"));
    row("line feed before ascii", "D200-2", "1", "9", "RDS D200 2\r", "\n16961 17475\r\n",
        text("ABCD"));
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
    // The value of an earlier cycle must be ignored: it is too long for the item.
    DataItem item = dataItem(text("Counter"), address, memoryType, dataType, QString(100, u'x'));
    QCOMPARE(plugin.manageDataItem(item, text("read"), socket), QString());
    QTEST(valueOf(item), "value");
    // A null text would not be an empty value in a host that stores it.
    QVERIFY(!valueOf(item).isNull());
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
    row("bit set in what is no single word", "DM100.1", "1", "0", "1", "RD DM100\rWR DM100 2\r",
        {"00008 00001\r\n", "OK\r\n"});
    row("bit cleared in what is no single word", "DM100.1", "1", "0", "0", "RD DM100\rWR DM100 0\r",
        {"00010 00003\r\n", "OK\r\n"});
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
    row("bit device, greatest number sets", "R100", "0", "0", "2147483647",
        "RD R100\rWR R100 0001\r", {"0\r\n", "OK\r\n"});
    row("bit device, a number above the greatest clears", "R100", "0", "0", "2147483648",
        "RD R100\rWR R100 0000\r", {"1\r\n", "OK\r\n"});
    row("bit device, ten digits clear", "R100", "0", "0", "5000000000", "RD R100\rWR R100 0000\r",
        {"1\r\n", "OK\r\n"});
    row("bit device, a fraction clears", "R100", "0", "0", "0.5", "RD R100\rWR R100 0000\r",
        {"1\r\n", "OK\r\n"});
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

void tst_ItemService::writeKeepsTheValues_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("memoryType");
    QTest::addColumn<QString>("dataType");
    QTest::addColumn<Values>("values");
    QTest::addColumn<QByteArray>("lines");

    const Values none;
    const Values other = {{text("quality"), text("good")}};
    const Values both = {{text("quality"), text("good")}, {text("value"), text("07")}};
    const auto row = [](const char *name, const char *address, const char *memoryType,
                        const char *dataType, const Values &values, const QByteArray &lines) {
        QTest::newRow(name) << text(address) << text(memoryType) << text(dataType) << values
                            << lines;
    };
    row("word without a value", "D201", "1", "3", none, "WR D201 0000\r");
    row("word with another entry", "D201", "1", "3", other, "WR D201 0000\r");
    row("word with both", "D201", "1", "3", both, "WR D201 0007\r");
    row("bit without a value", "DM100.3", "1", "0", none, "RD DM100\rWR DM100 0\r");
    row("bit device without a value", "R100", "0", "0", none, "RD R100\rWR R100 0000\r");
    row("bit device with both", "R100", "0", "0", both, "RD R100\rWR R100 0001\r");
}

void tst_ItemService::writeKeepsTheValues()
{
    QFETCH(QString, address);
    QFETCH(QString, memoryType);
    QFETCH(QString, dataType);
    QFETCH(Values, values);
    ScriptedPeer peer(script({"00008\r\n", "OK\r\n"}));
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    DataItem item = dataItem(text("Counter"), address, memoryType, dataType);
    item.values = values;
    QCOMPARE(plugin.manageDataItem(item, text("write"), socket), QString());
    QCOMPARE(item.values, values);
    socket.disconnect();
    QTEST(peer.finish(), "lines");
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
