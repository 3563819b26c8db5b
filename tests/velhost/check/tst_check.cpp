#include "plantjson.h"
#include "plantrun.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

// `check`: every problem of a plant file at once, without a connection.

namespace {

ProgramRun runCheck(const char *plugin, const QByteArray &plant)
{
    return runWithPlant(
        text(VELHOST_FILE),
        {text("check"), text("--plugin"), text(plugin), text("--plant"), text("plant.json")},
        plant);
}

/// A plant with a device without items.
QByteArray plantAt(const QByteArray &ip, const QByteArray &parameters)
{
    return plantJson(ip, parameters, {});
}

} // namespace

class tst_Check : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindOfProblem();
    void notJson_data();
    void notJson();
    void json_data();
    void json();
    void manyProblems();
    void duplicateKeys_data();
    void duplicateKeys();
    void memoryAddresses_data();
    void memoryAddresses();
    void addresses_data();
    void addresses();
    void portAndTimeoutLimits_data();
    void portAndTimeoutLimits();
    void undeclaredParameters();
    void examples_data();
    void examples();
    void opensNoConnection();
};

void tst_Check::everyKindOfProblem()
{
    const ProgramRun run = runCheck(KEYENCE_PLUGIN_FILE, R"({"colour": "red", "devices": [
 {"id": "1", "name": "Press", "ip": "plc", "parameters": {"port": "0", "timeout": "2 s", "speed": "1"},
  "items": [{"name": "A", "parameters": {"memory_type": "Byte"}}, {"name": "A",
    "parameters": {"memory_address": "200"}}, {"name": "B", "parameters": {"memory_address": 5}}, 6]},
 {"id": 2, "name": "Oven", "ip": 7, "items": []},
 5]})");
    QCOMPARE(
        run.errors,
        text("velhost: plant.json: colour: unknown key; known here: $schema, networkInterfaces, "
             "devices\n"
             "velhost: plant.json: devices[0].id: expected a number, found a text\n"
             "velhost: plant.json: devices[0].items[2].parameters.memory_address: expected a text "
             "or null, found a number; write \"5\"\n"
             "velhost: plant.json: devices[0].items[3]: expected an object, found a number\n"
             "velhost: plant.json: devices[0].items[1].name: \"A\" is already the name of "
             "devices[0].items[0]; write another one\n"
             "velhost: plant.json: devices[1].ip: expected a text, found a number\n"
             "velhost: plant.json: devices[2]: expected an object, found a number\n"
             "velhost: plant.json: devices[0].parameters.speed: the plug-in declares no such "
             "device parameter; it declares: port, timeout, timeout_ms, network_interface, "
             "udp_ports, tcp_ports\n"
             "velhost: plant.json: devices[0].items[0].parameters.memory_type: \"Byte\" is not "
             "offered; use one of: \"Bit device\" (0), \"Word device\" (1)\n"
             "velhost: plant.json: devices[0].ip: \"plc\" is no IPv4 address; write four "
             "numbers from 0 to 255 without leading zeros, for example 192.168.0.10\n"
             "velhost: plant.json: devices[0].parameters.port: \"0\" is no TCP port; write a "
             "number from 1 to 65535\n"
             "velhost: plant.json: devices[0].parameters.timeout: \"2 s\" is no time-out; "
             "write milliseconds as a whole number, for example 2000\n"
             "velhost: plant.json: devices[0].items[0].parameters.memory_address: \"\" is no "
             "address in a controller; write a device and its number, for example D201, DM100.3, "
             "D200-10 or D200-209\n"
             "velhost: plant.json: devices[0].items[1].parameters.memory_address: \"200\" is no "
             "address in a controller; write a device and its number, for example D201, DM100.3, "
             "D200-10 or D200-209\n"));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
}

void tst_Check::notJson_data()
{
    QTest::addColumn<QByteArray>("plant");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *name, const QByteArray &plant, const char *error) {
        QTest::newRow(name) << plant << text(error);
    };
    const char *const isUtf16 = ": is UTF-16, save it as UTF-8";
    const auto comment = [&](const char *name, const char *plant, const char *place) {
        QTest::newRow(name)
            << QByteArray(plant)
            << text(":%1: has comments, which JSON does not know; remove them").arg(text(place));
    };
    row("cut off", "{\n \"devices\": [", ":2:14: not valid JSON: unterminated array");
    row("empty", "", ": is empty");
    row("blanks alone", " \r\n\t", ": is empty");
    row("UTF-16 with mark", QByteArray("\xff\xfe{\0}\0", 6), isUtf16);
    row("UTF-16 with mark, high byte first", QByteArray("\xfe\xff\0{\0}", 6), isUtf16);
    row("UTF-16 without mark", QByteArray("{\0}\0", 4), isUtf16);
    row("UTF-16 without mark, high byte first", QByteArray("\0{\0}", 4), isUtf16);
    row("zeros", QByteArray(4, '\0'), ":1:1: not valid JSON: illegal value");
    row("slashes within a text", R"({"devices": ["a" "//b"]})",
        ":1:19: not valid JSON: missing value separator");
    row("quote missing before a text with slashes", R"({"devices: "http://a"})",
        ":1:14: not valid JSON: missing name separator");
    row("slash alone", R"({"devices": /2})", ":1:13: not valid JSON: illegal number");
    comment("comment at the start", "// a\n{}", "1:1");
    comment("comment of scripts", "# a\n{}", "1:1");
    comment("comment in a line", "{\n \"devices\": [] // a\n}", "2:16");
    comment("comment in an object", "{ /* a */ }", "1:3");
    comment("comment in a list", R"({"devices": [ // a)", "1:15");
    comment("comment before a value", R"({"devices": /* a */ []})", "1:13");
    comment("comment behind a comma", "{\"devices\": [],\n// a\n\"a\": 1}", "2:1");
    comment("comment at the end", "{} // a", "1:4");
}

void tst_Check::notJson()
{
    QFETCH(QByteArray, plant);
    QFETCH(QString, error);

    const ProgramRun run = runCheck("none.so", plant);
    QCOMPARE(run.errors, u"velhost: plant.json" + error + u'\n');
    QCOMPARE(run.exitCode, 2);
}

void tst_Check::json_data()
{
    QTest::addColumn<QByteArray>("plant");
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("no problem") << plantAt("10.0.0.1", "") << QString() << 0;
    QTest::newRow("warning")
        << plantJson("10.0.0.1", "", {itemJson("A", "d1")})
        << text(R"({"type":"warning","file":"plant.json","position":"",)"
                R"("path":"devices[0].items[0].parameters.memory_address","message":"\"d1\" is )"
                R"(sent in small letters, which a controller may refuse; write \"D1\""})"
                "\n")
        << 0;
    QTest::newRow("fault in the JSON")
        << QByteArray("{\n]")
        << text(R"({"type":"problem","file":"plant.json","position":"2:2","path":"",)"
                R"("message":"not valid JSON: unterminated object"})"
                "\n")
        << 2;
    QTest::newRow("one of the file's form and one of its values")
        << QByteArray(
               R"({"\"": 1, "devices": [{"id": 1, "name": "Press", "ip": "plc", "items": []}]})")
        << text(R"({"type":"problem","file":"plant.json","position":"","path":"\"",)"
                R"("message":"unknown key; known here: $schema, networkInterfaces, devices"})"
                "\n"
                R"({"type":"problem","file":"plant.json","position":"","path":"devices[0].ip",)"
                R"("message":"\"plc\" is no IPv4 address; write four numbers from 0 to 255 )"
                R"(without leading zeros, for example 192.168.0.10"})"
                "\n")
        << 2;
}

void tst_Check::json()
{
    QFETCH(QByteArray, plant);
    QFETCH(QString, output);
    QFETCH(int, exitCode);

    const ProgramRun run = runWithPlant(text(VELHOST_FILE),
                                        {text("check"), text("plant.json"), text("--plugin"),
                                         text(KEYENCE_PLUGIN_FILE), text("--format"), text("json")},
                                        plant);
    QCOMPARE(run.output, output);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, exitCode);
}

// Each item is wrong twice, and every problem is printed.
void tst_Check::manyProblems()
{
    const int count = 5000;
    QByteArray items;
    for (int i = 0; i < count; ++i)
        items += (i == 0 ? R"({"name": ")" : R"(,{"name": ")") + QByteArray::number(i)
                 + R"(", "parameters": {"memory_type": "x", "memory_address": "?"}})";
    const ProgramRun run = runCheck(
        KEYENCE_PLUGIN_FILE,
        R"({"devices": [{"id": 1, "name": "A", "ip": "10.0.0.1", "items": [)" + items + "]}]}");
    QCOMPARE(run.errors.count(u'\n'), 2 * count);
    QCOMPARE(run.exitCode, 2);
}

void tst_Check::duplicateKeys_data()
{
    QTest::addColumn<int>("extra");
    QTest::addColumn<int>("told");

    QTest::newRow("none") << 0 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("99") << 99 << 99;
    QTest::newRow("100") << 100 << 100;
    QTest::newRow("101 are too many") << 101 << 100;
}

// Duplicate keys do not hide the other problems.
void tst_Check::duplicateKeys()
{
    QFETCH(int, extra);
    QFETCH(int, told);

    QByteArray plant = R"({"devices": [], "x": 0)";
    QString errors;
    for (int i = 0; i < extra; ++i)
        plant += ",\n\"devices\": []";
    for (int i = 0; i < told; ++i)
        errors
            += text("velhost: plant.json:%1:1: the key \"devices\" is given twice in one object; "
                    "leave one out\n")
                   .arg(i + 2);
    errors += text("velhost: plant.json: x: unknown key; known here: $schema, networkInterfaces, "
                   "devices\n");
    const ProgramRun run = runCheck(KEYENCE_PLUGIN_FILE, plant + "}");
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.exitCode, 2);
}

void tst_Check::memoryAddresses_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QByteArray>("dataType");
    QTest::addColumn<bool>("isRight");

    const auto row = [](const char *address, bool isRight, const char *dataType = "Short") {
        QTest::newRow(address) << QByteArray(address) << QByteArray(dataType) << isRight;
    };
    row("D201", true);
    row("DM0", true);
    row("W1F", true);
    row("DM100.3", true, "BIT");
    row("D200-10", true, "ASCII");
    row("D200-209", true, "ASCII");
    row("D", false);
    row("201", false);
    row("", false);
    row("D 201", false);
    row("D201 ", false);
    row("D201\\n", false);
    row("D201.", false);
    row("D201-", false);
    row("D201.3-5", false);
    row("W1F-2", false);
    row("DX-1", false);
}

void tst_Check::memoryAddresses()
{
    QFETCH(QByteArray, address);
    QFETCH(QByteArray, dataType);
    QFETCH(bool, isRight);

    const ProgramRun run = runCheck(
        KEYENCE_PLUGIN_FILE, plantJson("10.0.0.1", "", {itemJson("A", address, "1", dataType)}));
    QCOMPARE(run.output, isRight ? text("plant.json: no problems\n") : QString());
    QCOMPARE(run.errors.count(text("parameters.memory_address: \"")), isRight ? 0 : 1);
    QCOMPARE(run.exitCode, isRight ? 0 : 2);
}

void tst_Check::addresses_data()
{
    QTest::addColumn<QByteArray>("ip");
    QTest::addColumn<bool>("isRight");

    const auto row
        = [](const char *ip, bool isRight) { QTest::newRow(ip) << QByteArray(ip) << isRight; };
    row("192.168.0.10", true);
    row("0.0.0.0", true);
    row("255.255.255.255", true);
    row("254.249.199.99", true);
    row("255.255.255.256", false);
    row("256.0.0.0", false);
    row("192.168.0", false);
    row("192.168.0.1.1", false);
    row("192.168.0.010", false);
    row("192.168.0.-1", false);
    row("192.168.0.1 ", false);
    row("plc", false);
    row("", false);
}

void tst_Check::addresses()
{
    QFETCH(QByteArray, ip);
    QFETCH(bool, isRight);

    const ProgramRun run = runCheck(KEYENCE_PLUGIN_FILE, plantAt(ip, ""));
    const QString problem = text("velhost: plant.json: devices[0].ip: \"%1\" is no IPv4 address; "
                                 "write four numbers from 0 to 255 without leading zeros, for "
                                 "example 192.168.0.10\n")
                                .arg(QString::fromLatin1(ip));
    QCOMPARE(run.errors, isRight ? QString() : problem);
    QCOMPARE(run.output, isRight ? text("plant.json: no problems\n") : QString());
    QCOMPARE(run.exitCode, isRight ? 0 : 2);
}

void tst_Check::portAndTimeoutLimits_data()
{
    QTest::addColumn<QByteArray>("parameter");
    QTest::addColumn<bool>("isRight");

    const auto row = [](const char *parameter, bool isRight) {
        QTest::newRow(parameter) << QByteArray(parameter) << isRight;
    };
    row(R"("port": "0")", false);
    row(R"("port": "1")", true);
    row(R"("port": "2")", true);
    row(R"("port": "65534")", true);
    row(R"("port": "65535")", true);
    row(R"("port": "65536")", false);
    row(R"("port": "+80")", false);
    row(R"("port": "p1")", false);
    row(R"("port": null)", false);
    row(R"("timeout": "0")", false);
    row(R"("timeout": "1")", true);
    row(R"("timeout": "2147483647")", true);
    row(R"("timeout": "2147483648")", false);
    row(R"("timeout": "1.5")", false);
    row(R"("timeout": null)", false);
}

void tst_Check::portAndTimeoutLimits()
{
    QFETCH(QByteArray, parameter);
    QFETCH(bool, isRight);

    const ProgramRun run = runCheck(KEYENCE_PLUGIN_FILE, plantAt("10.0.0.1", parameter));
    QCOMPARE(run.output, isRight ? text("plant.json: no problems\n") : QString());
    QCOMPARE(run.errors.count(u'\n'), isRight ? 0 : 1);
    QCOMPARE(run.exitCode, isRight ? 0 : 2);
}

// Parameters that the plug-in does not declare are not checked: this one has no time-out and no
// addresses.
void tst_Check::undeclaredParameters()
{
    const ProgramRun run = runCheck(SCRIPTED_PLUGIN_FILE, plantAt("10.0.0.1", ""));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.output, text("plant.json: no problems\n"));
    QCOMPARE(run.exitCode, 0);
}

void tst_Check::examples_data()
{
    QTest::addColumn<QString>("fileName");

    const QDir folder(text(EXAMPLES_FOLDER));
    // The files that begin with "kvsim-" are for the simulated controller.
    const QRegularExpression plantName(text(R"(\A(?!kvsim-).*\.json\z)"));
    const QStringList names = folder.entryList(QDir::Files).filter(plantName);
    QVERIFY(names.size() >= 2);
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
}

void tst_Check::examples()
{
    QFETCH(QString, fileName);

    const ProgramRun run = runProgram(
        text(VELHOST_FILE),
        {text("check"), text("--plugin"), text(KEYENCE_PLUGIN_FILE), text("--plant"), fileName},
        QDir::tempPath());
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
}

void tst_Check::opensNoConnection()
{
    ScriptedPeer controller;
    const QByteArray port = text(R"("port": "%1")").arg(controller.port()).toLatin1();
    const ProgramRun run = runCheck(KEYENCE_PLUGIN_FILE, plantAt("127.0.0.1", port));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(controller.finish(), QByteArray());
    QCOMPARE(controller.connectionCount(), 0);
}

QTEST_GUILESS_MAIN(tst_Check)
#include "tst_check.moc"
