#include "programrun.h"
#include "testfolder.h"
#include "text.h"

#include <QTest>

// Plants that cannot be played, and command lines that make no sense with one.
class tst_PlantFileErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void errors_data();
    void errors();
    void allAtOnce();
    void tooManyDevices();
    void unusableFiles_data();
    void unusableFiles();
};

namespace {

ProgramRun play(const TestFolder &folder, const QStringList &arguments)
{
    return runProgram(text(KVSIM_PROGRAM),
                      QStringList{text("--plant"), text("plant.json"), text("--write-plant"),
                                  text("written.json")}
                          + arguments,
                      folder.path({}));
}

QByteArray oneDevice(const QByteArray &members)
{
    return R"({"devices": [{)" + members + "}]}";
}

QByteArray oneItem(const QByteArray &parameters)
{
    return oneDevice(R"("items": [{"parameters": {)" + parameters + "}}]");
}

} // namespace

void tst_PlantFileErrors::errors_data()
{
    QTest::addColumn<QByteArray>("plant");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *name, const QByteArray &plant, const char *error) {
        QTest::newRow(name) << plant << text(error);
    };
    const auto item = [&row](const char *name, const QByteArray &parameters, const char *error) {
        const QByteArray place = QByteArray(": devices[0].items[0].parameters.") + error;
        row(name, oneItem(parameters), place.constData());
    };
    row("empty", "", ": is empty");
    row("a list", "[]", ": expected an object, found a list");
    row("no devices", "{}", ": devices: missing; expected a list");
    row("no device", R"({"devices": []})", ": devices: must have one device at least");
    row("no items", oneDevice({}), ": devices[0].items: missing; expected a list");
    row("an item that is none", oneDevice(R"("items": [5])"),
        ": devices[0].items[0]: expected an object, found a number");
    row("defaults that are none", oneDevice(R"("items": [], "itemDefaults": [])"),
        ": devices[0].itemDefaults: expected an object, found a list");
    row("a port that is none", oneDevice(R"("items": [], "parameters": {"port": "65536"})"),
        ": devices[0].parameters.port: '65536' is no port; write one from 1 to 65535, or --port");
    item("no address", {},
         "memory_address: '' is no address that exists; write one such as DM100 or R015");
    item("small letters", R"("memory_address": "dm100")",
         "memory_address: 'dm100' is no address that exists; write one such as DM100 or R015");
    item("behind the last word", R"("memory_address": "DM65535")",
         "memory_address: 'DM65535' is no address that exists; write one such as DM100 or R015");
    item("over the end", R"("memory_address": "DM65534", "data_type": "Long")",
         "memory_address: 'DM65534' is for 2 words; 1 to 1 can be read from there on");
    item("text without length", R"("memory_address": "DM7", "data_type": "ASCII")",
         "memory_address: 'DM7' is for 0 words; 1 to 1000 can be read from there on");
    item("more than a command reads", R"("memory_address": "DM0-1000", "data_type": "ASCII")",
         "memory_address: 'DM0-1000' is for 1001 words; 1 to 1000 can be read from there on");
    item("unknown type", R"("memory_address": "DM7", "data_type": "Unknown Data Type")",
         "data_type: 'Unknown Data Type' is no type of words; use one of: BIT, Short, Long, Word, "
         "DWord, Hexadecimal 16Bit, Hexadecimal 32Bit, Float, Double, ASCII");
    item("its number", R"("memory_address": "DM7", "data_type": "10")",
         "data_type: '10' is no type of words; use one of: BIT, Short, Long, Word, "
         "DWord, Hexadecimal 16Bit, Hexadecimal 32Bit, Float, Double, ASCII");
}

// Nothing listens, and nothing is written.
void tst_PlantFileErrors::errors()
{
    QFETCH(QByteArray, plant);
    QFETCH(QString, error);

    const TestFolder folder;
    folder.write(text("plant.json"), plant);
    const ProgramRun result = play(folder, {});
    QString expected;
    const QStringList lines = error.split(u'\n');
    for (const QString &line : lines)
        expected += text("kvsim: plant.json") + line + u'\n';
    QCOMPARE(result.errors, expected);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(folder.read(text("written.json")), QByteArray());
}

void tst_PlantFileErrors::allAtOnce()
{
    const TestFolder folder;
    folder.write(text("plant.json"), R"({"devices": [
        {"parameters": {"port": "0"}, "items": [{"parameters": {"memory_address": "T0"}}]},
        {"items": [{}, {"parameters": {"memory_address": "R016"}}]}]})");
    const ProgramRun result = play(folder, {});
    QCOMPARE(result.errors.count(u'\n'), 4);
    QCOMPARE(result.errors.count(text(" is no address that exists; ")), 3);
    QCOMPARE(result.errors.count(text("devices[1].items[1]")), 1);
    QCOMPARE(result.exitCode, 2);
}

void tst_PlantFileErrors::tooManyDevices()
{
    const TestFolder folder;
    QList<QByteArray> devices;
    for (int i = 0; i < 3; ++i)
        devices.append(R"({"items": []})");
    folder.write(text("plant.json"), R"({"devices": [)" + devices.join(',') + "]}");
    const ProgramRun result = play(folder, {text("--bind"), text("127.0.0.253")});
    QCOMPARE(result.errors,
             text("kvsim: plant.json: 3 controllers from 127.0.0.253 on do not fit before .255; "
                  "write fewer, or a lower --bind.\n"));
    QCOMPARE(result.exitCode, 2);
}

void tst_PlantFileErrors::unusableFiles_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *arguments, const char *error) {
        QTest::newRow(arguments) << text(arguments) << text(error);
    };
    row("--plant none.json", "none.json: cannot be read: No such file or directory");
    row("--plant plant.json --write-plant none/written.json",
        "none/written.json: cannot be written: No such file or directory");
}

void tst_PlantFileErrors::unusableFiles()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    const TestFolder folder;
    folder.write(text("plant.json"), oneDevice(R"("items": [])"));
    const ProgramRun result
        = runProgram(text(KVSIM_PROGRAM), arguments.split(u' '), folder.path({}));
    QCOMPARE(result.errors, QString(text("kvsim: ") + error + u'\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_PlantFileErrors)
#include "tst_plantfileerrors.moc"
