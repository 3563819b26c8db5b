#include "writefile.h"

#include <plant/plant.h>

#include <QTemporaryDir>
#include <QTest>

namespace {

/// A plant whose first device has these additional members.
QByteArray withDevice(const QByteArray &members)
{
    return R"({"devices": [{"id": 1, "name": "Press", "ip": "127.0.0.1", "items": [])" + members
           + "}]}";
}

QByteArray withItems(const QByteArray &items)
{
    return R"({"devices": [{"id": 1, "name": "Press", "ip": "127.0.0.1", "items": )" + items
           + "}]}";
}

QByteArray withParameters(const QByteArray &parameters)
{
    return withItems(R"([{"name": "Counter", "parameters": )" + parameters + "}]");
}

QByteArray withId(const QByteArray &id)
{
    return R"({"devices": [{"name": "Press", "ip": "", "items": [], "id": )" + id + "}]}";
}

/// The plant, read as from the file p.json; nothing when anything is wrong with it.
std::optional<Plant> plantOf(const QByteArray &json, QStringList *errors)
{
    QList<Problem> problems;
    const std::optional<Plant> plant = parsePlantDraft(json, &problems);
    errors->append(problemLines(QStringLiteral("p.json"), problems));
    return problems.isEmpty() ? plant : std::nullopt;
}

} // namespace

class tst_Plant : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyField();
    void leavesOut();
    void errors_data();
    void errors();
    void idLimits_data();
    void idLimits();
    void collectsErrors();
    void sizeLimits_data();
    void sizeLimits();
    void unreadableFile();
};

void tst_Plant::everyField()
{
    QStringList errors;
    const std::optional<Plant> plant = plantOf(
        R"({"networkInterfaces": ["eth0", "wlan0"],
            "devices": [{"id": 7, "name": "Press", "ip": "10.0.0.1",
                         "parameters": {"port": "8501", "timeout": null},
                         "items": [{"name": "Counter", "parameters": {"data_type": "Short"},
                                    "expect": "7", "tolerance": 0.5},
                                   {"name": "Täller\u0000", "parameters": {}}]},
                        {"id": 8, "name": "Oven", "ip": "", "items": []}]})",
        &errors);
    QCOMPARE(errors, QStringList());
    QVERIFY(plant.has_value());
    QCOMPARE(plant->networkInterfaces,
             QStringList({QStringLiteral("eth0"), QStringLiteral("wlan0")}));
    QCOMPARE(plant->devices.size(), 2);
    const PlantDevice &press = plant->devices.at(0);
    QCOMPARE(press.id, 7);
    QCOMPARE(press.name, QStringLiteral("Press"));
    QCOMPARE(press.ip, QStringLiteral("10.0.0.1"));
    QCOMPARE(press.parameters.size(), 2);
    QCOMPARE(press.parameters.value(QStringLiteral("port")).value_or(QString()),
             QStringLiteral("8501"));
    QCOMPARE(press.parameters.value(QStringLiteral("timeout"), QString()).has_value(), false);
    QCOMPARE(press.items.size(), 2);
    QCOMPARE(press.items.at(0).name, QStringLiteral("Counter"));
    QCOMPARE(press.items.at(0).parameters.value(QStringLiteral("data_type")).value_or(QString()),
             QStringLiteral("Short"));
    QCOMPARE(press.items.at(0).expect.value_or(QString()), QStringLiteral("7"));
    QCOMPARE(press.items.at(0).tolerance, 0.5);
    QCOMPARE(press.items.at(1).expect.has_value(), false);
    QCOMPARE(press.items.at(1).tolerance, 0.0);
    const QString withZero = QStringLiteral(u"Täller") + QChar(0);
    QCOMPARE(press.items.at(1).name, withZero);
    QCOMPARE(plant->devices.at(1).id, 8);
    QCOMPARE(plant->devices.at(1).ip, QString());
    QCOMPARE(plant->devices.at(1).items.size(), 0);
}

void tst_Plant::leavesOut()
{
    QStringList errors;
    const std::optional<Plant> plant = plantOf(withItems(R"([{"name": "Counter"}])"), &errors);
    QCOMPARE(errors, QStringList());
    QVERIFY(plant.has_value());
    QCOMPARE(plant->networkInterfaces, QStringList());
    QCOMPARE(plant->devices.at(0).parameters.size(), 0);
    QCOMPARE(plant->devices.at(0).items.at(0).parameters.size(), 0);
}

void tst_Plant::errors_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *name, const QByteArray &json, const char *error) {
        QTest::newRow(name) << json << QString::fromUtf8(error);
    };

    row("empty file", "", "p.json: is empty");
    row("text", "devices", "p.json:1:2: not valid JSON: illegal value");
    row("fault in the third line", "{\n \"devices\": [\n  {\"id\": 1,,}\n]}",
        "p.json:3:13: not valid JSON: unterminated object");
    row("column counts characters", "{\"\xc3\xa4\xe2\x82\xac\": \"x\" \"y\"}",
        "p.json:1:13: not valid JSON: unterminated object");
    row("not UTF-8", "{\"devices\": \"\xff\"}", "p.json:1:14: not valid JSON: invalid UTF8 string");
    row("more behind the end", "{} {}",
        "p.json:1:4: not valid JSON: garbage at the end of the document");
    row("1025 levels", QByteArray(1025, '['),
        "p.json:1:1026: not valid JSON: too deeply nested document");

    row("key twice", withDevice(",\n \"id\": 2"),
        "p.json:2:2: the key \"id\" is given twice in one object; leave one out");
    row("key twice, spelt differently", R"({"devices": [], "d\u0065vices" : []})",
        "p.json:1:17: the key \"devices\" is given twice in one object; leave one out");
    row("key twice behind a nested object", withParameters(R"({"a": "{\"", "b": "\\", "a": ""})"),
        "p.json:1:128: the key \"a\" is given twice in one object; leave one out");

    row("list at the top", "[]", "p.json: expected an object, found a list");
    row("nothing in it", "{}", "p.json: devices: missing; expected a list");
    row("unknown key at the top", R"({"devices": [], "device": []})",
        "p.json: device: unknown key; known here: $schema, networkInterfaces, devices");
    row("devices no list", R"({"devices": {}})",
        "p.json: devices: expected a list, found an object");
    row("device no object", R"({"devices": ["Press"]})",
        "p.json: devices[0]: expected an object, found a text");
    row("interfaces no list", R"({"devices": [], "networkInterfaces": "eth0"})",
        "p.json: networkInterfaces: expected a list, found a text");
    row("interface no text", R"({"devices": [], "networkInterfaces": ["eth0", 1]})",
        "p.json: networkInterfaces[1]: expected a text, found a number");
    row("interface empty", R"({"devices": [], "networkInterfaces": [""]})",
        "p.json: networkInterfaces[0]: must not be empty; write a name");

    row("unknown key in a device", withDevice(R"(, "adress": "")"),
        "p.json: devices[0].adress: unknown key; known here: id, name, ip, parameters, "
        "itemDefaults, "
        "items");
    row("id missing", R"({"devices": [{"name": "Press", "ip": "", "items": []}]})",
        "p.json: devices[0].id: missing; expected a number");
    row("id a text", withId(R"("1")"), "p.json: devices[0].id: expected a number, found a text");
    row("id a fraction", withId("1.5"),
        "p.json: devices[0].id: expected a whole number from 0 to 2147483647");
    row("name missing", R"({"devices": [{"id": 1, "ip": "", "items": []}]})",
        "p.json: devices[0].name: missing; expected a text");
    row("name null", R"({"devices": [{"id": 1, "name": null, "ip": "", "items": []}]})",
        "p.json: devices[0].name: expected a text, found null");
    row("name empty", R"({"devices": [{"id": 1, "name": "", "ip": "", "items": []}]})",
        "p.json: devices[0].name: must not be empty; write a name");
    row("ip missing", R"({"devices": [{"id": 1, "name": "Press", "items": []}]})",
        "p.json: devices[0].ip: missing; expected a text");
    row("items missing", R"({"devices": [{"id": 1, "name": "Press", "ip": ""}]})",
        "p.json: devices[0].items: missing; expected a list");
    row("id twice",
        R"({"devices": [{"id": 1, "name": "A", "ip": "", "items": []},
                        {"id": 2, "name": "B", "ip": "", "items": []},
                        {"id": 1, "name": "C", "ip": "", "items": []}]})",
        "p.json: devices[2].id: \"1\" is already the id of devices[0]; write another one");
    row("device name twice",
        R"({"devices": [{"id": 1, "name": "A", "ip": "", "items": []},
                        {"id": 2, "name": "A", "ip": "", "items": []}]})",
        "p.json: devices[1].name: \"A\" is already the name of devices[0]; write another one");

    row("item no object", withItems("[null]"),
        "p.json: devices[0].items[0]: expected an object, found null");
    row("unknown key in an item", withItems(R"([{"name": "A", "address": "D1"}])"),
        "p.json: devices[0].items[0].address: unknown key; known here: name, parameters, expect, "
        "tolerance");
    row("expected value a number", withItems(R"([{"name": "A", "expect": 7}])"),
        "p.json: devices[0].items[0].expect: expected a text, found a number");
    row("tolerance a text", withItems(R"([{"name": "A", "expect": "7", "tolerance": "1"}])"),
        "p.json: devices[0].items[0].tolerance: expected a number, found a text");
    row("tolerance below 0", withItems(R"([{"name": "A", "expect": "7", "tolerance": -0.5}])"),
        "p.json: devices[0].items[0].tolerance: expected 0 or more, found -0.5");
    row("tolerance alone", withItems(R"([{"name": "A", "tolerance": 1}])"),
        "p.json: devices[0].items[0].tolerance: there is no \"expect\" that it belongs to");
    row("item name a flag", withItems(R"([{"name": "A"}, {"name": "B"}, {"name": true}])"),
        "p.json: devices[0].items[2].name: expected a text, found true or false");
    row("item name twice", withItems(R"([{"name": "A"}, {"name": "B"}, {"name": "B"}])"),
        "p.json: devices[0].items[2].name: \"B\" is already the name of devices[0].items[1]; write "
        "another one");
    row("parameters no object", withParameters("[]"),
        "p.json: devices[0].items[0].parameters: expected an object, found a list");
    row("parameter a number", withParameters(R"({"data_type": 1})"),
        "p.json: devices[0].items[0].parameters.data_type: expected a text or null, found a "
        "number; write \"1\"");
    row("device parameter a number", withDevice(R"(, "parameters": {"port": 8501})"),
        "p.json: devices[0].parameters.port: expected a text or null, found a number; write "
        "\"8501\"");
}

void tst_Plant::errors()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, error);

    QStringList errors;
    QCOMPARE(plantOf(json, &errors).has_value(), false);
    QCOMPARE(errors, QStringList(error));
}

void tst_Plant::idLimits_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<bool>("taken");

    QTest::newRow("below 0") << QByteArray("-1") << false;
    QTest::newRow("0") << QByteArray("0") << true;
    QTest::newRow("1") << QByteArray("1") << true;
    QTest::newRow("2147483646") << QByteArray("2147483646") << true;
    QTest::newRow("2147483647") << QByteArray("2147483647") << true;
    QTest::newRow("2147483648") << QByteArray("2147483648") << false;
}

void tst_Plant::idLimits()
{
    QFETCH(QByteArray, id);
    QFETCH(bool, taken);

    QStringList errors;
    const std::optional<Plant> plant = plantOf(withId(id), &errors);
    QCOMPARE(plant.has_value(), taken);
    if (taken)
        QCOMPARE(QByteArray::number(plant->devices.at(0).id), id);
    else
        QCOMPARE(errors,
                 QStringList(QStringLiteral("p.json: devices[0].id: expected a whole number "
                                            "from 0 to 2147483647")));
}

void tst_Plant::collectsErrors()
{
    QStringList errors;
    plantOf(R"({"devices": [{"id": "1", "ip": "", "items": [{}]}], "x": 1})", &errors);
    QCOMPARE(errors,
             QStringList(
                 {QStringLiteral(
                      "p.json: x: unknown key; known here: $schema, networkInterfaces, devices"),
                  QStringLiteral("p.json: devices[0].id: expected a number, found a text"),
                  QStringLiteral("p.json: devices[0].name: missing; expected a text"),
                  QStringLiteral("p.json: devices[0].items[0].name: missing; expected a text")}));
}

void tst_Plant::sizeLimits_data()
{
    QTest::addColumn<int>("excess");
    QTest::addColumn<bool>("taken");

    QTest::newRow("a byte below 16 MiB") << -1 << true;
    QTest::newRow("16 MiB") << 0 << true;
    QTest::newRow("a byte above 16 MiB") << 1 << false;
}

void tst_Plant::sizeLimits()
{
    QFETCH(int, excess);
    QFETCH(bool, taken);

    QTemporaryDir folder;
    const QString fileName = folder.filePath(QStringLiteral("p.json"));
    const QByteArray json = R"({"devices": []})";
    const QByteArray padding(16 * 1024 * 1024 + excess - json.size(), ' ');
    QVERIFY(writeFile(fileName, json + padding));

    QList<Problem> problems;
    QCOMPARE(readPlantDraft(fileName, &problems).has_value(), taken);
    const QString tooLarge = fileName + u": larger than 16 MiB, so it is no plant file";
    QCOMPARE(problemLines(fileName, problems), taken ? QStringList() : QStringList(tooLarge));
}

void tst_Plant::unreadableFile()
{
    const QTemporaryDir folder;
    const QString missing = folder.filePath(QStringLiteral("p.json"));
    QList<Problem> problems;
    QCOMPARE(readPlantDraft(missing, &problems).has_value(), false);
    QCOMPARE(readPlantDraft(folder.path(), &problems).has_value(), false);
    const QString first = QStringLiteral("p: cannot be read: No such file or directory");
    const QString second = QStringLiteral("p: cannot be read: file to open is a directory");
    QCOMPARE(problemLines(QStringLiteral("p"), problems), QStringList({first, second}));
}

QTEST_GUILESS_MAIN(tst_Plant)
#include "tst_plant.moc"
