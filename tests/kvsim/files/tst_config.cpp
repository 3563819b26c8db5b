#include "kvsimconfig.h"
#include "kvsimprocess.h"
#include "programrun.h"
#include "testfolder.h"
#include "text.h"
#include "textclient.h"

#include <QTcpServer>
#include <QTest>

// Controllers that a file describes, with the built program.
class tst_Config : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void controllers();
    void optionsBesideTheFile();
    void memoryAndRanges_data();
    void memoryAndRanges();
    void generators_data();
    void generators();
    void portTaken();
    void example();
};

namespace {

constexpr int timeout = KvsimProcess::timeout;

} // namespace

void tst_Config::controllers()
{
    const TestFolder folder;
    const QString file = folder.write(text("line.json"), R"({"controllers": [
        {"name": "press", "model": "53", "faults": ["refuse=E5@DM7"]},
        {"address": "127.0.0.2"}]})");
    KvsimProcess simulator(withConfig(file) + QStringList{text("--control"), text("0")}, 3);
    QVERIFY(simulator.lines().at(0).startsWith("listening 127.0.0.1:"));
    QVERIFY(simulator.lines().at(1).startsWith("listening 127.0.0.2:"));
    TextClient press(simulator.port());
    QCOMPARE(press.ask("?K\r"), QByteArray("53\r\n"));
    QCOMPARE(press.ask("RD DM7\r"), QByteArray("E5\r\n"));
    TextClient control(simulator.port(2));
    QCOMPARE(control.ask("@press set DM8 80\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("get DM8\n"), QByteArray("80 8\n"));
    QCOMPARE(control.ask("@2 get DM8\n"), QByteArray("8\n"));
    QCOMPARE(control.ask("@1 get DM8\n"),
             QByteArray("error unknown controller '@1'; use one of: @press, @2\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(),
             QByteArray("controller press " + simulator.lines().at(0).mid(10)
                        + "\ncommands 2, answers 2, refusals 1, clients 1\n"
                          "fault refuse=E5@DM7: seen 1, applied 1\ncontroller 2 "
                        + simulator.lines().at(1).mid(10)
                        + "\ncommands 0, answers 0, refusals 0, clients 0\n"));
}

// The options change every controller after the file has been read.
void tst_Config::optionsBesideTheFile()
{
    const TestFolder folder;
    const QString file = folder.write(
        text("line.json"),
        oneController(R"("memory": {"DM1": 10, "DM2": 20}, "faults": ["empty@DM5"])"));
    KvsimProcess simulator(withConfig(file)
                           + QStringList{text("--bind"), text("127.0.0.9"), text("--set"),
                                         text("DM2=21"), text("--fault"), text("silent@DM5")});
    QVERIFY(simulator.lines().at(0).startsWith("listening 127.0.0.9:"));
    QTcpSocket client;
    client.connectToHost(text("127.0.0.9"), simulator.port());
    QVERIFY(client.waitForConnected(timeout));
    client.write("RDS DM1 2\rRD DM5\r");
    while (client.bytesAvailable() < 15)
        QVERIFY(client.waitForReadyRead(timeout));
    QCOMPARE(client.readAll(), QByteArray("00010 00021\r\n\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(), QByteArray("commands 2, answers 2, refusals 0, clients 1\n"
                                            "fault empty@DM5: seen 1, applied 1\n"
                                            "fault silent@DM5: seen 1, applied 0\n"));
}

void tst_Config::memoryAndRanges_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("answer");

    const auto row = [](const char *command, const char *answer) {
        QTest::newRow(command) << QByteArray(command) << QByteArray(answer) + "\r\n";
    };
    row("RDS DM100 2", "00005 00101");
    row("RDS DM199 5", "00199 00001 00002 00003 00203");
    row("RDS R500 3", "0 0 1");
    row("RD CM7", "00070");
    row("RDS R1515 2", "1 1");
    row("WR DM299 1", "OK");
    row("WR DM300 1", "E4");
    row("WR DM309 1", "E4");
    row("WR DM310 1", "OK");
    row("WRS DM299 2 1 1", "E4");
    row("WRS DM309 2 1 1", "E4");
    row("WR R1000 1", "E4");
    row("WR DM300 70000", "E1");
    row("RD DM305", "00305");
    row("RD DM399", "00399");
    row("RD DM400", "E0");
    row("RD DM409", "E0");
    row("RD DM410", "00410");
    row("RDS DM399 2", "E0");
    row("RDS DM409 2", "E0");
    row("RDS DM398 2", "00398 00399");
    row("WR DM400 1", "E0");
    row("RD EM400", "00400");
}

void tst_Config::memoryAndRanges()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, answer);

    const TestFolder folder;
    const QString file = folder.write(text("line.json"), oneController(R"(
        "memory": {"DM100": 5, "DM200": [1, 2, 3], "R500": 0, "CM7": 70, "R1515": [1, 1]},
        "readOnly": ["DM300-DM309", "R1000"], "missing": ["D400-DM409"])"));
    KvsimProcess simulator(withConfig(file));
    QCOMPARE(TextClient(simulator.port()).ask(command + '\r'), answer);
    QVERIFY(simulator.terminate());
}

void tst_Config::generators_data()
{
    QTest::addColumn<QByteArray>("generator");
    QTest::addColumn<QByteArray>("answers");

    const auto row = [](const char *generator, const char *answers) {
        QTest::newRow(generator) << QByteArray(generator) << QByteArray(answers);
    };
    // The periods are long, so that the first value is read.
    row(R"({"kind": "ramp", "from": 7, "to": 9, "period": 86400000})", "00007");
    row(R"({"kind": "sine", "mean": -5, "amplitude": 0, "period": 1})", "65531");
    row(R"({"kind": "square", "low": 1, "high": 8, "period": 86400000})", "00008");
    row(R"({"kind": "random", "min": 6, "max": 6, "period": 10, "seed": 4294967295})", "00006");
    row(R"({"kind": "steps", "values": [5, 6], "hold": 86400000})", "00005");
    row(R"({"kind": "steps", "values": [5, 6], "hold": 1, "once": true})", "00006");
    row(R"({"kind": "csv", "file": "values.csv", "period": 1, "once": true})", "65533");
    row(R"({"kind": "csv", "file": "times.csv"})", "00040");
    row(R"({"kind": "csv", "file": "times.csv", "once": false})", "00040");
}

// A write does not change a generated value.
void tst_Config::generators()
{
    QFETCH(QByteArray, generator);
    QFETCH(QByteArray, answers);

    const TestFolder folder;
    folder.write(text("values.csv"), "# a heading\r\n1\r\n\r\n 2 \r\n-3");
    folder.write(text("times.csv"), "0;40\n86400000 , 50\n");
    const QString file = folder.write(text("line.json"),
                                      oneController(R"("generators": {"DM7": )" + generator + '}'));
    KvsimProcess simulator(withConfig(file) + QStringList{text("--control"), text("0")}, 2);
    TextClient client(simulator.port());
    const auto reached = [&] { return client.ask("RD DM7\r") == answers + "\r\n"; };
    QVERIFY(QTest::qWaitFor(reached, timeout));
    QCOMPARE(client.ask("WR DM7 1\r"), QByteArray("OK\r\n"));
    QCOMPARE(client.ask("RD DM7\r"), QByteArray(answers + "\r\n"));
    QCOMPARE(TextClient(simulator.port(1)).ask("set DM7 1\n"),
             QByteArray("error a generator makes the value of 'DM7'; choose another address\n"));
    QVERIFY(simulator.terminate());
}

void tst_Config::portTaken()
{
    QTcpServer owner;
    QVERIFY(owner.listen(QHostAddress(QHostAddress::LocalHost), 0));
    const TestFolder folder;
    const QByteArray port = QByteArray::number(owner.serverPort());
    folder.write(text("line.json"), oneController("\"port\": " + port));
    const ProgramRun result
        = runProgram(text(KVSIM_PROGRAM), {text("--config"), text("line.json")}, folder.path({}));
    QCOMPARE(result.errors.toUtf8(),
             QByteArray("kvsim: cannot listen on 127.0.0.1:" + port
                        + ": The bound address is already in use. Choose another address or port "
                          "in the file.\n"));
    QCOMPARE(result.exitCode, 1);
}

// The file that the documentation starts with.
void tst_Config::example()
{
    KvsimProcess simulator(withConfig(text(EXAMPLES_FOLDER "/kvsim-line.json")), 3);
    QVERIFY(simulator.lines().at(1).startsWith("listening 127.0.0.2:"));
    TextClient press(simulator.port());
    QCOMPARE(press.ask("RDS DM199 4\r"), QByteArray("00199 00010 00020 00030\r\n"));
    QCOMPARE(press.ask("WR DM1000 1\r"), QByteArray("E4\r\n"));
    QTcpSocket oven;
    oven.connectToHost(text("127.0.0.2"), simulator.port(1));
    QVERIFY(oven.waitForConnected(timeout));
    oven.write("?K\rRD EM5\rRD DM20\r");
    while (oven.bytesAvailable() < 15)
        QVERIFY(oven.waitForReadyRead(timeout));
    QCOMPARE(oven.readAll(), QByteArray("53\r\nE0\r\n00020\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors().count("fault silent@DM100@every=10: seen 0, applied 0\n"), 1);
}

QTEST_GUILESS_MAIN(tst_Config)
#include "tst_config.moc"
