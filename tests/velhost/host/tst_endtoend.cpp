#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "text.h"

#include <QTest>

// All real parts together: the built program, the real plug-in, a simulated controller.

namespace {

/// One controller with an item of each kind of value, on a port of loopback.
QByteArray plantAt(int port)
{
    const QByteArray plant = plantJson(
        "127.0.0.1", portParameter(port),
        {itemJson("Running", "R015", "Bit device", "BIT"),
         itemJson("Counter", "D201", "Word device"), itemJson("Total", "DM300", "1", "2"),
         itemJson("Mask", "DM400", "1", "Hexadecimal 16Bit"),
         itemJson("Alarm", "DM400.3", "1", "BIT"), itemJson("Label", "DM500-2", "1", "ASCII"),
         itemJson("Wrong", "QQ1")});
    return R"({"networkInterfaces": ["eth0"], )" + plant.mid(1);
}

ProgramRun run(const QStringList &arguments, const QByteArray &plant)
{
    const QStringList common{text("--plugin"),   text(KEYENCE_PLUGIN_FILE), text("--plant"),
                             text("plant.json"), text("--format"),          text("json")};
    return runWithPlant(text(VELHOST_FILE), common + arguments, plant);
}

} // namespace

class tst_EndToEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItself();
    void reads();
    void writes();
    void failedWrite();
    void notConnected();
    void refusesUnknownType();
};

void tst_EndToEnd::declaresItself()
{
    const ProgramRun result = run({text("columns")}, plantAt(1));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output.section(u',', 1, 1), text("\"name\":\"keyence\""));
    const QString portColumn = text(
        R"json({"type":"column","scope":"device","name":"port","type_code":0,"int":3,)json"
        R"json("default":"8501","description":"TCP Host Link port (default 8501)","selection":[]})json");
    QCOMPARE(result.output.split(u'\n').value(4), portColumn);
}

void tst_EndToEnd::reads()
{
    SimulatorThread controller;
    QVERIFY2(controller.isListening(), qPrintable(controller.errorString()));
    QVERIFY(controller.setWord("R015", 1));
    QVERIFY(controller.setWord("DM201", 11));
    QVERIFY(controller.setWord("D201", 65535));
    QVERIFY(controller.setWord("DM300", 0x1234));
    QVERIFY(controller.setWord("DM301", 0xfffe));
    QVERIFY(controller.setWord("DM400", 0xbeef));
    QVERIFY(controller.setWord("DM500", 0x4241));
    QVERIFY(controller.setWord("DM501", 0x4443));

    const ProgramRun result = run({text("read")}, plantAt(controller.port()));
    QCOMPARE(
        withoutTimes(result.output),
        text(
            R"json({"type":"log","level":"error","time":"T","device":"Press","cycle":1,"text":"[RD QQ1\r] <Wrong> :invalid address"}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Running","value":"1","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Counter","value":"-1","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Total","value":"-126412","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Mask","value":"BEEF","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Alarm","value":"1","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Label","value":"ABCD","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Wrong","value":"","error":"[RD QQ1\r] <Wrong> :invalid address"}
)json"));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 1);
}

void tst_EndToEnd::writes()
{
    SimulatorThread controller;
    QVERIFY2(controller.isListening(), qPrintable(controller.errorString()));
    QVERIFY(controller.setWord("DM400", 0xbee7));
    const ProgramRun result = run({text("write"), text("--no-verify"), text("Press/Counter=1234"),
                                   text("Press/Total=-65537"), text("Press/Alarm=1"),
                                   text("Press/Running=1"), text("Press/Label=xy=/")},
                                  plantAt(controller.port()));
    QCOMPARE(
        withoutTimes(result.output),
        text(
            R"json({"type":"value","cycle":1,"time":"T","device":"Press","item":"Counter","value":"1234","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Total","value":"-65537","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Alarm","value":"1","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Running","value":"1","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Label","value":"xy=/","error":""}
)json"));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(controller.word("D201"), 1234);
    QCOMPARE(controller.word("DM300"), 0xffff);
    QCOMPARE(controller.word("DM301"), 0xfffe);
    QCOMPARE(controller.word("DM400"), 0xbeef);
    QCOMPARE(controller.word("R015"), 1);
    QCOMPARE(controller.word("DM500"), 0x7978);
    QCOMPARE(controller.word("DM501"), 0x2f3d);
}

void tst_EndToEnd::failedWrite()
{
    SimulatorThread controller;
    QVERIFY2(controller.isListening(), qPrintable(controller.errorString()));
    QVERIFY(controller.setWord("D201", 7));
    const ProgramRun result = run(
        {text("write"), text("--no-verify"), text("Press/Counter=32768"), text("Press/Wrong=1")},
        plantAt(controller.port()));
    QCOMPARE(
        withoutTimes(result.output),
        text(
            R"json({"type":"log","level":"error","time":"T","device":"Press","cycle":1,"text":"[write data] item error from <Counter> :value out of range"}
{"type":"log","level":"error","time":"T","device":"Press","cycle":1,"text":"[WR QQ1 0001\r] <Wrong> :invalid address"}
{"type":"device","cycle":1,"time":"T","device":"Press","error":"write failed: 2 entries in the error log"}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Counter","value":"32768","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Wrong","value":"1","error":""}
)json"));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(controller.word("D201"), 7);
}

void tst_EndToEnd::notConnected()
{
    int port = 0;
    {
        const SimulatorThread controller;
        QVERIFY2(controller.isListening(), qPrintable(controller.errorString()));
        port = controller.port();
    }
    const ProgramRun result = run({text("read")}, plantAt(port));
    QCOMPARE(
        withoutTimes(result.output),
        text(
            R"json({"type":"log","level":"error","time":"T","device":"Press","cycle":1,"text":"Not connected to PLC"}
{"type":"device","cycle":1,"time":"T","device":"Press","error":"Not connected to PLC"}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Running","value":"","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Counter","value":"","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Total","value":"","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Mask","value":"","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Alarm","value":"","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Label","value":"","error":""}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Wrong","value":"","error":""}
)json"));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 1);
}

void tst_EndToEnd::refusesUnknownType()
{
    QByteArray plant = plantAt(1);
    plant.replace("\"Short\"", "\"short\"");
    const ProgramRun result = run({text("read")}, plant);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors,
             text("velhost: plant.json: devices[0].items[1].parameters.data_type: \"short\" is not "
                  "offered; use one of: \"BIT\" (0), \"Short\" (1), \"Long\" (2), \"Word\" (3), "
                  "\"DWord\" (4), \"Hexadecimal 16Bit\" (5), \"Hexadecimal 32Bit\" (6), "
                  "\"Float\" (7), \"Double\" (8), \"ASCII\" (9), \"Unknown Data Type\" (10)\n"
                  "velhost: plant.json: devices[0].items[6].parameters.data_type: \"short\" is not "
                  "offered; use one of: \"BIT\" (0), \"Short\" (1), \"Long\" (2), \"Word\" (3), "
                  "\"DWord\" (4), \"Hexadecimal 16Bit\" (5), \"Hexadecimal 32Bit\" (6), "
                  "\"Float\" (7), \"Double\" (8), \"ASCII\" (9), \"Unknown Data Type\" (10)\n"));
    QCOMPARE(result.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_EndToEnd)
#include "tst_endtoend.moc"
