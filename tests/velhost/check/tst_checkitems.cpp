#include "plantjson.h"
#include "plantrun.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QTest>

// `check`: what the plug-in makes of each item, and what was not checked.

namespace {

ProgramRun runCheck(const char *plugin, const QByteArray &plant)
{
    return runWithPlant(text(VELHOST_FILE),
                        {text("check"), text("plant.json"), text("--plugin"), text(plugin)}, plant);
}

/// A plant whose only item has these parameters.
QByteArray plantOf(const QByteArray &itemParameters)
{
    return plantJson("10.0.0.1", "", {R"({"name": "A", "parameters": {)" + itemParameters + "}}"});
}

/// Two devices, of which these are the addresses and the parameters.
QByteArray devices(const QByteArray &ip1, const QByteArray &parameters1, const QByteArray &ip2,
                   const QByteArray &parameters2)
{
    const auto device = [](const QByteArray &id, const QByteArray &ip,
                           const QByteArray &parameters) -> QByteArray {
        return R"({"id": )" + id + R"(, "name": "P)" + id + R"(", "ip": ")" + ip
               + R"(", "parameters": {)" + parameters + R"(}, "items": []})";
    };
    return R"({"devices": [)" + device("1", ip1, parameters1) + ',' + device("2", ip2, parameters2)
           + "]}";
}

/// A device for the scripted plug-in.
QByteArray scriptedPlant(const QByteArray &script)
{
    return R"({"devices": [{"id": 1, "name": "Press", "ip": "10.0.0.1", "parameters": {"script": ")"
           + script + R"("}, "items": [{"name": "A"}, {"name": "B"}]}]})";
}

/// Compares the run with a check whose problems are these lines, each without its beginning, and
/// which are mere warnings when the program says so in `summary`.
void compare(const ProgramRun &run, const QString &problems, const QString &summary, int exitCode)
{
    QString errors;
    const QStringList lines = problems.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines)
        errors += u"velhost: plant.json: " + line + u'\n';
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.output, summary.isEmpty() ? QString() : u"plant.json: " + summary + u'\n');
    QCOMPARE(run.exitCode, exitCode);
}

} // namespace

class tst_CheckItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refused_data();
    void refused();
    void served_data();
    void served();
    void faultyItemsAreLeftOut();
    void endpoints_data();
    void endpoints();
    void refusedDevice();
    void nothingSent();
    void noPlugin_data();
    void noPlugin();
    void opensNoConnection();
};

void tst_CheckItems::refused_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QByteArray>("memoryType");
    QTest::addColumn<QByteArray>("dataType");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *name, const char *address, const char *memoryType,
                        const char *dataType, const char *error) {
        QTest::newRow(name) << QByteArray(address) << QByteArray(memoryType) << QByteArray(dataType)
                            << text(error);
    };
    const char *const word = "Word device";
    const char *const notSent = "[ ] not sent: Data item parameters invalid";
    const char *const bitNumber = "[read data] item error from <A> :bit number invalid";
    const char *const address = "[read data] item error from <A> :invalid address";
    const char *const length = "[read data] item error from <A> :data lenght invalid";
    row("bit as Short", "D100.3", word, "Short", notSent);
    row("bit of a bit device", "R100.3", "Bit device", "BIT", notSent);
    row("bit 16", "D100.16", word, "BIT", bitNumber);
    row("bit 16 as Short", "D100.16", word, "Short", bitNumber);
    row("bit of three digits", "D100.007", word, "BIT", bitNumber);
    row("length as Short", "D100-10", word, "Short", address);
    row("length as BIT", "D100-10", word, "BIT", address);
    row("length of a bit device", "R100-10", "Bit device", "ASCII", address);
    row("ASCII without length", "D100", word, "ASCII", length);
    row("length 0", "D100-0", word, "ASCII", length);
    row("Unknown Data Type", "D100", word, "Unknown Data Type", notSent);
    row("Unknown Data Type with length", "D100-10", word, "Unknown Data Type", address);
}

void tst_CheckItems::refused()
{
    QFETCH(QByteArray, address);
    QFETCH(QByteArray, memoryType);
    QFETCH(QByteArray, dataType);
    QFETCH(QString, error);

    const QString problem
        = text("devices[0].items[0]: the plug-in refuses memory_address \"%1\", memory_type "
               "\"%2\", data_type \"%3\": %4; velhost explain tells what to do")
              .arg(QString::fromLatin1(address), QString::fromLatin1(memoryType),
                   QString::fromLatin1(dataType), error);
    const QByteArray item = itemJson("A", address, memoryType, dataType);
    compare(runCheck(KEYENCE_PLUGIN_FILE, plantJson("10.0.0.1", "", {item})), problem, {}, 2);
}

void tst_CheckItems::served_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("warnings");

    const auto row = [](const char *name, const char *parameters, const QString &warnings = {}) {
        QTest::newRow(name) << QByteArray(parameters) << warnings;
    };
    const auto readsZero = [](const char *parameters) -> QString {
        return text("devices[0].items[0]: warning: ") + text(parameters)
               + text(" reads 0 for ever, whatever the controller holds; choose another type, or a "
                      "bit of the word as in DM100.3\n");
    };
    const auto atType = [](const char *warning) -> QString {
        return text("devices[0].items[0].parameters.memory_type: warning: ") + text(warning)
               + u'\n';
    };
    const QString isBit
        = atType(R"("R100" is a bit in the controller and not a word; choose "Bit device")");
    const QString isWord
        = atType(R"("D100" is a word in the controller: a write would leave nothing but 0 or 1 in )"
                 R"(it; choose "Word device")");
    const auto smallLetters = [](const char *address, const char *capitals) {
        return text("devices[0].items[0].parameters.memory_address: warning: \"%1\" is sent in "
                    "small letters, which a controller may refuse; write \"%2\"\n")
            .arg(text(address), text(capitals));
    };

    row("Short", R"("memory_address": "D100", "memory_type": "1", "data_type": "Short")");
    row("Float", R"("memory_address": "D100", "memory_type": "1", "data_type": "Float")");
    row("Double", R"("memory_address": "D100", "memory_type": "1", "data_type": "Double")");
    row("ASCII", R"("memory_address": "D100-10", "memory_type": "1", "data_type": "ASCII")");
    row("bit 0", R"("memory_address": "D100.0", "memory_type": "1", "data_type": "BIT")");
    row("bit 15", R"("memory_address": "D100.15", "memory_type": "1", "data_type": "BIT")");
    row("bit without data type", R"("memory_address": "D100.3", "memory_type": "1")");
    row("bit device", R"("memory_address": "R100", "memory_type": "0", "data_type": "BIT")");
    row("bit device without data type", R"("memory_address": "R100", "memory_type": "0")");
    row("bit device of Unknown Data Type",
        R"("memory_address": "R100", "memory_type": "0", "data_type": "10")");
    row("device that is not known",
        R"("memory_address": "QQ100", "memory_type": "0", "data_type": "BIT")");

    row("BIT without bit", R"("memory_address": "D100", "memory_type": "1", "data_type": "BIT")",
        readsZero(R"(memory_address "D100", memory_type "Word device", data_type "BIT")"));
    row("no data type", R"("memory_address": "D100", "memory_type": "1")",
        readsZero(R"(memory_address "D100", memory_type "Word device", no data_type)"));
    row("data type null", R"("memory_address": "D100", "memory_type": "1", "data_type": null)",
        readsZero(R"(memory_address "D100", memory_type "Word device", no data_type)"));
    row("no types", R"("memory_address": "D100")",
        readsZero(R"(memory_address "D100", no memory_type, no data_type)"));
    row("bit device as word",
        R"("memory_address": "R100", "memory_type": "1", "data_type": "Short")", isBit);
    row("bit device without memory type", R"("memory_address": "R100", "data_type": "Short")",
        isBit);
    row("bit device as BIT of a word",
        R"("memory_address": "R100", "memory_type": "1", "data_type": "BIT")",
        isBit + readsZero(R"(memory_address "R100", memory_type "Word device", data_type "BIT")"));
    row("word device as bits",
        R"("memory_address": "D100", "memory_type": "0", "data_type": "BIT")", isWord);
    row("small letter", R"("memory_address": "d100", "memory_type": "1", "data_type": "Short")",
        smallLetters("d100", "D100"));
    row("small letters and a bit",
        R"("memory_address": "dm100.3", "memory_type": "1", "data_type": "BIT")",
        smallLetters("dm100.3", "DM100.3"));
    row("small letter in the number",
        R"("memory_address": "W1f", "memory_type": "1", "data_type": "Short")",
        smallLetters("W1f", "W1F"));
}

void tst_CheckItems::served()
{
    QFETCH(QByteArray, parameters);
    QFETCH(QString, warnings);

    const int count = warnings.count(u'\n');
    const QString summary = count == 0   ? text("no problems")
                            : count == 1 ? text("no errors, 1 warning")
                                         : text("no errors, %1 warnings").arg(count);
    compare(runCheck(KEYENCE_PLUGIN_FILE, plantOf(parameters)), warnings, summary, 0);
}

// A faulty item is told once. One with a faulty name, and the items of a faulty device, are
// checked.
void tst_CheckItems::faultyItemsAreLeftOut()
{
    const QByteArray plant = plantJson(
        "plc", "",
        {itemJson("A", "?"), itemJson("B", "D1", "1", "Byte"), itemJson("", "D1", "1", "BIT")});
    compare(
        runCheck(KEYENCE_PLUGIN_FILE, plant),
        text("devices[0].items[2].name: must not be empty; write a name\n"
             "devices[0].items[1].parameters.data_type: \"Byte\" is not offered; use one of: "
             "\"BIT\" (0), \"Short\" (1), \"Long\" (2), \"Word\" (3), \"DWord\" (4), "
             "\"Hexadecimal 16Bit\" (5), \"Hexadecimal 32Bit\" (6), \"Float\" (7), \"Double\" "
             "(8), \"ASCII\" (9), \"Unknown Data Type\" (10)\n"
             "devices[0].ip: \"plc\" is no IPv4 address; write four numbers from 0 to 255 "
             "without leading zeros, for example 192.168.0.10\n"
             "devices[0].items[0].parameters.memory_address: \"?\" is no address in a "
             "controller; write a device and its number, for example D201, DM100.3, D200-10 or "
             "D200-209\n"
             "devices[0].items[2]: warning: memory_address \"D1\", memory_type \"Word device\", "
             "data_type \"BIT\" reads 0 for ever, whatever the controller holds; choose another "
             "type, or a bit of the word as in DM100.3\n"),
        {}, 2);
}

void tst_CheckItems::endpoints_data()
{
    QTest::addColumn<QByteArray>("plant");
    QTest::addColumn<bool>("isTwice");

    QTest::newRow("same") << devices("10.0.0.1", "", "10.0.0.1", "") << true;
    QTest::newRow("port by default and in figures")
        << devices("10.0.0.1", "", "10.0.0.1", R"("port": "08501")") << true;
    QTest::newRow("other port") << devices("10.0.0.1", "", "10.0.0.1", R"("port": "8502")")
                                << false;
    QTest::newRow("other address") << devices("10.0.0.1", "", "10.0.0.2", "") << false;
}

void tst_CheckItems::endpoints()
{
    QFETCH(QByteArray, plant);
    QFETCH(bool, isTwice);

    const QString warning = text("devices[1]: warning: devices[0] has the same address and port; "
                                 "one device can have the items of both\n");
    compare(runCheck(KEYENCE_PLUGIN_FILE, plant), isTwice ? warning : QString(),
            isTwice ? text("no errors, 1 warning") : text("no problems"), 0);
}

void tst_CheckItems::refusedDevice()
{
    compare(runCheck(SCRIPTED_PLUGIN_FILE, scriptedPlant("read-error")),
            text("devices[0]: warning: its items were not checked, the plug-in says: no answer "
                 "from 127.0.0.1\n"),
            text("no errors, 1 warning"), 0);
}

// This plug-in makes values without a controller.
void tst_CheckItems::nothingSent()
{
    compare(runCheck(SCRIPTED_PLUGIN_FILE, scriptedPlant("")),
            text("devices[0].items[0]: warning: was not checked: the plug-in sent nothing for it\n"
                 "devices[0].items[1]: warning: was not checked: the plug-in sent nothing for "
                 "it\n"),
            text("no errors, 2 warnings"), 0);
}

void tst_CheckItems::noPlugin_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("problems");

    QTest::newRow("table")
        << text("table")
        << text("velhost: plant.json: colour: unknown key; known here: $schema, networkInterfaces, "
                "devices\n"
                "velhost: plant.json: warning: items were not checked: no plug-in\n");
    QTest::newRow("JSON")
        << text("json")
        << text(R"({"type":"problem","file":"plant.json","position":"","path":"colour",)"
                R"("message":"unknown key; known here: $schema, networkInterfaces, devices"})"
                "\n"
                R"({"type":"warning","file":"plant.json","position":"","path":"",)"
                R"("message":"items were not checked: no plug-in"})"
                "\n");
}

// The problems that show without a plug-in are told all the same.
void tst_CheckItems::noPlugin()
{
    QFETCH(QString, format);
    QFETCH(QString, problems);

    const ProgramRun run = runWithPlant(text(VELHOST_FILE),
                                        {text("check"), text("plant.json"), text("--plugin"),
                                         text("none.so"), text("--format"), format},
                                        R"({"colour": "red", "devices": []})");
    const QString printed = run.errors + run.output;
    QVERIFY2(printed.endsWith(problems), qPrintable(printed));
    QVERIFY2(run.errors.startsWith(text("velhost: ")) && run.errors.contains(text("none.so")),
             qPrintable(run.errors));
    QCOMPARE(run.exitCode, 3);
}

void tst_CheckItems::opensNoConnection()
{
    ScriptedPeer controller;
    const QByteArray plant
        = plantJson("127.0.0.1", portParameter(controller.port()), {itemJson("A", "D100")});
    compare(runCheck(KEYENCE_PLUGIN_FILE, plant), {}, text("no problems"), 0);
    QCOMPARE(controller.finish(), QByteArray());
    QCOMPARE(controller.connectionCount(), 0);
}

QTEST_GUILESS_MAIN(tst_CheckItems)
#include "tst_checkitems.moc"
