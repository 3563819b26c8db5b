#include "plantjson.h"
#include "plantrun.h"
#include "scriptedpeer.h"
#include "text.h"

#include <plan/recorder.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QTest>

// `plan`: what it shows, and that it never connects to the address in the plant file.

namespace {

const QString keyencePlugin = QStringLiteral(KEYENCE_PLUGIN_FILE);

/// A device with an item for each form of command, and two that are never sent.
QByteArray plantAt(const QByteArray &ip, const QByteArray &parameters)
{
    return plantJson(ip, parameters,
                     {itemJson("Bit", "DM100.3", "1", "BIT"), itemJson("Short", "D201"),
                      itemJson("Label", "D200-10", "1", "ASCII"),
                      itemJson("No length", "D200", "1", "ASCII"), itemJson("No address", "?")});
}

ProgramRun runPlan(const QByteArray &plant, const QStringList &options)
{
    const QStringList common{text("plan"), text("--plugin"), keyencePlugin, text("--plant"),
                             text("plant.json")};
    return runWithPlant(text(VELHOST_FILE), common + options, plant);
}

/// Sends the bytes and returns the first answer of `size` bytes, or what came within ten seconds.
QByteArray ask(QTcpSocket *socket, const QByteArray &bytes, int size)
{
    socket->write(bytes);
    while (socket->bytesAvailable() < size && socket->waitForReadyRead(10000)) {
    }
    return socket->readAll();
}

} // namespace

class tst_Plan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table();
    void json();
    void opensNoConnection();
    void redirectsDevices();
    void refusedDevices_data();
    void refusedDevices();
    void unknownTimeout_data();
    void unknownTimeout();
    void plansWrites();
    void wordCounts_data();
    void wordCounts();
    void recorderAnswers();
    void longAnswers_data();
    void longAnswers();
    void recorderEndsEndlessLine();
    void redirectsWhereValid_data();
    void redirectsWhereValid();
};

void tst_Plan::table()
{
    const ProgramRun run = runPlan(plantAt("10.0.0.1", R"("timeout": "300")"),
                                   {text("--write"), text("Press/Bit=1"), text("--write"),
                                    text("Press/Short=40000"), text("--rtt"), text("7")});
    QCOMPARE(run.output, text(
                             R"(Device  Item        Operation  Words  Command        Error
Press   Bit         read       1      RD DM100\r
Press   Short       read       1      RD D201\r
Press   Label       read       10     RDS D200 10\r
Press   No length   read                             data lenght invalid
Press   No address  read                             [ ] not sent: Data item parameters invalid
Press   Bit         write      1      RD DM100\r
Press   Bit         write      1      WR DM100 8\r
Press   Short       write                            [write data] item error from <Short> :value out of range

Device  Exchanges a cycle  Best ms  Worst ms  Connect ms  Error
Press   3                  21       900       300
)"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Plan::json()
{
    QByteArray plant = plantAt("10.0.0.1", "");
    plant.replace("\"?\"", "\"D0\"").replace("\"D200\"", "\"D0-2\"");
    const ProgramRun run
        = runPlan(plant, {text("--format"), text("json"), text("--write"), text("Press/Bit=1")});
    QCOMPARE(
        run.output,
        text(
            R"({"type":"plan","device":"Press","item":"Bit","operation":"read","commands":[{"line":"RD DM100\r","words":1}],"error":""}
{"type":"plan","device":"Press","item":"Short","operation":"read","commands":[{"line":"RD D201\r","words":1}],"error":""}
{"type":"plan","device":"Press","item":"Label","operation":"read","commands":[{"line":"RDS D200 10\r","words":10}],"error":""}
{"type":"plan","device":"Press","item":"No length","operation":"read","commands":[{"line":"RDS D0 3\r","words":3}],"error":""}
{"type":"plan","device":"Press","item":"No address","operation":"read","commands":[{"line":"RD D0\r","words":1}],"error":""}
{"type":"plan","device":"Press","item":"Bit","operation":"write","commands":[{"line":"RD DM100\r","words":1},{"line":"WR DM100 8\r","words":1}],"error":""}
{"type":"budget","device":"Press","exchanges":5,"best_ms":5,"worst_ms":10000,"connect_ms":2000,"error":""}
)"));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
}

void tst_Plan::opensNoConnection()
{
    ScriptedPeer controller;
    const ProgramRun run
        = runPlan(plantAt("127.0.0.1", portParameter(controller.port())),
                  {text("--format"), text("json"), text("--write"), text("Press/Short=1")});
    QCOMPARE(run.output.contains(text(R"("line":"WR D201 0001\r")")), true);
    QCOMPARE(controller.finish(), QByteArray());
    QCOMPARE(controller.connectionCount(), 0);
}

// The plug-in logs the devices that it gets in init() and in each cycle.
void tst_Plan::redirectsDevices()
{
    const ProgramRun run
        = runWithPlant(text(VELHOST_FILE),
                       {text("plan"), text("--plugin"), text(SCRIPTED_PLUGIN_FILE), text("--plant"),
                        text("plant.json"), text("--write"), text("Press/A=1")},
                       R"({"devices": [{"id": 1, "name": "Press", "ip": "10.0.0.1",
            "parameters": {"port": "4711", "script": "trace,read-error"}, "items": [{"name": "A"}]}]})");
    QCOMPARE(run.errors.contains(text("init: 1 Press 127.0.0.1 {port=")), true);
    QCOMPARE(run.errors.contains(text("4711")), false);
    // This plug-in refuses every device, so no item is planned.
    QCOMPARE(run.output, text(R"(Device  Item  Operation  Words  Command  Error
Press   A     read                       no answer from 127.0.0.1
Press   A     write                      no answer from 127.0.0.1

Device  Exchanges a cycle  Best ms  Worst ms  Connect ms  Error
Press   0                  0        unknown   unknown     no answer from 127.0.0.1
)"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Plan::refusedDevices_data()
{
    QTest::addColumn<QByteArray>("ip");
    QTest::addColumn<QByteArray>("port");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *title, const char *ip, const char *port, const char *error) {
        QTest::newRow(title) << QByteArray(ip) << QByteArray(port) << text(error);
    };
    row("fits", "10.0.0.1", R"("8501")", "");
    row("number of the address too large", "10.0.0.256", R"("8501")", "invalid address");
    row("host name", "plc.invalid", R"("8501")", "invalid address");
    row("no address", "", R"("8501")", "invalid address");
    row("port without digits", "10.0.0.1", R"("Host Link")", "invalid port");
    row("empty port", "10.0.0.1", R"("")", "invalid port");
    row("no port", "10.0.0.1", "null", "invalid port");
    row("neither", "", R"("")", "invalid port");
    row("port 0", "10.0.0.1", R"("0")",
        "the port \"0\" is no number from 1 to 65535: no connection is possible");
    row("port 1", "10.0.0.1", R"("1")", "");
    row("port 65535", "10.0.0.1", R"("65535")", "");
    row("port 65536", "10.0.0.1", R"("65536")",
        "the port \"65536\" is no number from 1 to 65535: no connection is possible");
    row("port with letters", "10.0.0.1", R"("p1")",
        "the port \"p1\" is no number from 1 to 65535: no connection is possible");
}

void tst_Plan::refusedDevices()
{
    QFETCH(QByteArray, ip);
    QFETCH(QByteArray, port);
    QFETCH(QString, error);

    QByteArray plant = plantAt(ip, R"("port": )" + port);
    plant.replace("\"?\"", "\"D0\"").replace("\"D200\"", "\"D0-2\"");
    const ProgramRun run = runPlan(plant, {text("--format"), text("json")});
    const bool isRefused = !error.isEmpty();
    const QJsonObject budget
        = QJsonDocument::fromJson(run.output.section(u'\n', -2, -2).toUtf8()).object();
    QCOMPARE(budget.value(u"exchanges").toInt(-1), isRefused ? 0 : 5);
    QCOMPARE(budget.value(u"error").toString(text("?")), error);
    QCOMPARE(run.output.contains(text("\\r")), !isRefused);
    QCOMPARE(run.exitCode, isRefused ? 1 : 0);
}

void tst_Plan::unknownTimeout_data()
{
    QTest::addColumn<QByteArray>("timeout");
    QTest::addColumn<QString>("times");

    QTest::newRow("1") << QByteArray(R"("1")") << text(R"("worst_ms":null,"connect_ms":null)");
    QTest::newRow("2") << QByteArray(R"("2")") << text(R"("worst_ms":6,"connect_ms":2)");
    QTest::newRow("largest") << QByteArray(R"("2147483647")")
                             << text(R"("worst_ms":6442450941,"connect_ms":2147483647)");
    QTest::newRow("text") << QByteArray(R"("2 s")") << text(R"("worst_ms":null,"connect_ms":null)");
    QTest::newRow("none") << QByteArray("null") << text(R"("worst_ms":null,"connect_ms":null)");
}

void tst_Plan::unknownTimeout()
{
    QFETCH(QByteArray, timeout);
    QFETCH(QString, times);

    const ProgramRun run = runPlan(plantAt("10.0.0.1", R"("timeout": )" + timeout),
                                   {text("--format"), text("json")});
    QCOMPARE(run.output.section(u'\n', -2, -2),
             text(R"({"type":"budget","device":"Press","exchanges":3,"best_ms":3,%1,"error":""})")
                 .arg(times));
}

void tst_Plan::plansWrites()
{
    const ProgramRun run
        = runPlan(plantAt("10.0.0.1", ""), {text("--write"), text("Press/None=1")});
    QCOMPARE(run.errors, text("velhost: \"Press/None=1\": device \"Press\" has no such item; it "
                              "has: Bit, Short, Label, No length, No address\n"));
    QCOMPARE(run.exitCode, 2);
}

void tst_Plan::wordCounts_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("words");

    const auto row
        = [](const char *line, int words) { QTest::newRow(line) << QByteArray(line) << words; };
    row("RD DM100\r", 1);
    row("WR DM100 5\r", 1);
    row("RDS DM100 3\r", 3);
    row("WRS DM100 5  16961 17475\r", 5);
    row("RDS DM100 65535\r", 65535);
    row("RDS DM100 65536\r", 65536);
    row("RDS DM100 65537\r", 65536);
    row("RDS DM100 -1\r", 0);
    row("RDS DM100 99999999999\r", 0);
    row("RDS DM100\r", 0);
    row("?K\r", 0);
    row("\r", 0);
}

void tst_Plan::wordCounts()
{
    QFETCH(QByteArray, line);
    QFETCH(int, words);
    QCOMPARE(wordCount(line), words);
}

void tst_Plan::recorderAnswers()
{
    Recorder recorder;
    QTcpSocket socket;
    socket.connectToHost(text("127.0.0.1"), recorder.port());
    QVERIFY(socket.waitForConnected(10000));
    QCOMPARE(ask(&socket, "RD DM100\r", 7), QByteArray("00000\r\n"));
    QCOMPARE(ask(&socket, "RDS DM100 3\r", 19), QByteArray("00000 00000 00000\r\n"));
    QCOMPARE(ask(&socket, "WR DM1 1\rWR DM2 2\r", 8), QByteArray("OK\r\nOK\r\n"));
    recorder.setWords("65535");
    QCOMPARE(ask(&socket, "RDS DM3 2\r", 13), QByteArray("65535 65535\r\n"));
    recorder.setWords("1 2 3");
    QCOMPARE(ask(&socket, "RDS DM4 2\r", 5), QByteArray("1 2\r\n"));
    QCOMPARE(ask(&socket, "RDS DM4 4\r", 9), QByteArray("1 2 3 3\r\n"));
    recorder.setWords("00000");
    socket.write("RD D");
    QVERIFY(socket.waitForBytesWritten(10000));
    QCOMPARE(ask(&socket, "M7\r", 7), QByteArray("00000\r\n"));
    QCOMPARE(recorder.takeLines(),
             (QList<QByteArray>{"RD DM100\r", "RDS DM100 3\r", "WR DM1 1\r", "WR DM2 2\r",
                                "RDS DM3 2\r", "RDS DM4 2\r", "RDS DM4 4\r", "RD DM7\r"}));
    QCOMPARE(recorder.takeLines(), QList<QByteArray>());
}

void tst_Plan::longAnswers_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("size");

    QTest::newRow("1999 words") << QByteArray("RDS DM0 1999\r") << 11995;
    QTest::newRow("2000 words") << QByteArray("RDS DM0 2000\r") << 12001;
    QTest::newRow("2001 words") << QByteArray("RDS DM0 2001\r") << 12001;
    QTest::newRow("more than there are") << QByteArray("RDS DM0 9999900\r") << 12001;
}

// Nothing of a long answer is left for the next command.
void tst_Plan::longAnswers()
{
    QFETCH(QByteArray, line);
    QFETCH(int, size);

    Recorder recorder;
    QTcpSocket socket;
    socket.connectToHost(text("127.0.0.1"), recorder.port());
    QVERIFY(socket.waitForConnected(10000));
    QCOMPARE(ask(&socket, line, size).size(), size);
    QCOMPARE(ask(&socket, "RD DM7\r", 7), QByteArray("00000\r\n"));
}

void tst_Plan::recorderEndsEndlessLine()
{
    Recorder recorder;
    QTcpSocket socket;
    socket.connectToHost(text("127.0.0.1"), recorder.port());
    QVERIFY(socket.waitForConnected(10000));
    socket.write(QByteArray(64 * 1024, 'x'));
    QVERIFY(socket.waitForDisconnected(10000));
    QCOMPARE(recorder.takeLines(), QList<QByteArray>());
}

void tst_Plan::redirectsWhereValid_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("judged");

    const auto row = [](const char *ip, const char *port, const char *judged) {
        QTest::addRow("%s:%s", ip, port) << text(ip) << text(port) << text(judged);
    };
    row("10.0.0.1", "8501", "127.0.0.1:9");
    row("255.255.255.255", "8501", "127.0.0.1:9");
    row("255.255.255.256", "8501", "255.255.255.256:9");
    row("010.0.0.1", "8501", "127.0.0.1:9");
    row("10.0.0", "8501", "10.0.0:9");
    row("10.0.0.1.1", "8501", "10.0.0.1.1:9");
    row("plc", "8501", "plc:9");
    row("", "8501", ":9");
    row("10.0.0.1", "x", "127.0.0.1:x");
    row("10.0.0.1", "x1", "127.0.0.1:9");
    row("10.0.0.1", "", "127.0.0.1:");
    row("plc", "x", "plc:x");
}

void tst_Plan::redirectsWhereValid()
{
    QFETCH(QString, ip);
    QFETCH(QString, port);
    QFETCH(QString, judged);

    const QString key = text("port");
    DeviceInstancePlugin device;
    device.ipAddress = ip;
    device.parameters.insert(key, port);
    const DeviceInstancePlugin result = redirectedWhereValid(device, 9);
    const QString shown = result.ipAddress + u':' + result.parameters.value(key);
    QCOMPARE(shown, judged);
}

QTEST_GUILESS_MAIN(tst_Plan)
#include "tst_plan.moc"
