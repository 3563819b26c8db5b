#include "interpreted.h"

#include <QTest>

// What the simulated controller refuses, and that a refusal leaves the memory as it was.
class tst_InterpreterRefusals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void malformedCommands_data();
    void malformedCommands();
    void unknownAddresses_data();
    void unknownAddresses();
    void refusedWrites_data();
    void refusedWrites();
};

void tst_InterpreterRefusals::malformedCommands_data()
{
    QTest::addColumn<QByteArray>("command");

    const QList<QByteArray> commands{
        "",          " ",           "RD",         "RD DM0 1",   "RDS",          "RDS DM0",
        "RDS DM0 0", "RDS DM0 1 2", "RDS DM0 -1", "RDS DM0 +1", "RDS DM0 1.0",  "RDS DM0 A",
        "RDSDM0 1",  "RDS DM0 1x",  "RDDM0",      "rd DM0",     "RD dm0",       "RD W1f",
        "?k",        "?",           "?X",         "?K 1",       "??K",          "RDX DM0",
        "WR",        "WR DM0",      "WRS DM0",    "WRS DM0 1",  "WRS DM0 A 1",  "HELLO",
        "\tRD DM0",  "RD\tDM0",     "\x01",       "\xff",       "RDS DM0 1001", "RD,DM0"};
    for (const QByteArray &command : commands)
        QTest::newRow(command.toPercentEncoding(" ?").constData()) << command;
    QTest::newRow("zero byte alone") << QByteArray(1, '\0');
    QTest::newRow("zero byte behind the command") << QByteArray("?K\0", 3);
    QTest::newRow("count of a length no number has") << "RDS DM0 " + QByteArray(60000, '9');
}

void tst_InterpreterRefusals::malformedCommands()
{
    QFETCH(QByteArray, command);
    QCOMPARE(askFresh(command), QByteArray("E1\r\n"));
}

void tst_InterpreterRefusals::unknownAddresses_data()
{
    QTest::addColumn<QByteArray>("address");

    const QList<QByteArray> addresses{
        "DM", "DM-1", "DM+1", "DM1A", "DM1.U", "0", "100", "X0",  "QQ1", "C5",    "T5", "DMDM1",
        "W",  "W1G",  "W0X1", "B",    "B-1",   "R", "R1A", "R16", "Z1F", "DM\t1", "%1", "\xff"};
    for (const QByteArray &address : addresses)
        QTest::newRow(address.toPercentEncoding().constData()) << address;
    QTest::newRow("zero byte behind the number") << QByteArray("DM1\0", 4);
    QTest::newRow("2 to the power of 32") << QByteArray("DM4294967296");
    QTest::newRow("digits without end") << "DM" + QByteArray(60000, '9');
}

void tst_InterpreterRefusals::unknownAddresses()
{
    QFETCH(QByteArray, address);
    QCOMPARE(askFresh("RD " + address), QByteArray("E0\r\n"));
    QCOMPARE(askFresh("RDS " + address + " 1"), QByteArray("E0\r\n"));
    QCOMPARE(askFresh("WR " + address + " 1"), QByteArray("E0\r\n"));
    QCOMPARE(askFresh("WRS " + address + " 1 1"), QByteArray("E0\r\n"));
}

void tst_InterpreterRefusals::refusedWrites_data()
{
    QTest::addColumn<QByteArray>("write");
    QTest::addColumn<QByteArray>("refusal");
    QTest::addColumn<QByteArray>("read");

    const auto row = [](const char *write, const char *refusal, const char *read) {
        QTest::newRow(write) << QByteArray(write) << QByteArray(refusal) + "\r\n"
                             << QByteArray(read);
    };
    row("WR DM7 -32769", "E1", "RD DM7");
    row("WR DM7 65536", "E1", "RD DM7");
    row("WR DM7 4294967296", "E1", "RD DM7");
    row("WR DM7 +5", "E1", "RD DM7");
    row("WR DM7 00-5", "E1", "RD DM7");
    row("WR DM7 --5", "E1", "RD DM7");
    row("WR DM7 -", "E1", "RD DM7");
    row("WR DM7 1A", "E1", "RD DM7");
    row("WR DM7 0x1", "E1", "RD DM7");
    row("WR DM7 1.5", "E1", "RD DM7");
    row("WR DM7 1,5", "E1", "RD DM7");
    row("WR DM7 1 2", "E1", "RDS DM7 2");
    row("WR W1 A", "E1", "RD W1");
    row("WR R7 2", "E1", "RD R7");
    row("WR R7 -1", "E1", "RD R7");
    row("WR R7 00002", "E1", "RD R7");
    row("WR R7 ON", "E1", "RD R7");
    row("WRS DM7 3 1 2 65536", "E1", "RDS DM7 3");
    row("WRS DM7 3 1 2", "E1", "RDS DM7 3");
    row("WRS DM7 2 1 2 3", "E1", "RDS DM7 3");
    row("WRS R7 3 1 1 2", "E1", "RDS R7 3");
    row("WRS DM65533 3 1 2 3", "E0", "RDS DM65533 2");
    row("WRS R199914 3 1 1 1", "E0", "RDS R199914 2");
    row("WRS W7FFF 2 1 2", "E0", "RD W7FFF");
    row("WR R016 1", "E0", "RDS R015 2");
    row("WR CM5 1", "E4", "RD CM5");
    row("WRS CM5 2 1 2", "E4", "RDS CM5 2");
    row("WR CR5 1", "E4", "RD CR5");
    row("WRS CR005 2 1 1", "E4", "RDS CR005 2");
    // Of several faults the shape comes first, then the address, the values, the protection.
    row("WRS CM9999 2 1", "E1", "RD CM5");
    row("WR CM9999 65536", "E0", "RD CM5");
    row("WR CM5 65536", "E1", "RD CM5");
}

void tst_InterpreterRefusals::refusedWrites()
{
    QFETCH(QByteArray, write);
    QFETCH(QByteArray, refusal);
    QFETCH(QByteArray, read);

    Memory memory;
    const QByteArray before = ask(&memory, read);
    QCOMPARE(ask(&memory, write), refusal);
    QCOMPARE(ask(&memory, read), before);
}

QTEST_GUILESS_MAIN(tst_InterpreterRefusals)
#include "tst_interpreterrefusals.moc"
