#include "plantjson.h"
#include "plantrun.h"
#include "scriptedpeer.h"
#include "simulatorthread.h"
#include "text.h"

#include <QTest>

// `write` of the built program with the scripted plug-in, whose reads return the item's "answers"
// one after the other, and with the real plug-in.

namespace {

const QString program = QStringLiteral(VELHOST_FILE);

/// A device of the scripted plug-in at `ip` whose one item reads `answers`.
QByteArray scriptedPlant(const QByteArray &answers, const QByteArray &script = "",
                         const QByteArray &ip = "127.0.0.1")
{
    return plantJson(
        ip, R"("time_stamp": "2024-02-29T12:34:56.789+05:30", "script": ")" + script + R"(")",
        {R"({"name": "Counter", "parameters": {"answers": ")" + answers + R"("}})"});
}

/// A controller at `port` of loopback with an item for each kind of value.
QByteArray controllerPlant(int port)
{
    return plantJson("127.0.0.1", portParameter(port),
                     {itemJson("Running", "R015", "0", "BIT"), itemJson("Counter", "D201"),
                      itemJson("Level", "D210", "1", "Float"),
                      itemJson("Mask", "D220", "1", "Hexadecimal 16Bit"),
                      itemJson("Label", "D230-2", "1", "ASCII"),
                      itemJson("Clock", "CM700", "1", "Word"), itemJson("Wrong", "QQ1")});
}

QStringList arguments(const char *plugin, const char *format, const QStringList &rest)
{
    return QStringList{text("write"),      text("--plugin"), text(plugin), text("--plant"),
                       text("plant.json"), text("--format"), text(format)}
           + rest;
}

} // namespace

class tst_Write : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void confirmation_data();
    void confirmation();
    void namesEveryDevice();
    void records_data();
    void records();
    void table();
    void csv();
    void realController();
    void realFailures();
    void twiceTheSameItem();
    void writesOnly();
};

void tst_Write::confirmation_data()
{
    QTest::addColumn<QByteArray>("ip");
    QTest::addColumn<bool>("isAsked");

    QTest::newRow("loopback") << QByteArray("127.0.0.1") << false;
    QTest::newRow("end of loopback") << QByteArray("127.255.255.255") << false;
    QTest::newRow("before loopback") << QByteArray("126.255.255.255") << true;
    QTest::newRow("after loopback") << QByteArray("128.0.0.0") << true;
    QTest::newRow("every address") << QByteArray("0.0.0.0") << true;
    QTest::newRow("octal 87") << QByteArray("0127.0.0.1") << true;
    QTest::newRow("short form") << QByteArray("127.1") << true;
    QTest::newRow("one number too many") << QByteArray("127.0.0.1.2") << true;
    QTest::newRow("line feed behind") << QByteArray(R"(127.0.0.1\n)") << true;
    QTest::newRow("name") << QByteArray("localhost") << true;
    QTest::newRow("name that begins alike") << QByteArray("127.0.0.1.example.org") << true;
    QTest::newRow("empty") << QByteArray() << true;
}

void tst_Write::confirmation()
{
    QFETCH(QByteArray, ip);
    QFETCH(bool, isAsked);

    const QByteArray plant = scriptedPlant("1|2", "trace", ip);
    const QStringList plain = arguments(SCRIPTED_PLUGIN_FILE, "json", {text("Press/Counter=2")});
    const QString question = text("velhost: write would change devices that are not on this "
                                  "machine: \"Press\" (%1); add --yes to write to them\n")
                                 .arg(QString::fromLatin1(ip));
    const ProgramRun unconfirmed = runWithPlant(program, plain, plant);
    QCOMPARE(unconfirmed.errors, isAsked ? question : QString());
    // The plug-in logs its init(): without that line it was not started.
    QCOMPARE(unconfirmed.output.contains(text("init: 1 Press")), !isAsked);
    QCOMPARE(unconfirmed.exitCode, isAsked ? 2 : 0);

    const ProgramRun confirmed = runWithPlant(program, plain + QStringList(text("--yes")), plant);
    QCOMPARE(confirmed.errors, QString());
    QCOMPARE(confirmed.output.contains(text("init: 1 Press")), true);
    QCOMPARE(confirmed.exitCode, 0);
}

void tst_Write::namesEveryDevice()
{
    const QByteArray plant = R"({"devices": [
 {"id": 1, "name": "A", "ip": "10.0.0.1", "items": [{"name": "x"}]},
 {"id": 2, "name": "B", "ip": "127.0.0.1", "items": [{"name": "x"}]},
 {"id": 3, "name": "C", "ip": "10.0.0.3", "items": [{"name": "x"}]},
 {"id": 4, "name": "D", "ip": "10.0.0.4", "items": [{"name": "x"}]}]})";
    const QStringList targets{text("C/x=1"), text("B/x=1"), text("A/x=1"), text("C/x=2")};
    // The plug-in does not exist, but the program does not get so far.
    for (const QStringList &extra : {QStringList(), QStringList(text("--no-verify"))}) {
        const ProgramRun run
            = runWithPlant(program, arguments("none.so", "table", targets + extra), plant);
        QCOMPARE(run.errors,
                 text("velhost: write would change devices that are not on this machine: \"C\" "
                      "(10.0.0.3), \"A\" (10.0.0.1); add --yes to write to them\n"));
        QCOMPARE(run.output, QString());
        QCOMPARE(run.exitCode, 2);
    }
}

void tst_Write::records_data()
{
    QTest::addColumn<QByteArray>("answers");
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<int>("exitCode");

    const auto row = [](const char *title, const char *answers, const char *script,
                        const char *value, const char *outcome, int exitCode) {
        QTest::newRow(title) << QByteArray(answers) << QByteArray(script) << text(value)
                             << text(outcome) << exitCode;
    };
    row("verified", "1|2", "", "2", R"("old":"1","new":"2","readback":"2","error":"")", 0);
    row("as it was", "2", "", "2", R"("old":"2","new":"2","readback":"2","error":"")", 0);
    row("verified as number", "1|2.5", "", "2.50",
        R"("old":"1","new":"2.50","readback":"2.5","error":"")", 0);
    row("differs", "1", "", "7",
        R"("old":"1","new":"7","readback":"1","error":"the value read back is not the one written")",
        1);
    row("empty value", "A|", "", "", R"("old":"A","new":"","readback":"","error":"")", 0);
    row("old value not readable, so nothing is written", "!no answer|1", "", "refused",
        R"("old":null,"new":"refused","readback":null,"error":"not written, the old value cannot be read: no answer")",
        1);
    row("device fails the first read", "1", "read-error", "1",
        R"("old":null,"new":"1","readback":null,"error":"not written, the old value cannot be read: no answer from 127.0.0.1")",
        1);
    row("not readable afterwards", "1|!no answer", "", "1",
        R"("old":"1","new":"1","readback":null,"error":"written, but cannot be read back: no answer")",
        1);
    row("write returns false", "1", "write-false", "1",
        R"("old":"1","new":"1","readback":"1","error":"write failed: writeData() returned false")",
        1);
}

void tst_Write::records()
{
    QFETCH(QByteArray, answers);
    QFETCH(QByteArray, script);
    QFETCH(QString, value);
    QFETCH(QString, outcome);
    QFETCH(int, exitCode);

    const QString target = u"Press/Counter=" + value;
    const ProgramRun run = runWithPlant(
        program, arguments(SCRIPTED_PLUGIN_FILE, "json", {target, text("--allow-empty")}),
        scriptedPlant(answers, script));
    QCOMPARE(run.output, text(R"({"type":"write","cycle":1,"time":"2024-02-29T12:34:56.789+05:30",)"
                              R"("device":"Press","item":"Counter",%1})"
                              "\n")
                             .arg(outcome));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, exitCode);
}

void tst_Write::table()
{
    const ProgramRun run = runWithPlant(
        program,
        arguments(SCRIPTED_PLUGIN_FILE, "table", QStringList(text("Press/Counter=refused"))),
        scriptedPlant(R"(1\r|2 )"));
    QCOMPARE(
        run.output,
        text(
            R"(Cycle  Time                           Device  Item     Old      New      Read back  Error
1      2024-02-29T12:34:56.789+05:30  Press   Counter  1\r      refused  2\x20      write failed: Counter: value refused
)"));
    QCOMPARE(run.errors, text("log error: Press, cycle 1: Counter: value refused\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Write::csv()
{
    const ProgramRun run
        = runWithPlant(program, arguments(SCRIPTED_PLUGIN_FILE, "csv", {text("Press/Counter=2,5")}),
                       scriptedPlant(R"(1\n|2,5)"));
    QCOMPARE(run.output, text("cycle,time,device,item,old,new,readback,error\r\n"
                              "1,2024-02-29T12:34:56.789+05:30,Press,Counter,\"1\n\",\"2,5\","
                              "\"2,5\",\r\n"));
    QCOMPARE(run.exitCode, 0);
}

void tst_Write::realController()
{
    SimulatorThread controller;
    QVERIFY2(controller.isListening(), qPrintable(controller.errorString()));
    QVERIFY(controller.setWord("D230", 0x4241));
    QVERIFY(controller.setWord("D231", 0x0043));
    const ProgramRun run = runWithPlant(
        program,
        arguments(KEYENCE_PLUGIN_FILE, "json",
                  {text("Press/Counter=007"), text("Press/Level=2.50"), text("Press/Mask=00ef"),
                   text("Press/Label=abcd"), text("Press/Running=1")}),
        controllerPlant(controller.port()));
    QCOMPARE(
        withoutTimes(run.output),
        text(
            R"({"type":"write","cycle":1,"time":"T","device":"Press","item":"Counter","old":"201","new":"007","readback":"7","error":""}
{"type":"write","cycle":1,"time":"T","device":"Press","item":"Level","old":"1.9378e-38","new":"2.50","readback":"2.5","error":""}
{"type":"write","cycle":1,"time":"T","device":"Press","item":"Mask","old":"DC","new":"00ef","readback":"EF","error":""}
{"type":"write","cycle":1,"time":"T","device":"Press","item":"Label","old":"ABC","new":"abcd","readback":"abcd","error":""}
{"type":"write","cycle":1,"time":"T","device":"Press","item":"Running","old":"0","new":"1","readback":"1","error":""}
)"));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(controller.word("D201"), 7);
    QCOMPARE(controller.word("D220"), 0xef);
    QCOMPARE(controller.word("R015"), 1);
}

// A failure belongs to one item; the items after it are still written.
void tst_Write::realFailures()
{
    SimulatorThread controller;
    QVERIFY2(controller.isListening(), qPrintable(controller.errorString()));
    const ProgramRun run = runWithPlant(
        program,
        arguments(KEYENCE_PLUGIN_FILE, "table",
                  {text("Press/Wrong=1"), text("Press/Clock=1"), text("Press/Counter=40000"),
                   text("Press/Running=7"), text("Press/Mask=1")}),
        controllerPlant(controller.port()));
    QCOMPARE(
        withoutTimes(run.output),
        text(
            R"(Cycle  Time                           Device  Item     Old    New    Read back  Error
1      T  Press   Wrong           1                 not written, the old value cannot be read: [RD QQ1\r] <Wrong> :invalid address
1      T  Press   Clock    700    1      700        write failed: [WR CM700 0001\r] <Clock> :invalid address
1      T  Press   Counter  201    40000  201        write failed: [write data] item error from <Counter> :value out of range
1      T  Press   Running  0      7      1          the value read back is not the one written
1      T  Press   Mask     DC     1      1
)"));
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(controller.word("CM700"), 700);
    QCOMPARE(controller.word("D201"), 201);
    QCOMPARE(controller.word("D220"), 1);
}

void tst_Write::twiceTheSameItem()
{
    SimulatorThread controller;
    QVERIFY2(controller.isListening(), qPrintable(controller.errorString()));
    const ProgramRun run = runWithPlant(
        program,
        arguments(KEYENCE_PLUGIN_FILE, "json", {text("Press/Counter=1"), text("Press/Counter=2")}),
        controllerPlant(controller.port()));
    QCOMPARE(
        withoutTimes(run.output),
        text(
            R"({"type":"write","cycle":1,"time":"T","device":"Press","item":"Counter","old":"201","new":"1","readback":"1","error":""}
{"type":"write","cycle":1,"time":"T","device":"Press","item":"Counter","old":"1","new":"2","readback":"2","error":""}
)"));
    QCOMPARE(run.exitCode, 0);
}

void tst_Write::writesOnly()
{
    ScriptedPeer controller({{"OK\r\n"}});
    const ProgramRun run = runWithPlant(
        program,
        arguments(KEYENCE_PLUGIN_FILE, "json", {text("Press/Counter=12"), text("--no-verify")}),
        controllerPlant(controller.port()));
    QCOMPARE(
        withoutTimes(run.output),
        text(
            R"({"type":"value","cycle":1,"time":"T","device":"Press","item":"Counter","value":"12","error":""}
)"));
    QCOMPARE(controller.finish(), QByteArray("WR D201 0012\r"));
    QCOMPARE(run.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_Write)
#include "tst_write.moc"
