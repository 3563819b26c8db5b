#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "text.h"

#include <QTest>

// What the built program prints of the real plug-in's log entries.

namespace {

/// Two devices at the same controller, each with those items.
QByteArray twoDevices(int port, const QByteArray &items)
{
    const QByteArray rest = R"(, "ip": "127.0.0.1", "parameters": {)" + portParameter(port)
                            + R"(}, "items": [)" + items + "]}";
    return R"({"devices": [{"id": 1, "name": "Press")" + rest + R"(, {"id": 2, "name": "Oven")"
           + rest + "]}";
}

/// One device with so many items at addresses that a controller refuses.
QByteArray refusedItems(int port, int count)
{
    QList<QByteArray> items;
    for (int i = 0; i < count; ++i)
        items.append(itemJson("I" + QByteArray::number(i), "DM" + QByteArray::number(70000 + i)));
    return plantJson("127.0.0.1", portParameter(port), items);
}

ProgramRun run(const char *arguments, const QByteArray &plant)
{
    const QStringList common{text("--plugin"), text(KEYENCE_PLUGIN_FILE)};
    return runWithPlant(text(VELHOST_FILE), common + text(arguments).split(u' '), plant);
}

} // namespace

class tst_LogEntries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameDeviceAndCycle_data();
    void nameDeviceAndCycle();
    void json();
    void repeated();
    void ofSeveralDevices();
    void manyDifferent_data();
    void manyDifferent();
};

void tst_LogEntries::nameDeviceAndCycle_data()
{
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<QString>("errors");

    const QString read = text("log error: Press, cycle 1: [RD DM70000\\r] <A> :invalid address\n"
                              "log error: Oven, cycle 1: [RD DM70000\\r] <A> :invalid address\n");
    const QString notInRange = text("log error: Oven, cycle 1: [write data] item error from <B> "
                                    ":value out of range\n");
    QTest::newRow("read") << QByteArray("read plant.json") << read;
    QTest::newRow("read, csv") << QByteArray("read plant.json --format csv") << read;
    QTest::newRow("write") << QByteArray("write plant.json Oven/B=40000") << notInRange;
    QTest::newRow("write only") << QByteArray("write plant.json --no-verify Oven/B=40000")
                                << notInRange;
    QTest::newRow("plan") << QByteArray("plan plant.json --write Oven/B=40000") << notInRange;
}

void tst_LogEntries::nameDeviceAndCycle()
{
    QFETCH(QByteArray, arguments);
    QFETCH(QString, errors);

    SimulatorThread controller;
    const ProgramRun result
        = run(arguments.constData(),
              twoDevices(controller.port(), itemJson("A", "DM70000") + ',' + itemJson("B", "DM1")));
    QCOMPARE(result.errors, errors);
}

void tst_LogEntries::json()
{
    SimulatorThread controller;
    const ProgramRun result = run("read plant.json --cycles 3 --interval 0 --format json",
                                  refusedItems(controller.port(), 1));
    QCOMPARE(result.errors, QString());
    const QStringList entries
        = withoutTimes(result.output).split(u'\n').filter(text(R"("type":"log")"));
    QStringList expected;
    for (int cycle = 1; cycle <= 3; ++cycle)
        expected.append(text(R"({"type":"log","level":"error","time":"T","device":"Press",)"
                             R"("cycle":%1,"text":"[RD DM70000\r] <I0> :invalid address"})")
                            .arg(cycle));
    QCOMPARE(entries, expected);
}

// The count stands behind the last cycle in which the entry came.
void tst_LogEntries::repeated()
{
    SimulatorThread controller;
    QCOMPARE(controller.addFault("refuse=E1@DM2@every=2"), QString());
    const ProgramRun result = run("read plant.json --cycles 5 --interval 0",
                                  plantJson("127.0.0.1", portParameter(controller.port()),
                                            {itemJson("A", "DM70000"), itemJson("B", "DM2")}));
    QCOMPARE(controller.faultCounts().at(0).applied, quint64(2));
    QCOMPARE(result.errors,
             text("log error: Press, cycle 1: [RD DM70000\\r] <A> :invalid address\n"
                  "log error: Press, cycle 2: [RD DM2\\r] <B> :invalid address\n"
                  "log error: Press, cycle 4: [RD DM2\\r] <B> :invalid address (x 2)\n"
                  "log error: Press, cycle 5: [RD DM70000\\r] <A> :invalid address (x 5)\n"));
    QCOMPARE(result.output.count(text("[RD DM70000")), 5);
}

// The same text of two devices, in turn.
void tst_LogEntries::ofSeveralDevices()
{
    SimulatorThread controller;
    const ProgramRun result = run("read plant.json --cycles 20 --interval 0",
                                  twoDevices(controller.port(), itemJson("A", "DM70000")));
    QCOMPARE(result.errors,
             text("log error: Press, cycle 1: [RD DM70000\\r] <A> :invalid address\n"
                  "log error: Oven, cycle 1: [RD DM70000\\r] <A> :invalid address\n"
                  "log error: Press, cycle 20: [RD DM70000\\r] <A> :invalid address (x 20)\n"
                  "log error: Oven, cycle 20: [RD DM70000\\r] <A> :invalid address (x 20)\n"));
}

void tst_LogEntries::manyDifferent_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("counts");

    QTest::newRow("one less than are kept") << 999 << 1998 << 999;
    QTest::newRow("as many as are kept") << 1000 << 2000 << 1000;
    // Each one was forgotten when it comes again.
    QTest::newRow("one more than are kept") << 1001 << 2002 << 0;
}

void tst_LogEntries::manyDifferent()
{
    QFETCH(int, items);
    QFETCH(int, lines);
    QFETCH(int, counts);

    SimulatorThread controller;
    const ProgramRun result = run("read plant.json --cycles 2 --interval 0 --format csv",
                                  refusedItems(controller.port(), items));
    QCOMPARE(result.errors.count(u'\n'), lines);
    QCOMPARE(result.errors.count(text("(x 2)")), counts);
}

QTEST_GUILESS_MAIN(tst_LogEntries)
#include "tst_logentries.moc"
