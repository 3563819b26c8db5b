#include "kvsimprocess.h"
#include "programrun.h"
#include "testfolder.h"
#include "text.h"
#include "textclient.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTcpServer>
#include <QTest>

// A plant that is played before it is there. The built velhost reads what was written of it.
class tst_PlantFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyItemMoves_data();
    void everyItemMoves();
    void onlyThePlacesAreOthers();
    void placesOfThePlant();
    void placesAsAsked();
    void firstItemMovesAWord();
    void textsFillTheirWords();
    void defaultsOfADevice();
    void whatIsPlayedCanBeChanged();
};

namespace {

const QString written = QStringLiteral("written.json");

QByteArray item(const QByteArray &name, const QByteArray &parameters)
{
    return R"({"name": ")" + name + R"(", "parameters": {)" + parameters + "}}";
}

QByteArray device(const QByteArray &id, const QByteArray &members, const QList<QByteArray> &items)
{
    return R"({"id": )" + id + R"(, "name": "Device )" + id + R"(", "ip": "192.0.2.)" + id
           + R"(", )" + members + R"("items": [)" + items.join(",\n") + "]}";
}

QByteArray plant(const QList<QByteArray> &devices)
{
    return R"({"devices": [)" + devices.join(",\n") + "]}";
}

// All types, by name and by number, on every kind of address.
QByteArray wholePlant()
{
    const auto at = [](const QByteArray &address, const QByteArray &type) -> QByteArray {
        return item(address, R"("memory_address": ")" + address + R"(", )" + type);
    };
    const auto type = [](const char *name) -> QByteArray {
        return R"("data_type": ")" + QByteArray(name) + '"';
    };
    const QByteArray bitDevice(R"("memory_type": "Bit device")");
    return plant({device("1", {},
                         {at("DM1.15", type("BIT")), at("DM2.0", type("0")), at("TM1", type("1")),
                          at("EM65533", type("2")), at("W1F", type("3")), at("CM0", type("4")),
                          at("Z12", type("5")), at("VM7", type("6")), at("FM7", type("7")),
                          at("FM20", type("8")), at("D200-1000", type("9")),
                          at("E0-10", type("ASCII")), at("E20-1", type("ASCII"))}),
                  device("2", {},
                         {at("R015", R"("memory_type": "0")"), at("R100", bitDevice),
                          at("B7FFF", bitDevice + ", " + type("Unknown Data Type")),
                          at("DM9.3", R"("memory_type": null, "data_type": null)")})});
}

QStringList playing(const QString &file, const TestFolder &folder)
{
    return {text("--plant"), file, text("--write-plant"), folder.path(written)};
}

QJsonObject objectOf(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

// The values of each item, by its name.
QMap<QString, QSet<QString>> valuesOf(const ProgramRun &run)
{
    QMap<QString, QSet<QString>> values;
    const QStringList lines = run.output.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QJsonObject value = objectOf(line.toUtf8());
        if (value.value(text("error")).toString().isEmpty())
            values[value.value(text("item")).toString()].insert(
                value.value(text("value")).toString());
    }
    return values;
}

int itemCount(const QJsonObject &plant)
{
    int count = 0;
    const QJsonArray devices = plant.value(text("devices")).toArray();
    for (const QJsonValue &entry : devices)
        count += entry.toObject().value(text("items")).toArray().size();
    return count;
}

// A port that nobody uses at this address of the test's own.
quint16 freePort(const QString &address)
{
    QTcpServer owner;
    owner.listen(QHostAddress(address), 0);
    return owner.serverPort();
}

} // namespace

void tst_PlantFile::everyItemMoves_data()
{
    QTest::addColumn<QByteArray>("plant");
    QTest::addColumn<int>("controllers");

    const auto example = [](const char *name, int controllers) {
        QFile file(text(EXAMPLES_FOLDER "/%1").arg(text(name)));
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        QTest::newRow(name) << content << controllers;
    };
    example("demo-plant.json", 1);
    example("line-plant.json", 3);
    QTest::newRow("every type") << wholePlant() << 2;
}

// Two and a half seconds; what moves slowest moves every second.
void tst_PlantFile::everyItemMoves()
{
    QFETCH(QByteArray, plant);
    QFETCH(int, controllers);

    const TestFolder folder;
    KvsimProcess simulator(playing(folder.write(text("plant.json"), plant), folder)
                               + QStringList{text("--port"), text("0")},
                           controllers);
    QVERIFY(simulator.port(controllers - 1) != 0);
    const ProgramRun run
        = runProgram(text(VELHOST_FILE),
                     {text("read"), folder.path(written), text("--plugin"),
                      text(KEYENCE_PLUGIN_FILE), text("--cycles"), text("11"), text("--interval"),
                      text("250"), text("--format"), text("json")},
                     {});
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    const QMap<QString, QSet<QString>> values = valuesOf(run);
    QCOMPARE(values.size(), itemCount(objectOf(plant)));
    for (auto entry = values.begin(); entry != values.end(); ++entry)
        QVERIFY2(entry.value().size() > 1, qPrintable(entry.key()));
    QVERIFY(simulator.terminate());
    QVERIFY(simulator.errors().contains(", refusals 0, "));
}

void tst_PlantFile::onlyThePlacesAreOthers()
{
    const TestFolder folder;
    const QString file = folder.write(text("plant.json"), wholePlant());
    KvsimProcess simulator(playing(file, folder) + QStringList{text("--port"), text("0")}, 2);
    QJsonObject expected = objectOf(wholePlant());
    QJsonArray devices = expected.value(text("devices")).toArray();
    for (const int i : {0, 1}) {
        QJsonObject device = devices.at(i).toObject();
        device.insert(text("ip"), text("127.0.0.%1").arg(i + 1));
        device.insert(text("parameters"),
                      QJsonObject{{text("port"), QString::number(simulator.port(i))}});
        devices.replace(i, device);
    }
    expected.insert(text("devices"), devices);
    QCOMPARE(objectOf(folder.read(written)), expected);
    QVERIFY(simulator.terminate());
    QCOMPARE(folder.read(text("plant.json")), wholePlant());
}

// The addresses are the test's own: no connection of another program has their ports.
void tst_PlantFile::placesOfThePlant()
{
    const QByteArray first = QByteArray::number(freePort(text("127.0.0.81")));
    const QByteArray second = QByteArray::number(freePort(text("127.0.0.82")));
    const auto at = [](const char *id, const QByteArray &port) {
        return device(id, R"("parameters": {"port": ")" + port + R"(", "timeout": "500"}, )", {});
    };
    const TestFolder folder;
    const QString file = folder.write(text("plant.json"), plant({at("7", first), at("8", second)}));
    KvsimProcess simulator(playing(file, folder) + QStringList{text("--bind"), text("127.0.0.81")},
                           2);
    QCOMPARE(simulator.lines(), QList<QByteArray>({"listening 127.0.0.81:" + first,
                                                   "listening 127.0.0.82:" + second}));
    const QJsonArray devices = objectOf(folder.read(written)).value(text("devices")).toArray();
    QCOMPARE(devices.at(1).toObject().value(text("ip")), QJsonValue(text("127.0.0.82")));
    QCOMPARE(
        devices.at(1).toObject().value(text("parameters")).toObject(),
        QJsonObject({{text("port"), QString::fromLatin1(second)}, {text("timeout"), text("500")}}));
    QVERIFY(simulator.terminate());
}

// The ports of the plant are not even looked at.
void tst_PlantFile::placesAsAsked()
{
    const QByteArray port = QByteArray::number(freePort(text("127.0.0.83")));
    const TestFolder folder;
    const QString file = folder.write(
        text("plant.json"), plant({device("1", R"("parameters": {"port": "${PORT}"}, )", {}),
                                   device("2", R"("parameters": {"port": "80"}, )", {})}));
    KvsimProcess simulator({text("--plant"), file, text("--bind"), text("127.0.0.83"),
                            text("--port"), QString::fromLatin1(port)},
                           2);
    QCOMPARE(simulator.lines(),
             QList<QByteArray>({"listening 127.0.0.83:" + port, "listening 127.0.0.84:" + port}));
    QVERIFY(simulator.terminate());
    QCOMPARE(folder.read(written), QByteArray());
}

// DM8 is the upper word of the Long that swings between the limits, and not the Word that counts.
void tst_PlantFile::firstItemMovesAWord()
{
    const TestFolder folder;
    const QByteArray items
        = plant({device("1", {},
                        {item("Bits", R"("memory_address": "DM10.1")"),
                         item("More bits", R"("memory_address": "DM10.2")"),
                         item("Long", R"("memory_address": "DM7", "data_type": "Long")"),
                         item("Word", R"("memory_address": "D8", "data_type": "Word")")})});
    KvsimProcess simulator(
        {text("--plant"), folder.write(text("plant.json"), items), text("--port"), text("0")});
    TextClient client(simulator.port());
    // Two seconds after the start of its swing it is above 90; the Word would begin at 3.
    const int upper = client.ask("RD DM8\r").trimmed().toInt();
    QVERIFY2(upper > 90 && upper < 500, QByteArray::number(upper).constData());
    const QByteArray bits = client.ask("RD DM10\r");
    QVERIFY2(bits == "00000\r\n" || bits == "65535\r\n", bits.constData());
    QCOMPARE(client.ask("RD DM9\r"), QByteArray("00009\r\n"));
    QVERIFY(simulator.terminate());
}

void tst_PlantFile::textsFillTheirWords()
{
    const TestFolder folder;
    const QByteArray items
        = plant({device("1", {},
                        {item("Range", R"("memory_address": "D200-205", "data_type": "ASCII")"),
                         item("Count", R"("memory_address": "D300-3", "data_type": "9")")})});
    KvsimProcess simulator(
        {text("--plant"), folder.write(text("plant.json"), items), text("--port"), text("0")});
    TextClient client(simulator.port());
    // "LOT 0000", a digit, and zeros; of the text that is too long its end.
    const QList<QByteArray> range = client.ask("RDS D200 7\r").trimmed().split(' ');
    QCOMPARE(range.mid(0, 4), QList<QByteArray>({"20300", "08276", "12336", "12336"}));
    QVERIFY(range.at(4).toInt() >= '0' && range.at(4).toInt() <= '9');
    QCOMPARE(range.mid(5), QList<QByteArray>({"00000", "00206"}));
    const QList<QByteArray> count = client.ask("RDS D300 4\r").trimmed().split(' ');
    QCOMPARE(count.at(0), QByteArray("12320"));
    QCOMPARE(count.at(1), QByteArray("12336"));
    QCOMPARE(count.at(2).toInt() & 0xFF, int('0'));
    QCOMPARE(count.at(3), QByteArray("00303"));
    QVERIFY(simulator.terminate());
}

// What an item does not say, the device says for all.
void tst_PlantFile::defaultsOfADevice()
{
    const TestFolder folder;
    const QByteArray items = plant(
        {device("1", R"("itemDefaults": {"memory_type": "Word device", "data_type": "Double"}, )",
                {item("Double", R"("memory_address": "DM10")"),
                 item("Float", R"("memory_address": "DM20", "data_type": "Float")"),
                 item("Bit", R"("memory_address": "R100", "memory_type": "Bit device")"),
                 item("Bit of a word", R"("memory_address": "DM30.1", "data_type": null)")})});
    KvsimProcess simulator({text("--plant"), folder.write(text("plant.json"), items),
                            text("--port"), text("0"), text("--control"), text("0")},
                           2);
    TextClient control(simulator.port(1));
    const QList<QByteArray> moved{"DM10", "DM11", "DM12", "DM13", "DM20", "DM21", "R100", "DM30"};
    for (const QByteArray &address : moved)
        QCOMPARE(control.ask("set " + address + " 1\n"),
                 QByteArray("error a generator makes the value of '" + address
                            + "'; choose another address\n"));
    for (const char *still : {"DM9", "DM14", "DM22", "R101", "DM31"})
        QCOMPARE(control.ask("set " + QByteArray(still) + " 1\n"), QByteArray("ok\n"));
    QVERIFY(simulator.terminate());
}

// Faults, values and the control port are for all controllers of the plant.
void tst_PlantFile::whatIsPlayedCanBeChanged()
{
    const TestFolder folder;
    KvsimProcess simulator({text("--plant"), folder.write(text("plant.json"), wholePlant()),
                            text("--port"), text("0"), text("--fault"), text("refuse=E5@DM50"),
                            text("--set"), text("DM60=5"), text("--control"), text("0")},
                           3);
    QTcpSocket socket;
    socket.connectToHost(text("127.0.0.2"), simulator.port(1));
    QVERIFY(socket.waitForConnected(KvsimProcess::timeout));
    socket.write("RD DM50\rRD DM60\r");
    while (socket.bytesAvailable() < 11)
        QVERIFY(socket.waitForReadyRead(KvsimProcess::timeout));
    QCOMPARE(socket.readAll(), QByteArray("E5\r\n00005\r\n"));
    TextClient control(simulator.port(2));
    QCOMPARE(control.ask("@2 set DM60 6\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("get DM60\n"), QByteArray("5 6\n"));
    QCOMPARE(control.ask("@2 set DM9 1\n"),
             QByteArray("error a generator makes the value of 'DM9'; choose another address\n"));
    QVERIFY(simulator.terminate());
}

QTEST_GUILESS_MAIN(tst_PlantFile)
#include "tst_plantfile.moc"
