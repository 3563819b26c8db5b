#include "goodplant.h"
#include "text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

// The schema of plant files agrees with `velhost check` as far as a schema can.

namespace {

const QString schemaFile = QStringLiteral(DOCS_FOLDER "/plant.schema.json");

/// Checks the plant in each input line against the schema; prints a line with the places of the
/// problems.
const char *const validatorScript = R"(
import json, sys
from jsonschema import Draft7Validator
validator = Draft7Validator(json.load(open(sys.argv[1])))
for line in sys.stdin:
    places = [error.json_path for error in validator.iter_errors(json.loads(line))]
    print(json.dumps(places), flush=True)
)";

} // namespace

class tst_PlantSchema : public QObject
{
    Q_OBJECT

    QStringList problems(QByteArray plant);

    QProcess m_validator;

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void examples_data();
    void examples();
    void goodPlantIsRight();
    void refused_data();
    void refused();
    void limits_data();
    void limits();
};

// Debian's own Python, which has the package python3-jsonschema.
void tst_PlantSchema::initTestCase()
{
    QVERIFY(qputenv("PLANT_IP", "10.0.0.2") && qputenv("PLANT_NET", "0")
            && qputenv("PLANT_PORT", "8502"));
    m_validator.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_validator.start(text("/usr/bin/python3"), {text("-c"), text(validatorScript), schemaFile});
    QVERIFY(m_validator.waitForStarted());
}

void tst_PlantSchema::cleanupTestCase()
{
    m_validator.closeWriteChannel();
    QVERIFY(m_validator.waitForFinished());
    QCOMPARE(m_validator.exitCode(), 0);
}

/// The places where the plant violates the schema.
QStringList tst_PlantSchema::problems(QByteArray plant)
{
    m_validator.write(plant.replace('\n', ' ') + '\n');
    while (!m_validator.canReadLine()) {
        if (!m_validator.waitForReadyRead(120000))
            return {m_validator.errorString()};
    }
    const QByteArray line = m_validator.readLine();
    const QJsonDocument places = QJsonDocument::fromJson(line);
    return places.isArray() ? places.toVariant().toStringList()
                            : QStringList(QString::fromUtf8(line));
}

void tst_PlantSchema::examples_data()
{
    QTest::addColumn<QString>("fileName");

    // The files that begin with "kvsim-" are for the simulated controller.
    const QRegularExpression plantName(text(R"(\A(?!kvsim-).*\.json\z)"));
    const QDir folder(text(EXAMPLES_FOLDER));
    const QStringList plants = folder.entryList(QDir::Files).filter(plantName);
    QVERIFY(plants.size() >= 2);
    for (const QString &name : plants)
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
}

void tst_PlantSchema::examples()
{
    QFETCH(QString, fileName);

    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray plant = file.readAll();
    QCOMPARE(problems(plant), QStringList());
    const QString named = objectIn(plant).value(u"$schema").toString();
    QCOMPARE(QDir::cleanPath(QFileInfo(fileName).dir().filePath(named)), schemaFile);
}

void tst_PlantSchema::goodPlantIsRight()
{
    const ProgramRun run = check(goodPlant());
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(problems(goodPlant()), QStringList());
}

void tst_PlantSchema::refused_data()
{
    QTest::addColumn<QByteArray>("part");
    QTest::addColumn<QByteArray>("replacement");
    QTest::addColumn<QString>("place");

    const auto row
        = [](const char *name, const char *part, const char *replacement, const char *place) {
              QTest::newRow(name) << QByteArray(part) << QByteArray(replacement) << text(place);
          };
    row("schema no text", R"("s")", "1", "$.$schema");
    row("unknown key", R"("$schema")", R"("schema")", "$");
    row("no devices", R"("devices")", R"("Devices")", "$");
    row("devices no list", R"("devices": [)", R"("devices": {}, "x": [)", "$.devices");
    row("interface no text", R"("eth0")", "0", "$.networkInterfaces[0]");
    row("interface empty", R"("eth0")", R"("")", "$.networkInterfaces[0]");
    row("unknown key of a device", R"("id")", R"("colour": 1, "id")", "$.devices[0]");
    row("id missing", R"("id": 1,)", "", "$.devices[0]");
    row("id a text", R"("id": 1)", R"("id": "1")", "$.devices[0].id");
    row("id a fraction", R"("id": 1)", R"("id": 1.5)", "$.devices[0].id");
    row("name null", R"("Press")", "null", "$.devices[0].name");
    row("name empty", R"("Press")", R"("")", "$.devices[0].name");
    row("address a name", "10.0.0.1", "plc", "$.devices[0].ip");
    row("address a number", R"("10.0.0.1")", "10", "$.devices[0].ip");
    row("address with leading zero", "10.0.0.1", "10.0.0.01", "$.devices[0].ip");
    row("address with 256", "10.0.0.1", "10.0.0.256", "$.devices[0].ip");
    row("unknown parameter", R"("port")", R"("prot")", "$.devices[0].parameters");
    row("port a number", R"("8501")", "8501", "$.devices[0].parameters.port");
    row("port null", R"("8501")", "null", "$.devices[0].parameters.port");
    row("time-out with unit", R"("2000")", R"("2 s")", "$.devices[0].parameters.timeout");
    row("time-out null", R"("2000")", "null", "$.devices[0].parameters.timeout");
    row("search ports a number", "null", "8501", "$.devices[0].parameters.udp_ports");
    row("item no object", R"("items": [)", R"("items": [5, )", "$.devices[0].items[0]");
    row("unknown key of an item", R"("name": "A")", R"("name": "A", "x": 1)",
        "$.devices[0].items[0]");
    row("expected value a number", R"("name": "A")", R"("name": "A", "expect": 7)",
        "$.devices[0].items[0].expect");
    row("tolerance a text", R"("name": "A")", R"("name": "A", "expect": "7", "tolerance": "1")",
        "$.devices[0].items[0].tolerance");
    row("tolerance alone", R"("name": "A")", R"("name": "A", "tolerance": 1)",
        "$.devices[0].items[0]");
    row("item name missing", R"("name": "A",)", "", "$.devices[0].items[0]");
    row("parameters missing", R"("A", "parameters": {)", R"("A"}, {"name": "B", "parameters": {)",
        "$.devices[0].items[0]");
    row("memory address missing", R"("memory_address": "D1", )", "",
        "$.devices[0].items[0].parameters");
    row("memory address a number", R"("D1")", "1",
        "$.devices[0].items[0].parameters.memory_address");
    row("memory address without device", R"("D1")", R"("1")",
        "$.devices[0].items[0].parameters.memory_address");
    row("memory type not offered", R"("memory_type": "1")", R"("memory_type": "2")",
        "$.devices[0].items[0].parameters.memory_type");
    const char *const item = R"("memory_address": "D1", "memory_type": "1", "data_type": "Short")";
    const char *const address = "$.devices[0].items[0].parameters.memory_address";
    row("bit as Short", item, R"("memory_address": "D1.3", "data_type": "Short")", address);
    row("bit as number 1", item, R"("memory_address": "D1.3", "data_type": "1")", address);
    row("bit of a bit device", item, R"("memory_address": "R1.3", "memory_type": "0")", address);
    row("bit 16", item, R"("memory_address": "D1.16", "data_type": "BIT")", address);
    row("bit of three digits", item, R"("memory_address": "D1.007", "data_type": "BIT")", address);
    row("length as Short", item, R"("memory_address": "D1-5", "data_type": "Short")", address);
    row("length without data type", item, R"("memory_address": "D1-5")", address);
    row("length of a bit device", item,
        R"("memory_address": "R1-5", "memory_type": "Bit device", "data_type": "ASCII")", address);
    row("length 0", item, R"("memory_address": "D1-0", "data_type": "ASCII")", address);
    row("ASCII without length", item, R"("memory_address": "D1", "data_type": "ASCII")", address);
    row("ASCII as 9 without length", item, R"("memory_address": "D1", "data_type": "9")", address);
    row("Unknown Data Type", item,
        R"("memory_address": "D1", "memory_type": "1", "data_type": "Unknown Data Type")",
        "$.devices[0].items[0].parameters.data_type");
    row("Unknown Data Type as 10", item, R"("memory_address": "D1", "data_type": "10")",
        "$.devices[0].items[0].parameters.data_type");
    row("item default not offered", R"("items")", R"("itemDefaults": {"data_type": "S"}, "items")",
        "$.devices[0].itemDefaults.data_type");
    row("item default unknown", R"("items")", R"("itemDefaults": {"type": "1"}, "items")",
        "$.devices[0].itemDefaults");
    row("data type in other letters", R"("Short")", R"("short")",
        "$.devices[0].items[0].parameters.data_type");
}

// The schema and the program refuse the good plant with one part replaced.
void tst_PlantSchema::refused()
{
    QFETCH(QByteArray, part);
    QFETCH(QByteArray, replacement);
    QFETCH(QString, place);

    QCOMPARE(goodPlant().count(part), 1);
    QByteArray plant = goodPlant();
    plant.replace(part, replacement);
    QCOMPARE(check(plant).exitCode, 2);
    const QStringList places = problems(plant);
    QVERIFY2(places.contains(place), qPrintable(places.join(u' ')));
}

void tst_PlantSchema::limits_data()
{
    QTest::addColumn<QByteArray>("part");
    QTest::addColumn<QByteArray>("replacement");
    QTest::addColumn<bool>("isRight");

    const auto row = [](const char *part, const char *replacement, bool isRight) {
        QTest::newRow(replacement) << QByteArray(part) << QByteArray(replacement) << isRight;
    };
    const char *const id = R"("id": 1)";
    row(id, R"("id": -1)", false);
    row(id, R"("id": 0)", true);
    row(id, R"("id": 2147483646)", true);
    row(id, R"("id": 2147483647)", true);
    row(id, R"("id": 2147483648)", false);
    const char *const port = R"("port": "8501")";
    row(port, R"("port": "0")", false);
    row(port, R"("port": "1")", true);
    row(port, R"("port": "02")", true);
    row(port, R"("port": "9999")", true);
    row(port, R"("port": "10000")", true);
    row(port, R"("port": "59999")", true);
    row(port, R"("port": "65534")", true);
    row(port, R"("port": "65535")", true);
    row(port, R"("port": "65536")", false);
    row(port, R"("port": "70000")", false);
    row(port, R"("port": "")", false);
    const char *const timeout = R"("timeout": "2000")";
    row(timeout, R"("timeout": "0")", false);
    row(timeout, R"("timeout": "1")", true);
    row(timeout, R"("timeout": "999999999")", true);
    row(timeout, R"("timeout": "1999999999")", true);
    row(timeout, R"("timeout": "2146999999")", true);
    row(timeout, R"("timeout": "2147483646")", true);
    row(timeout, R"("timeout": "2147483647")", true);
    row(timeout, R"("timeout": "2147483648")", false);
    row(timeout, R"("timeout": "3000000000")", false);
    row(timeout, R"("timeout": "10000000000")", false);
    const char *const item = R"("memory_address": "D1", "memory_type": "1", "data_type": "Short")";
    const char *const name = R"("name": "A")";
    row(name, R"("name": "A", "expect": "7", "tolerance": -0.5)", false);
    row(name, R"("name": "A", "expect": "7", "tolerance": 0)", true);
    row(name, R"("name": "A", "expect": "7", "tolerance": 0.5)", true);
    row(item, R"("memory_address": "D1.0", "data_type": "BIT")", true);
    row(item, R"("memory_address": "D1.15", "data_type": "0")", true);
    row(item, R"("memory_address": "D1.3")", true);
    row(item, R"("memory_address": "D1.3", "memory_type": null, "data_type": null)", true);
    row(item, R"("memory_address": "D1")", true);
    row(item, R"("memory_address": "D1-1", "data_type": "ASCII")", true);
    row(item, R"("memory_address": "D1-10", "memory_type": "Word device", "data_type": "9")", true);
    row(item, R"("memory_address": "R1", "memory_type": "0", "data_type": "ASCII")", true);
    row(item, R"("memory_address": "R1", "memory_type": "0", "data_type": "10")", true);
    row(item, R"("memory_address": "R1", "memory_type": "Bit device")", true);
    row(R"("ip": "10.0.0.1")", R"("ip": "${PLANT_IP}")", true);
    row(R"("ip": "10.0.0.1")", R"("ip": "10.0.${PLANT_NET}.1")", true);
    row(port, R"("port": "${PLANT_PORT}")", true);
    const char *const items = R"("items": [{"name": "A", "parameters": {"memory_address": "D1", )"
                              R"("memory_type": "1", "data_type": "Short"}}])";
    row(items,
        R"("itemDefaults": {"data_type": "ASCII"}, "items": [{"name": "A",)"
        R"( "parameters": {"memory_address": "D1-5"}}])",
        true);
}

void tst_PlantSchema::limits()
{
    QFETCH(QByteArray, part);
    QFETCH(QByteArray, replacement);
    QFETCH(bool, isRight);

    QCOMPARE(goodPlant().count(part), 1);
    QByteArray plant = goodPlant();
    plant.replace(part, replacement);
    QCOMPARE(check(plant).exitCode, isRight ? 0 : 2);
    QCOMPARE(problems(plant).size(), isRight ? 0 : 1);
}

QTEST_GUILESS_MAIN(tst_PlantSchema)
#include "tst_plantschema.moc"
