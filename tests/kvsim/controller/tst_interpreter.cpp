#include "interpreted.h"

#include <QTest>

// What the simulated controller answers, command by command and without a network.
class tst_Interpreter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshMemory_data();
    void freshMemory();
    void devices_data();
    void devices();
    void aliases_data();
    void aliases();
    void queries_data();
    void queries();
    void writtenValues_data();
    void writtenValues();
    void countOfReads_data();
    void countOfReads();
    void countOfWrites_data();
    void countOfWrites();
    void readOnlyDevicesAreStoredTo();
};

namespace {

QByteArray repeated(const QByteArray &text, int count)
{
    QList<QByteArray> texts;
    for (int i = 0; i < count; ++i)
        texts.append(text);
    return texts.join(' ');
}

} // namespace

void tst_Interpreter::freshMemory_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("answer");

    const auto row = [](const char *command, const char *answer) {
        QTest::newRow(command) << QByteArray(command) << QByteArray(answer) + "\r\n";
    };
    row("RD DM123", "00123");
    row("RD DM00123", "00123");
    row("RDS DM9 1", "00009");
    row("RDS DM9 3", "00009 00010 00011");
    row("RDS DM9 0003", "00009 00010 00011");
    row("RD   DM9", "00009");
    row("  RDS  DM9   2  ", "00009 00010");
    row("RD ZF65535", "65535");
    row("RD ZF65536", "00000");
    row("RD ZF65537", "00001");
    row("RD W1F", "00031");
    row("RD WF", "00015");
    row("RDS W9 2", "00009 00010");
    row("RDS WFF 2", "00255 00256");
    // Channel 5 holds binary 101, channel 16 has bit 4 set.
    row("RDS R500 4", "1 0 1 0");
    row("RDS R1600 6", "0 0 0 0 1 0");
    row("RD R014", "0");
    row("RD R015", "0");
    row("RD R016", "E0");
    row("RD R099", "E0");
    row("RD R100", "1");
    row("RD R5", "0");
    row("RDS R014 4", "0 0 1 0");
    row("RDS R215 2", "0 1");
    row("RD R199910", "1");
    row("RD R199911", "0");
    // B1F is bit 15 of word 1, B20 bit 0 of word 2.
    row("RDS B10 2", "1 0");
    row("RDS B1F 4", "0 0 1 0");
    row("RD BA", "0");
    row("RD BA1", "1");
}

void tst_Interpreter::freshMemory()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, answer);
    QCOMPARE(askFresh(command), answer);
}

void tst_Interpreter::devices_data()
{
    QTest::addColumn<QByteArray>("below");
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<QByteArray>("above");
    QTest::addColumn<QByteArray>("values");

    const auto row = [](const char *name, const char *below, const char *last, const char *above,
                        const char *values) {
        QTest::newRow(name) << QByteArray(name) + below << QByteArray(name) + last
                            << QByteArray(name) + above << QByteArray(values);
    };
    row("DM", "65533", "65534", "65535", "65533 65534");
    row("D", "65533", "65534", "65535", "65533 65534");
    row("EM", "65533", "65534", "65535", "65533 65534");
    row("E", "65533", "65534", "65535", "65533 65534");
    row("FM", "32766", "32767", "32768", "32766 32767");
    row("F", "32766", "32767", "32768", "32766 32767");
    row("ZF", "524286", "524287", "524288", "65534 65535");
    row("TM", "510", "511", "512", "00510 00511");
    row("CM", "5998", "5999", "6000", "05998 05999");
    row("VM", "59998", "59999", "60000", "59998 59999");
    row("Z", "11", "12", "13", "00011 00012");
    row("W", "7FFE", "7FFF", "8000", "32766 32767");
    row("R", "199914", "199915", "200000", "0 0");
    row("MR", "399914", "399915", "400000", "0 0");
    row("M", "399914", "399915", "400000", "0 0");
    row("LR", "99914", "99915", "100000", "0 0");
    row("L", "99914", "99915", "100000", "0 0");
    row("CR", "7914", "7915", "8000", "0 0");
    row("B", "7FFE", "7FFF", "8000", "0 0");
}

void tst_Interpreter::devices()
{
    QFETCH(QByteArray, below);
    QFETCH(QByteArray, last);
    QFETCH(QByteArray, above);
    QFETCH(QByteArray, values);

    const QByteArray lastValue = values.mid(values.indexOf(' ') + 1);
    QCOMPARE(askFresh("RDS " + below + " 2"), QByteArray(values + "\r\n"));
    QCOMPARE(askFresh("RDS " + below + " 3"), QByteArray("E0\r\n"));
    QCOMPARE(askFresh("RD " + last), QByteArray(lastValue + "\r\n"));
    QCOMPARE(askFresh("RDS " + last + " 2"), QByteArray("E0\r\n"));
    QCOMPARE(askFresh("RD " + above), QByteArray("E0\r\n"));
    QCOMPARE(askFresh("WR " + above + " 0"), QByteArray("E0\r\n"));
}

void tst_Interpreter::aliases_data()
{
    QTest::addColumn<QByteArray>("write");
    QTest::addColumn<QByteArray>("read");
    QTest::addColumn<QByteArray>("other");
    QTest::addColumn<QByteArray>("otherAnswer");

    // What is written under one name is read under the other and nowhere else.
    const auto row
        = [](const char *write, const char *read, const char *other, const char *otherAnswer) {
              QTest::newRow(write) << QByteArray(write) << QByteArray(read) << QByteArray(other)
                                   << QByteArray(otherAnswer) + "\r\n";
          };
    row("WR D100 1", "RD DM100", "RDS DM99 3", "00099 00001 00101");
    row("WR DM100 1", "RD D100", "RD EM100", "00100");
    row("WR E100 1", "RD EM100", "RD DM100", "00100");
    row("WR F100 1", "RD FM100", "RD ZF100", "00100");
    row("WR ZF2 1", "RD ZF2", "RD Z2", "00002");
    row("WR Z2 1", "RD Z2", "RD ZF2", "00002");
    row("WR TM100 1", "RD TM100", "RD VM100", "00100");
    row("WR M200 1", "RD MR200", "RD R200", "0");
    row("WR MR200 1", "RD M200", "RDS MR200 2", "1 1");
    row("WR L200 1", "RD LR200", "RD MR200", "0");
    row("WR R015 1", "RD R15", "RDS R014 3", "0 1 1");
}

void tst_Interpreter::aliases()
{
    QFETCH(QByteArray, write);
    QFETCH(QByteArray, read);
    QFETCH(QByteArray, other);
    QFETCH(QByteArray, otherAnswer);

    Memory memory;
    QCOMPARE(ask(&memory, write), QByteArray("OK\r\n"));
    QCOMPARE(ask(&memory, read).trimmed().toInt(), 1);
    QCOMPARE(ask(&memory, other), otherAnswer);
}

void tst_Interpreter::queries_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("model code") << QByteArray("?K") << QByteArray("55\r\n");
    QTest::newRow("operating mode") << QByteArray("?M") << QByteArray("1\r\n");
    QTest::newRow("error number") << QByteArray("?E") << QByteArray("000\r\n");
    QTest::newRow("blank around it") << QByteArray(" ?K ") << QByteArray("55\r\n");
}

void tst_Interpreter::queries()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, answer);
    QCOMPARE(askFresh(command), answer);
}

void tst_Interpreter::writtenValues_data()
{
    QTest::addColumn<QByteArray>("write");
    QTest::addColumn<QByteArray>("read");
    QTest::addColumn<QByteArray>("answer");

    const auto row = [](const char *write, const char *read, const char *answer) {
        QTest::newRow(write) << QByteArray(write) << QByteArray(read)
                             << QByteArray(answer) + "\r\n";
    };
    row("WR DM7 -32768", "RD DM7", "32768");
    row("WR DM7 -32767", "RD DM7", "32769");
    row("WR DM7 -1", "RD DM7", "65535");
    row("WR DM7 -0", "RD DM7", "00000");
    row("WR DM7 0", "RD DM7", "00000");
    row("WR DM7 1", "RD DM7", "00001");
    row("WR DM7 0005", "RD DM7", "00005");
    row("WR DM7 -0005", "RD DM7", "65531");
    row("WR DM7 00000000065535", "RD DM7", "65535");
    row("WR DM7 65534", "RD DM7", "65534");
    row("WR DM7 65535", "RD DM7", "65535");
    row("WRS DM200 2  16961 17475", "RDS DM199 4", "00199 16961 17475 00202");
    row("WRS W9 2 1 2", "RDS W9 3", "00001 00002 00011");
    row("WR R7 0001", "RD R7", "1");
    row("WR R100 0000", "RD R100", "0");
    row("WRS R014 4 1 1 0 1", "RDS R013 6", "0 1 1 0 1 0");
    row("WRS B1F 2 1 0001", "RDS B1E 4", "0 1 1 1");
    row("WRS MR99915 2 1 1", "RDS M99915 2", "1 1");
}

void tst_Interpreter::writtenValues()
{
    QFETCH(QByteArray, write);
    QFETCH(QByteArray, read);
    QFETCH(QByteArray, answer);

    Memory memory;
    QCOMPARE(ask(&memory, write), QByteArray("OK\r\n"));
    QCOMPARE(ask(&memory, read), answer);
}

void tst_Interpreter::countOfReads_data()
{
    QTest::addColumn<QByteArray>("count");
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<QByteArray>("bits");

    const QByteArray refusal("E1");
    QTest::newRow("0") << QByteArray("0") << refusal << refusal;
    for (const int count : {1, 2, 999, 1000}) {
        QList<QByteArray> words;
        QList<QByteArray> bits;
        for (int i = 0; i < count; ++i) {
            words.append(QByteArray::number(i).rightJustified(5, '0'));
            const bool on = (i / 16) & (1 << (i % 16));
            bits.append(on ? "1" : "0");
        }
        QTest::addRow("%d", count)
            << QByteArray::number(count) << words.join(' ') << bits.join(' ');
    }
    QTest::newRow("1001") << QByteArray("1001") << refusal << refusal;
}

void tst_Interpreter::countOfReads()
{
    QFETCH(QByteArray, count);
    QFETCH(QByteArray, words);
    QFETCH(QByteArray, bits);
    QCOMPARE(askFresh("RDS DM0 " + count), QByteArray(words + "\r\n"));
    QCOMPARE(askFresh("RDS MR000 " + count), QByteArray(bits + "\r\n"));
}

void tst_Interpreter::countOfWrites_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("values");
    QTest::addColumn<QByteArray>("answer");

    const QByteArray done("OK\r\n");
    const QByteArray malformed("E1\r\n");
    QTest::newRow("0, no value") << 0 << 0 << malformed;
    QTest::newRow("0, one value") << 0 << 1 << malformed;
    QTest::newRow("1, no value") << 1 << 0 << malformed;
    QTest::newRow("1") << 1 << 1 << done;
    QTest::newRow("1, a value too many") << 1 << 2 << malformed;
    QTest::newRow("2, a value missing") << 2 << 1 << malformed;
    QTest::newRow("2") << 2 << 2 << done;
    QTest::newRow("999") << 999 << 999 << done;
    QTest::newRow("1000, a value missing") << 1000 << 999 << malformed;
    QTest::newRow("1000") << 1000 << 1000 << done;
    QTest::newRow("1000, a value too many") << 1000 << 1001 << malformed;
    QTest::newRow("1001") << 1001 << 1001 << malformed;
}

void tst_Interpreter::countOfWrites()
{
    QFETCH(int, count);
    QFETCH(int, values);
    QFETCH(QByteArray, answer);

    for (const char *device : {"EM5000 ", "LR5000 "}) {
        Memory memory;
        const QByteArray command = "WRS " + QByteArray(device) + QByteArray::number(count) + ' ';
        QCOMPARE(ask(&memory, command + repeated("1", values)), answer);
        if (answer != "OK\r\n")
            continue;
        const QByteArray read = "RDS " + QByteArray(device) + QByteArray::number(count);
        const char *one = *device == 'E' ? "00001" : "1";
        QCOMPARE(ask(&memory, read), QByteArray(repeated(one, count) + "\r\n"));
    }
}

void tst_Interpreter::readOnlyDevicesAreStoredTo()
{
    Memory memory;
    const auto address = parseAddress("CM5");
    QVERIFY(address);
    memory.setValue(*address, 1234);
    QCOMPARE(ask(&memory, "RDS CM4 3"), QByteArray("00004 01234 00006\r\n"));
}

QTEST_GUILESS_MAIN(tst_Interpreter)
#include "tst_interpreter.moc"
