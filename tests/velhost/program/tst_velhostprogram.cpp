#include "plantrun.h"
#include "text.h"

#include <vel/interfaceid.h>

#include <QTest>

// The built program: its output, messages and exit code for arguments and a plant file. "%PLUGIN%"
// in arguments and texts is the scripted plug-in.

namespace {

const QString scriptedPlugin = QStringLiteral(SCRIPTED_PLUGIN_FILE);

QString withPlugin(const char *literal)
{
    return text(literal).replace(QStringLiteral("%PLUGIN%"), scriptedPlugin);
}

QStringList words(const char *literal)
{
    return withPlugin(literal).split(u'|');
}

/// One device with two items with fixed time stamps, and the script of the device.
QByteArray pressPlant(const QByteArray &script, const QByteArray &answers = "1")
{
    return R"({"networkInterfaces": ["eth0", "eth1"],
 "devices": [{"id": 1, "name": "Press", "ip": "10.0.0.1",
  "parameters": {"time_stamp": "2024-02-29T12:34:56.789+05:30", "script": ")"
           + script + R"("},
  "items": [{"name": "Counter", "parameters": {"memory_type": "Word device", "answers": ")"
           + answers + R"("}},
            {"name": "Mode", "parameters": {"editable": null}}]}]})";
}

/// Two devices of one item each.
QByteArray twoDevicesPlant()
{
    return R"({"devices": [
  {"id": 1, "name": "Press", "ip": "",
   "parameters": {"time_stamp": "2024-02-29T12:34:56.789+05:30", "script": "trace"},
   "items": [{"name": "A"}, {"name": "B"}, {"name": "C"}]},
  {"id": 2, "name": "Oven", "ip": "",
   "parameters": {"time_stamp": "2024-02-29T12:34:56.789+05:30", "script": "trace"},
   "items": [{"name": "A"}, {"name": "B"}]}]})";
}

void addRunColumns()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("plant");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");
}

void row(const char *title, const char *arguments, const QByteArray &plant, int exitCode,
         const char *output, const char *errors)
{
    QTest::newRow(title) << words(arguments) << plant << exitCode << withPlugin(output)
                         << withPlugin(errors);
}

void checkRun()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, plant);
    QFETCH(int, exitCode);
    QFETCH(QString, output);
    QFETCH(QString, errors);

    const ProgramRun run = runWithPlant(text(VELHOST_FILE), arguments, plant);
    QCOMPARE(run.errors, errors);
    QCOMPARE(withoutCurrentTimes(run.output), output);
    QCOMPARE(run.exitCode, exitCode);
}

} // namespace

class tst_VelhostProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columns();
    void columnsAsJson();
    void reads_data();
    void reads();
    void writes_data();
    void writes();
    void sessions_data();
    void sessions();
    void usageErrors_data();
    void usageErrors();
};

void tst_VelhostProgram::columns()
{
    const ProgramRun run = runWithPlant(text(VELHOST_FILE), words("columns|--plugin|%PLUGIN%"), {});
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.output, withPlugin(R"(Plug-in     scripted
Version     104
Class       ScriptedPlugin
Identifier  )" VELInterface_iid R"(
File        %PLUGIN%
Options     unused1 = 24
            flag2 = false
            flag3 = false
            unused4 = true
            unused5 = 180
            flag6 = true
            flag7 = false
            unused8 = false
            unused9 = false
            text10 = "discover"
            unused11 = {"depth":2}

Scope   Name         Type  Int  Default  Selection                     Description
plugin  note         0     64                                          The note.
item    answers      0     64   0                                      The answers.
item    memory_type  2     3    0        Bit device = 0                Kind of memory.
                                         Word device = 1
item    flagged      2     0             __vel_hidden = 1
item    editable     2     0             __vel_discovery_editable = 1
                                         First = D0
device  port         8     256  8501                                   TCP port.
device  script       0     64                                          The script.
device  time_stamp   0     64                                          The time_stamp.
file    path         0     64   /                                      The path.
)"));
    QCOMPARE(run.exitCode, 0);
}

void tst_VelhostProgram::columnsAsJson()
{
    const ProgramRun run
        = runWithPlant(text(VELHOST_FILE), words("columns|--plugin|%PLUGIN%|--format|json"), {});
    QCOMPARE(run.errors, QString());
    QCOMPARE(
        run.output,
        withPlugin(
            R"({"type":"plugin","name":"scripted","version":104,"options":{"unused1":24,"flag2":false,"flag3":false,"unused4":true,"unused5":180,"flag6":true,"flag7":false,"unused8":false,"unused9":false,"text10":"discover","unused11":{"depth":2}},"class":"ScriptedPlugin","identifier":")" VELInterface_iid
            R"("}
{"type":"column","scope":"plugin","name":"note","type_code":0,"int":64,"default":"","description":"The note.","selection":[]}
{"type":"column","scope":"item","name":"answers","type_code":0,"int":64,"default":"0","description":"The answers.","selection":[]}
{"type":"column","scope":"item","name":"memory_type","type_code":2,"int":3,"default":"0","description":"Kind of memory.","selection":[["Bit device","0"],["Word device","1"]]}
{"type":"column","scope":"item","name":"flagged","type_code":2,"int":0,"default":"","description":"","selection":[["__vel_hidden","1"]]}
{"type":"column","scope":"item","name":"editable","type_code":2,"int":0,"default":"","description":"","selection":[["__vel_discovery_editable","1"],["First","D0"]]}
{"type":"column","scope":"device","name":"port","type_code":8,"int":256,"default":"8501","description":"TCP port.","selection":[]}
{"type":"column","scope":"device","name":"script","type_code":0,"int":64,"default":"","description":"The script.","selection":[]}
{"type":"column","scope":"device","name":"time_stamp","type_code":0,"int":64,"default":"","description":"The time_stamp.","selection":[]}
{"type":"column","scope":"file","name":"path","type_code":0,"int":64,"default":"/","description":"The path.","selection":[]}
)"));
    QCOMPARE(run.exitCode, 0);
}

void tst_VelhostProgram::reads_data()
{
    addRunColumns();
    row("read", "read|--plugin|%PLUGIN%|--plant|plant.json", pressPlant("", R"(-1\r\u0000)"), 0,
        R"(Cycle  Time                           Device  Item     Value     Error
1      2024-02-29T12:34:56.789+05:30  Press   Counter  -1\r\x00
1      2024-02-29T12:34:56.789+05:30  Press   Mode     0
)",
        "");
    row("read, json", "--format|json|read|--plugin|%PLUGIN%|--plant|plant.json",
        pressPlant("", R"(-1\r\u0000)"), 0,
        R"({"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"-1\r\u0000","error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"0","error":""}
)",
        "");
    row("item error in the second of three cycles",
        "read|--plugin|%PLUGIN%|--plant|plant.json|--cycles|3|--interval|0",
        pressPlant("", "1|!no answer|2"), 1,
        R"(Cycle  Time                           Device  Item     Value  Error
1      2024-02-29T12:34:56.789+05:30  Press   Counter  1
1      2024-02-29T12:34:56.789+05:30  Press   Mode     0

Cycle  Time                           Device  Item     Value    Error
2      2024-02-29T12:34:56.789+05:30  Press   Counter  1 (old)  no answer
2      2024-02-29T12:34:56.789+05:30  Press   Mode     0

Cycle  Time                           Device  Item     Value  Error
3      2024-02-29T12:34:56.789+05:30  Press   Counter  2
3      2024-02-29T12:34:56.789+05:30  Press   Mode     0
)",
        "");
    row("item error in the first cycle, json",
        "read|--plugin|%PLUGIN%|--plant|plant.json|--cycles|2|--interval|0|--format|json",
        pressPlant("", "!no answer|2"), 1,
        R"({"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"","error":"no answer"}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"0","error":""}
{"type":"value","cycle":2,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"2","error":""}
{"type":"value","cycle":2,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"0","error":""}
)",
        "");
    row("device error", "read|--plugin|%PLUGIN%|--plant|plant.json", pressPlant("read-error"), 1,
        R"(Cycle  Time                           Device  Item     Value    Error
1      T  Press                     no answer from 10.0.0.1
1      2024-02-29T12:34:56.789+05:30  Press   Counter  1 (old)
1      2024-02-29T12:34:56.789+05:30  Press   Mode     0 (old)
)",
        "");
    row("device error, json", "read|--plugin|%PLUGIN%|--plant|plant.json|--format|json",
        pressPlant("read-error"), 1,
        R"({"type":"device","cycle":1,"time":"T","device":"Press","error":"no answer from 10.0.0.1"}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"1","old":true,"error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"0","old":true,"error":""}
)",
        "");
    row("read returns false", "read|--plugin|%PLUGIN%|--plant|plant.json|--format|json",
        pressPlant("read-false"), 1,
        R"({"type":"device","cycle":1,"time":"T","device":"Press","error":"readData() returned false"}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"1","old":true,"error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"0","old":true,"error":""}
)",
        "");
    row("what the plug-in is given, cleared errors and kept values",
        "read|--plugin|%PLUGIN%|--plant|plant.json|--cycles|2|--interval|0|--format|json",
        pressPlant("trace,read-error", "7|!no answer"), 1,
        R"({"type":"log","level":"debug","time":"T","text":"init: 1 Press 10.0.0.1 {port=8501 script=trace,read-error time_stamp=2024-02-29T12:34:56.789+05:30} interfaces eth0,eth1"}
{"type":"log","level":"debug","time":"T","text":"init: Counter {answers=7|!no answer editable= flagged= memory_type=1}"}
{"type":"log","level":"debug","time":"T","text":"init: Mode {answers=0 flagged= memory_type=0}"}
{"type":"log","level":"debug","time":"T","device":"Press","cycle":1,"text":"read: Press error \"\" of 2 items: Press/Counter=\"\" error \"\", Press/Mode=\"\" error \"\""}
{"type":"device","cycle":1,"time":"T","device":"Press","error":"no answer from 10.0.0.1"}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"7","old":true,"error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"0","old":true,"error":""}
{"type":"log","level":"debug","time":"T","device":"Press","cycle":2,"text":"read: Press error \"\" of 2 items: Press/Counter=\"7\" error \"\", Press/Mode=\"0\" error \"\""}
{"type":"device","cycle":2,"time":"T","device":"Press","error":"no answer from 10.0.0.1"}
{"type":"value","cycle":2,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"7","old":true,"error":"no answer"}
{"type":"value","cycle":2,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"0","old":true,"error":""}
{"type":"log","level":"debug","time":"T","text":"stop: Press"}
)",
        "");
    row("no devices", "read|--plugin|%PLUGIN%|--plant|plant.json", R"({"devices": []})", 0, "", "");
}

void tst_VelhostProgram::reads()
{
    checkRun();
}

void tst_VelhostProgram::writes_data()
{
    addRunColumns();
    row("write", "write|--no-verify|--yes|--plugin|%PLUGIN%|--plant|plant.json|Press/Counter=a=b ",
        pressPlant(""), 0,
        R"(Cycle  Time                           Device  Item     Value    Error
1      2024-02-29T12:34:56.789+05:30  Press   Counter  a=b\x20
)",
        "");
    row("write to two devices in the order given",
        "write|--no-verify|--yes|--allow-empty|--plugin|%PLUGIN%|--plant|plant.json|--format|json|"
        "Oven/B=1|Press/C=|Oven/A=3|Oven/B=4",
        twoDevicesPlant(), 0,
        R"({"type":"log","level":"debug","time":"T","text":"init: 1 Press  {port=8501 script=trace time_stamp=2024-02-29T12:34:56.789+05:30} interfaces "}
{"type":"log","level":"debug","time":"T","text":"init: A {answers=0 editable= flagged= memory_type=0}"}
{"type":"log","level":"debug","time":"T","text":"init: B {answers=0 editable= flagged= memory_type=0}"}
{"type":"log","level":"debug","time":"T","text":"init: C {answers=0 editable= flagged= memory_type=0}"}
{"type":"log","level":"debug","time":"T","text":"init: 2 Oven  {port=8501 script=trace time_stamp=2024-02-29T12:34:56.789+05:30} interfaces "}
{"type":"log","level":"debug","time":"T","text":"init: A {answers=0 editable= flagged= memory_type=0}"}
{"type":"log","level":"debug","time":"T","text":"init: B {answers=0 editable= flagged= memory_type=0}"}
{"type":"log","level":"debug","time":"T","device":"Oven","cycle":1,"text":"write: Oven error \"\" of 2 items: Oven/B=\"1\" error \"\", Oven/A=\"3\" error \"\", Oven/B=\"4\" error \"\""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Oven","item":"B","value":"1","error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Oven","item":"A","value":"3","error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Oven","item":"B","value":"4","error":""}
{"type":"log","level":"debug","time":"T","device":"Press","cycle":1,"text":"write: Press error \"\" of 3 items: Press/C=\"\" error \"\""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"C","value":"","error":""}
{"type":"log","level":"debug","time":"T","text":"stop: Press"}
{"type":"log","level":"debug","time":"T","text":"stop: Oven"}
)",
        "");
    row("refused write",
        "write|--no-verify|--yes|--plugin|%PLUGIN%|--plant|plant.json|Press/Counter=refused",
        pressPlant(""), 1,
        R"(Cycle  Time                           Device  Item     Value    Error
1      T  Press                     write failed: 1 entry in the error log
1      2024-02-29T12:34:56.789+05:30  Press   Counter  refused
)",
        "log error: Press, cycle 1: Counter: value refused\n");
    row("two refused writes, json",
        "write|--no-verify|--yes|--plugin|%PLUGIN%|--plant|plant.json|Press/Counter=refused|Press/"
        "Mode=refused|--format|json",
        pressPlant("write-false"), 1,
        R"({"type":"log","level":"error","time":"T","device":"Press","cycle":1,"text":"Counter: value refused"}
{"type":"log","level":"error","time":"T","device":"Press","cycle":1,"text":"Mode: value refused"}
{"type":"device","cycle":1,"time":"T","device":"Press","error":"write failed: 2 entries in the error log"}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Counter","value":"refused","error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"refused","error":""}
)",
        "");
    row("write returns false",
        "write|--no-verify|--yes|--plugin|%PLUGIN%|--plant|plant.json|Press/Mode=1|--format|json",
        pressPlant("write-false"), 1,
        R"({"type":"device","cycle":1,"time":"T","device":"Press","error":"writeData() returned false"}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+05:30","device":"Press","item":"Mode","value":"1","error":""}
)",
        "");
}

void tst_VelhostProgram::writes()
{
    checkRun();
}

void tst_VelhostProgram::sessions_data()
{
    addRunColumns();
    row("columns with a plant hands over its devices",
        "columns|--plugin|%PLUGIN%|--plant|plant.json|--format|json", pressPlant("init-false"), 3,
        "", "velhost: the plug-in %PLUGIN% returned false from init()\n");
    row("stop returns false", "read|--plugin|%PLUGIN%|--plant|plant.json", pressPlant("stop-false"),
        1,
        R"(Cycle  Time                           Device  Item     Value  Error
1      2024-02-29T12:34:56.789+05:30  Press   Counter  1
1      2024-02-29T12:34:56.789+05:30  Press   Mode     0
)",
        "velhost: the plug-in %PLUGIN% returned false from stopPlugin()\n");
}

void tst_VelhostProgram::sessions()
{
    checkRun();
}

void tst_VelhostProgram::usageErrors_data()
{
    addRunColumns();
    row("wrong usage", "read|--cycles|0|--plant|plant.json", {}, 2, "",
        "velhost: --cycles needs a whole number from 1 to 1000000000, not \"0\"\n"
        "velhost: try velhost --help\n");
    row("all wrong assignments, before the plug-in is looked for",
        "write|--plugin|none.so|--plant|plant.json|Press/Mode|Press/Mode=1|Oven/Mode=1|Press/x=1",
        pressPlant(""), 2, "",
        "velhost: \"Press/Mode\": no \"=VALUE\" after the item\n"
        "velhost: \"Oven/Mode=1\": no such device in DEVICE/ITEM=VALUE; the plant has: Press\n"
        "velhost: \"Press/x=1\": device \"Press\" has no such item; it has: Counter, Mode\n");
}

void tst_VelhostProgram::usageErrors()
{
    checkRun();
}

QTEST_GUILESS_MAIN(tst_VelhostProgram)
#include "tst_velhostprogram.moc"
