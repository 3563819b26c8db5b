#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "text.h"

#include <QTest>

// `read` with expected values: the built program, the real plug-in, a simulated controller.

namespace {

ProgramRun runRead(int port, const QList<QByteArray> &items, const char *arguments)
{
    const QStringList common{text("read"), text("plant.json"), text("--plugin"),
                             text(KEYENCE_PLUGIN_FILE)};
    return runWithPlant(text(VELHOST_FILE), common + text(arguments).split(u' '),
                        plantJson("127.0.0.1", portParameter(port), items));
}

QByteArray expecting(const QByteArray &value, const QByteArray &tolerance = "0")
{
    return R"(, "expect": ")" + value + R"(", "tolerance": )" + tolerance;
}

} // namespace

class tst_Expected : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void table();
    void json();
    void csv();
    void onlyChanges();
};

void tst_Expected::values_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("more");
    QTest::addColumn<bool>("isWell");

    const auto row = [](const char *name, const char *address, const char *type,
                        const QByteArray &more, bool isWell) {
        QTest::newRow(name) << QByteArray(address) << QByteArray(type) << more << isWell;
    };
    row("nothing expected", "DM1", "Short", "", true);
    row("the value", "DM1", "Short", expecting("7"), true);
    row("the same number", "DM1", "Short", expecting("007"), true);
    row("another number", "DM1", "Short", expecting("8"), false);
    row("one less than within reach", "DM1", "Short", expecting("5", "1"), false);
    row("the least within reach", "DM1", "Short", expecting("6", "1"), true);
    row("the most within reach", "DM1", "Short", expecting("8", "1"), true);
    row("one more than within reach", "DM1", "Short", expecting("9", "1"), false);
    row("hexadecimal in small letters", "DM2", "Hexadecimal 16Bit", expecting("00be"), true);
    row("another hexadecimal", "DM2", "Hexadecimal 16Bit", expecting("BF"), false);
    row("text", "DM3-1", "ASCII", expecting("AB"), true);
    row("another text", "DM3-1", "ASCII", expecting("Ab"), false);
    // The plug-in gives 3.1416 of 3.1415927.
    row("Float in more digits than are read", "DM4", "Float", expecting("3.14159265"), true);
    row("another Float", "DM4", "Float", expecting("3.1414"), false);
    row("Float within reach", "DM4", "Float", expecting("3.2", "0.1"), true);
    row("Float out of reach", "DM4", "Float", expecting("3.3", "0.1"), false);
}

void tst_Expected::values()
{
    QFETCH(QByteArray, address);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, more);
    QFETCH(bool, isWell);

    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    QVERIFY(controller.setWord("DM2", 0xbe));
    QVERIFY(controller.setWord("DM3", 0x4241));
    QVERIFY(controller.setWord("DM4", 0x0fdb));
    QVERIFY(controller.setWord("DM5", 0x4049));
    const ProgramRun run
        = runRead(controller.port(), {itemJson("A", address, "1", type, more)}, "--format json");
    QCOMPARE(run.output.contains(text("\"expected\"")), !isWell);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, isWell ? 0 : 1);
}

// A value that cannot be read has its error alone.
void tst_Expected::table()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    const ProgramRun run
        = runRead(controller.port(),
                  {itemJson("A", "DM1", "1", "Short", expecting("8")), itemJson("B", "DM1"),
                   itemJson("C", "DM70000", "1", "Short", expecting("8"))},
                  "--format table");
    QCOMPARE(withoutTimes(run.output),
             text(R"(Cycle  Time                           Device  Item  Value  Error
1      T  Press   A     7      expected "8"
1      T  Press   B     7
1      T  Press   C            [RD DM70000\r] <C> :invalid address
)"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Expected::json()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    const ProgramRun run = runRead(
        controller.port(), {itemJson("A", "DM1", "1", "Short", expecting("8"))}, "--format json");
    QCOMPARE(withoutTimes(run.output),
             text(R"({"type":"value","cycle":1,"time":"T","device":"Press","item":"A",)"
                  R"("value":"7","error":"","expected":"8"})"
                  "\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Expected::csv()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    const ProgramRun run = runRead(
        controller.port(), {itemJson("A", "DM1", "1", "Short", expecting("8"))}, "--format csv");
    QCOMPARE(withoutTimes(run.output),
             text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                  "1,T,Press,A,7,,,8,\r\n"));
    QCOMPARE(run.exitCode, 1);
}

// A cycle that shows nothing fails all the same.
void tst_Expected::onlyChanges()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    const ProgramRun run
        = runRead(controller.port(), {itemJson("A", "DM1", "1", "Short", expecting("8"))},
                  "--only-changes --cycles 3 --interval 0");
    QCOMPARE(run.output.count(text("expected \"8\"")), 1);
    QCOMPARE(run.exitCode, 1);
}

QTEST_GUILESS_MAIN(tst_Expected)
#include "tst_expected.moc"
