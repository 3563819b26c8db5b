#include "kvsimconfig.h"
#include "programrun.h"
#include "testfolder.h"
#include "text.h"

#include <QTest>

// What is wrong with a configuration, as the built program tells it.
class tst_ConfigFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faults_data();
    void faults();
    void allFaultsAtOnce();
    void valueFiles_data();
    void valueFiles();
    void wholeFile_data();
    void wholeFile();
    void usageErrors_data();
    void usageErrors();
};

namespace {

ProgramRun run(const TestFolder &folder, const QStringList &arguments)
{
    return runProgram(text(KVSIM_PROGRAM), arguments, folder.path({}));
}

} // namespace

void tst_ConfigFaults::faults_data()
{
    QTest::addColumn<QByteArray>("members");
    QTest::addColumn<QByteArray>("fault");

    const auto row = [](const char *members, const char *fault) {
        QTest::newRow(members) << QByteArray(members) << QByteArray(fault);
    };
    row(R"("ports": 1)", "ports: unknown key; known here: name, address, port, model, memory, "
                         "readOnly, missing, generators, faults");
    row(R"("name": "2")", "name: '2' is no name; write a letter and then letters, digits, - or _");
    row(R"("name": "\u001b[2J\n\u009b")",
        R"(name: '\x1b[2J\n\x9b' is no name; write a letter and then letters, digits, - or _)");
    row(R"("name": 2)", "name: expected a text, found a number");
    row(R"("address": "localhost")",
        "address: 'localhost' is no IP address; write one such as 127.0.0.1");
    row(R"("port": -1)", "port: expected a whole number from 0 to 65535");
    row(R"("port": 1.5)", "port: expected a whole number from 0 to 65535");
    row(R"("port": 65536)", "port: expected a whole number from 0 to 65535");
    row(R"("model": "")", "model: '' is no model code; write 1 to 5 digits, for example \"55\"");
    row(R"("model": "123456")",
        "model: '123456' is no model code; write 1 to 5 digits, for example \"55\"");
    row(R"("memory": [])", "memory: expected an object, found a list");
    row(R"("memory": {"QQ1": 1})",
        "memory.QQ1: 'QQ1' is no address that exists; write one such as DM100 or R015");
    row(R"("memory": {"DM1": 65536})", "memory.DM1: expected a whole number from 0 to 65535");
    row(R"("memory": {"R1": 2})", "memory.R1: expected a whole number from 0 to 1");
    row(R"("memory": {"DM1": [1, "2"]})", "memory.DM1[1]: expected a number, found a text");
    row(R"("memory": {"DM1": []})", "memory.DM1: must not be empty");
    row(R"("memory": {"DM65534": [1, 2]})",
        "memory.DM65534: 2 values run over the end of the device; write at most 1");
    row(R"("memory": {"D9": 1, "DM8": [1, 2]})",
        "memory.DM8[1]: DM9 has a value already; leave one of the two out");
    row(R"("readOnly": "DM1")", "readOnly: expected a list, found a text");
    row(R"("readOnly": ["DM2-DM1"])",
        "readOnly[0]: 'DM2-DM1' is no range; write one such as DM100-DM199, or an address");
    row(R"("missing": ["DM1-EM2"])",
        "missing[0]: 'DM1-EM2' is no range; write one such as DM100-DM199, or an address");
    row(R"("missing": ["DM1-DM2-DM3"])",
        "missing[0]: 'DM1-DM2-DM3' is no range; write one such as DM100-DM199, or an address");
    row(R"("faults": ["silent", "silent=1"])", "faults[1]: 'silent=1' is wrong; write silent");
    row(R"("faults": [1])", "faults[0]: expected a text, found a number");
    row(R"("generators": {"DM1": 1})", "generators.DM1: expected an object, found a number");
    row(R"("generators": {"DM1": {}})", "generators.DM1.kind: missing; expected a text");
    row(R"("generators": {"DM1": {"kind": "saw"}})",
        "generators.DM1.kind: unknown kind 'saw'; use one of: ramp, sine, square, random, steps, "
        "csv");
    row(R"("generators": {"DM1": {"kind": "ramp", "from": 0, "to": 1, "period": 0}})",
        "generators.DM1.period: expected a whole number from 1 to 86400000");
    row(R"("generators": {"DM1": {"kind": "ramp", "from": 0, "to": 1, "period": 86400001}})",
        "generators.DM1.period: expected a whole number from 1 to 86400000");
    row(R"("generators": {"DM1": {"kind": "ramp", "from": -32769, "to": 1, "period": 1}})",
        "generators.DM1.from: expected a whole number from -32768 to 65535");
    row(R"("generators": {"R1": {"kind": "square", "low": 0, "high": 2, "period": 1}})",
        "generators.R1.high: expected a whole number from 0 to 1");
    row(R"("generators": {"DM1": {"kind": "sine", "mean": 0, "period": 1}})",
        "generators.DM1.amplitude: missing; expected a number");
    row(R"("generators": {"DM1": {"kind": "random", "min": 2, "max": 1, "period": 1}})",
        "generators.DM1.max: is less than min; write min first");
    row(R"("generators": {"DM1": {"kind": "steps", "values": [], "hold": 1}})",
        "generators.DM1.values: must have one value at least");
    row(R"("generators": {"DM1": {"kind": "steps", "values": [1], "hold": 1, "once": 1}})",
        "generators.DM1.once: expected true or false, found a number");
    row(R"("generators": {"DM1": {"kind": "steps", "values": [1], "hold": 1, "loop": true}})",
        "generators.DM1.loop: unknown key; known here: kind, values, hold, once");
    row(R"("memory": {"DM1": 1}, "generators": {"D1": {"kind": "steps", "values": [1], "hold": 1}})",
        "memory.DM1: a generator makes the value of DM1; leave one of the two out");
}

void tst_ConfigFaults::faults()
{
    QFETCH(QByteArray, members);
    QFETCH(QByteArray, fault);

    const TestFolder folder;
    const QString file = folder.write(text("line.json"), oneController(members));
    const ProgramRun result = run(folder, withConfig(file));
    QCOMPARE(result.errors.toUtf8(),
             QByteArray("kvsim: " + file.toUtf8() + ": controllers[0]." + fault + '\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

void tst_ConfigFaults::allFaultsAtOnce()
{
    const TestFolder folder;
    folder.write(text("line.json"), R"({"controllers": [
        {"port": 8501, "model": "x", "memory": {"DM1": -1, "QQ1": 1}},
        5,
        {"port": 8501, "faults": ["no"]}], "more": 1})");
    const ProgramRun result = run(folder, {text("--config"), text("line.json")});
    const QStringList lines = result.errors.split(u'\n');
    const QStringList places{text("more: "),
                             text("controllers[0].model: "),
                             text("controllers[0].memory.DM1: "),
                             text("controllers[0].memory.QQ1: "),
                             text("controllers[1]: "),
                             text("controllers[2].faults[0]: "),
                             text("controllers[2].port: ")};
    QCOMPARE(lines.size(), places.size() + 1);
    for (int i = 0; i < places.size(); ++i)
        QVERIFY2(lines.at(i).startsWith(text("kvsim: line.json: ") + places.at(i)),
                 qPrintable(lines.at(i)));
    QCOMPARE(lines.at(6), text("kvsim: line.json: controllers[2].port: \"127.0.0.1:8501\" is "
                               "already the port of controllers[0]; write another one"));
    QCOMPARE(result.exitCode, 2);
}

void tst_ConfigFaults::valueFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("period");
    QTest::addColumn<QByteArray>("fault");

    const auto row
        = [](const char *name, const char *content, const char *period, const char *fault) {
              QTest::newRow(name) << QByteArray(content) << QByteArray(period) << QByteArray(fault);
          };
    row("nothing in it", "# nothing\n\n", "", "has no value; write one at least");
    row("no number", "1\n2x\n", ", \"period\": 5",
        ", line 2: '2x' is no value; write a whole number from -32768 to 65535");
    row("too large", "65536\n", ", \"period\": 5",
        ", line 1: '65536' is no value; write a whole number from -32768 to 65535");
    row("two columns with a period", "0,1\n", ", \"period\": 5",
        ", line 1: '0,1' is no value; write a whole number from -32768 to 65535");
    row("one column without", "1\n", "",
        ", line 1: '1' has no comma; write TIME,VALUE, or give a period");
    row("time twice", "0,1\n10,2\n10,3\n", "",
        ", line 3: '10' is no time here; write milliseconds, a whole number from 11 on");
    row("time below 0", "-1,1\n", "",
        ", line 1: '-1' is no time here; write milliseconds, a whole number from 0 on");
}

void tst_ConfigFaults::valueFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, period);
    QFETCH(QByteArray, fault);

    const TestFolder folder;
    const QString values = folder.write(text("values.csv"), content);
    folder.write(text("line.json"),
                 oneController(R"("generators": {"DM7": {"kind": "csv", "file": "values.csv")"
                               + period + "}}"));
    const ProgramRun result = run(folder, {text("--config"), text("line.json")});
    const QByteArray separator = fault.startsWith(',') ? "" : " ";
    QCOMPARE(result.errors.toUtf8(),
             QByteArray("kvsim: line.json: controllers[0].generators.DM7.file: " + values.toUtf8()
                        + separator + fault + '\n'));
    QCOMPARE(result.exitCode, 2);
}

void tst_ConfigFaults::wholeFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("error");

    const auto row = [](const char *name, const QByteArray &content, const char *error) {
        QTest::newRow(name) << content << QByteArray(error);
    };
    row("no JSON", "{", ":1:2: not valid JSON: unterminated object");
    row("a key twice", R"({"controllers": [{"port": 1, "port": 2}]})",
        ":1:30: the key \"port\" is given twice in one object; leave one out");
    row("a list", "[]", ": expected an object, found a list");
    row("no controllers", "{}", ": controllers: missing; expected a list");
    row("0 controllers", R"({"controllers": []})", ": controllers: expected 1 to 254 controllers");
    row("255 controllers",
        R"({"controllers": [)" + QByteArray("{\"port\": 0},").repeated(254) + R"({"port": 0}]})",
        ": controllers: expected 1 to 254 controllers");
    row("too large", QByteArray(16 * 1024 * 1024 + 1, ' '),
        ": larger than 16 MiB, so it is no configuration");
}

void tst_ConfigFaults::wholeFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, error);

    const TestFolder folder;
    folder.write(text("line.json"), content);
    const ProgramRun result = run(folder, {text("--config"), text("line.json")});
    QCOMPARE(result.errors.toUtf8(), QByteArray("kvsim: line.json" + error + '\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

void tst_ConfigFaults::usageErrors_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *arguments, const char *error) {
        QTest::newRow(arguments) << text(arguments) << text(error);
    };
    row("--config none.json", "none.json: cannot be read: No such file or directory");
    row("--config line.json --set DM7=1",
        "--set: a generator makes the value of 'DM7'; choose another address. See kvsim --help.");
}

void tst_ConfigFaults::usageErrors()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    const TestFolder folder;
    folder.write(
        text("line.json"),
        oneController(R"("generators": {"DM7": {"kind": "steps", "values": [1], "hold": 1}})"));
    const ProgramRun result = run(folder, arguments.split(u' '));
    QCOMPARE(result.errors, QString(text("kvsim: ") + error + u'\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_ConfigFaults)
#include "tst_configfaults.moc"
