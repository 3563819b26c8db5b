#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "text.h"
#include "writefile.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// `watch` without a terminal: the built program, the real plug-in, a simulated controller.

namespace {

/// A signed word; `more` follows its parameters.
QByteArray item(const QByteArray &name, const QByteArray &address, const QByteArray &more = "")
{
    return itemJson(name, address, "1", "Short", more);
}

QByteArray plantAt(int port, const QList<QByteArray> &items)
{
    return plantJson("127.0.0.1", portParameter(port), items);
}

/// Runs the plant with the real plug-in.
ProgramRun run(const char *arguments, const QByteArray &plant)
{
    const QStringList common{text("--plugin"), text(KEYENCE_PLUGIN_FILE)};
    return runWithPlant(text(VELHOST_FILE), common + text(arguments).split(u' '), plant);
}

/// The summary's numbers of the only device, without the times.
QStringList counts(const QString &errors)
{
    return errors.section(u'\n', -2, -2).split(u' ', Qt::SkipEmptyParts).mid(0, 6);
}

QList<QJsonObject> objects(const QString &lines)
{
    QList<QJsonObject> result;
    const QStringList list = lines.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : list)
        result.append(QJsonDocument::fromJson(line.toUtf8()).object());
    return result;
}

} // namespace

class tst_Watch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsByItself();
    void printsChanges();
    void countsErrors();
    void expected_data();
    void expected();
    void json();
    void csv();
    void lostConnection();
    void signalEnds_data();
    void signalEnds();
    void stopsPlugin();
    void closedOutput();
};

// Ends after its time, long before the second cycle.
void tst_Watch::endsByItself()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    QElapsedTimer sinceStart;
    sinceStart.start();
    const ProgramRun result = run("watch plant.json --for 1 --interval 86400000",
                                  plantAt(controller.port(), {item("Counter", "DM1")}));
    QVERIFY(sinceStart.elapsed() >= 1000);
    QCOMPARE(withoutTimes(result.output),
             text("Time                           Device  Item     Value       Error\n"
                  "T  Press   Counter  7\n"));
    QCOMPARE(result.errors.section(u'\n', 0, 0),
             text("Device  Cycles  Failed  Reads  Errors  Wrong  Suspect  p50 ms  p99 ms  Max ms"));
    QCOMPARE(counts(result.errors), text("Press 1 0 1 0 0").split(u' '));
    QCOMPARE(result.exitCode, 0);
}

// Prints one line for each change. The test changes the value as soon as the previous line is
// there.
void tst_Watch::printsChanges()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 0));
    QTemporaryDir folder;
    const QString plant = folder.filePath(text("plant.json"));
    QVERIFY(writeFile(
        plant, plantAt(controller.port(), {item("Counter", "DM1"), item("Constant", "DM2")})));
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    process.start(text(VELHOST_FILE), {text("watch"), plant, text("--plugin"),
                                       text(KEYENCE_PLUGIN_FILE), text("--interval"), text("5")});
    QString output;
    for (int value = 1; value <= 3; ++value) {
        const int lines = value + 2;
        while (output.count(u'\n') < lines && process.waitForReadyRead(10000))
            output += QString::fromUtf8(process.readAllStandardOutput());
        QCOMPARE(output.count(u'\n'), lines);
        QVERIFY(controller.setWord("DM1", value));
    }
    while (output.count(u'\n') < 6 && process.waitForReadyRead(10000))
        output += QString::fromUtf8(process.readAllStandardOutput());
    QCOMPARE(withoutTimes(output),
             text("Time                           Device  Item      Value       Error\n"
                  "T  Press   Counter   0\n"
                  "T  Press   Constant  2\n"
                  "T  Press   Counter   1\n"
                  "T  Press   Counter   2\n"
                  "T  Press   Counter   3\n"));
    process.terminate();
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 143);
}

void tst_Watch::countsErrors()
{
    SimulatorThread controller;
    QCOMPARE(controller.addFault("refuse=E1@DM1@every=2"), QString());
    const ProgramRun result
        = run("watch plant.json --for 1 --interval 20",
              plantAt(controller.port(), {item("Counter", "DM1"), item("Constant", "DM2")}));
    const quint64 applied = controller.faultCounts().at(0).applied;
    const quint64 cycles = controller.faultCounts().at(0).seen;
    QVERIFY(applied > 1);
    QCOMPARE(counts(result.errors),
             text("Press %1 0 %2 %3 0").arg(cycles).arg(2 * cycles).arg(applied).split(u' '));
    QCOMPARE(result.exitCode, 1);
}

void tst_Watch::expected_data()
{
    QTest::addColumn<QList<QByteArray>>("rests");
    QTest::addColumn<QString>("lines");
    QTest::addColumn<int>("wrong");
    QTest::addColumn<int>("exitCode");

    // Nothing, the same text and the same number.
    QTest::newRow("fits") << QList<QByteArray>{"", R"(, "expect": "7")", R"(, "expect": "007")"}
                          << text("T  Press   Item 0  7\n"
                                  "T  Press   Item 1  7\n"
                                  "T  Press   Item 2  7\n")
                          << 0 << 0;
    // Another number, no value, a control character.
    QTest::newRow("differs") << QList<QByteArray>{R"(, "expect": "8")", R"(, "expect": "")",
                                                  R"(, "expect": "\u001b")"}
                             << text("T  Press   Item 0  7           expected \"8\"\n"
                                     "T  Press   Item 1  7           expected \"\"\n"
                                     "T  Press   Item 2  7           expected \"\\x1b\"\n")
                             << 3 << 1;
    QTest::newRow("one differs") << QList<QByteArray>{"", R"(, "expect": "8")"}
                                 << text("T  Press   Item 0  7\n"
                                         "T  Press   Item 1  7           expected \"8\"\n")
                                 << 1 << 1;
}

void tst_Watch::expected()
{
    QFETCH(QList<QByteArray>, rests);
    QFETCH(QString, lines);
    QFETCH(int, wrong);
    QFETCH(int, exitCode);

    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    QList<QByteArray> items;
    for (const QByteArray &rest : rests)
        items.append(item("Item " + QByteArray::number(items.size()), "DM1", rest));
    const ProgramRun result
        = run("watch plant.json --for 1 --interval 1000", plantAt(controller.port(), items));
    QCOMPARE(withoutTimes(result.output).section(u'\n', 1), lines);
    QCOMPARE(counts(result.errors),
             text("Press 1 0 %1 0 %2").arg(items.size()).arg(wrong).split(u' '));
    QCOMPARE(result.exitCode, exitCode);
}

// A value that cannot be read is an error, not a wrong value.
void tst_Watch::json()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    const ProgramRun result
        = run("watch plant.json --for 1 --interval 1000 --format json",
              plantAt(controller.port(), {item("Counter", "DM1", R"(, "expect": "8")"),
                                          item("Beyond", "DM70000", R"(, "expect": "8")")}));
    QCOMPARE(result.errors, QString());
    QCOMPARE(
        withoutTimes(result.output).section(u'\n', 0, 2),
        text(
            R"json({"type":"log","level":"error","time":"T","device":"Press","cycle":1,"text":"[RD DM70000\r] <Beyond> :invalid address"}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Counter","value":"7","error":"","expected":"8"}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Beyond","value":"","error":"[RD DM70000\r] <Beyond> :invalid address"})json"));
    const QList<QJsonObject> lines = objects(result.output);
    QCOMPARE(lines.size(), 4);
    for (const QJsonObject &line : lines)
        QVERIFY(line.contains(text("type")));
    QJsonObject summary = lines.last();
    for (const char *const time : {"p50_ms", "p99_ms", "max_ms"})
        QVERIFY(summary.take(text(time)).toDouble() > 0);
    QCOMPARE(summary, (QJsonObject{{text("type"), text("summary")},
                                   {text("device"), text("Press")},
                                   {text("cycles"), 1},
                                   {text("failed"), 0},
                                   {text("reads"), 2},
                                   {text("errors"), 1},
                                   {text("wrong"), 1},
                                   {text("suspect"), 0}}));
    QCOMPARE(result.exitCode, 1);
}

void tst_Watch::csv()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    const ProgramRun result
        = run("watch plant.json --for 1 --interval 300 --format csv --only-changes",
              plantAt(controller.port(),
                      {item("Counter", "DM1"), item("Target", "DM1", R"(, "expect": "8")")}));
    QCOMPARE(withoutTimes(result.output),
             text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                  "1,T,Press,Counter,7,,,,\r\n"
                  "1,T,Press,Target,7,,,8,\r\n"));
    QVERIFY(counts(result.errors).value(1).toInt() > 1);
    QCOMPARE(result.exitCode, 1);
}

// The first line is the device's own. The count is printed at the end.
void tst_Watch::lostConnection()
{
    int port = 0;
    {
        const SimulatorThread controller;
        port = controller.port();
    }
    const ProgramRun result
        = run("watch plant.json --for 1 --interval 100", plantAt(port, {item("Counter", "DM1")}));
    QCOMPARE(withoutTimes(result.output).section(u'\n', 1),
             text("T  Press                        Not connected to PLC\n"
                  "T  Press   Counter\n"));
    const QStringList count = counts(result.errors);
    const int cycles = count.value(1).toInt();
    QVERIFY(cycles > 1);
    QCOMPARE(count, text("Press %1 %1 %1 %1 0").arg(cycles).split(u' '));
    QCOMPARE(result.errors.section(u'\n', 0, 0),
             text("log error: Press, cycle 1: Not connected to PLC"));
    QCOMPARE(result.errors.section(u'\n', 1, 1),
             text("log error: Press, cycle %1: Not connected to PLC (x %1)").arg(cycles));
    QCOMPARE(result.exitCode, 1);
}

void tst_Watch::signalEnds_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("SIGINT") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("SIGHUP") << SIGHUP << 129;
}

// The controller sees that its client disconnects long before the next cycle.
void tst_Watch::signalEnds()
{
    QFETCH(int, signal);
    QFETCH(int, exitCode);

    QTcpServer controller;
    QVERIFY(controller.listen(QHostAddress(QHostAddress::LocalHost)));
    QTemporaryDir folder;
    const QString plant = folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantAt(controller.serverPort(), {item("Counter", "DM1")})));
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    process.start(text(VELHOST_FILE),
                  {text("watch"), text("--plant"), plant, text("--plugin"),
                   text(KEYENCE_PLUGIN_FILE), text("--interval"), text("86400000")});
    QVERIFY(controller.waitForNewConnection(10000));
    QTcpSocket *const client = controller.nextPendingConnection();
    QVERIFY(client->waitForReadyRead(10000));
    QCOMPARE(client->readAll(), QByteArray("RD DM1\r"));
    client->write("00007\r\n");
    QByteArray output;
    while (output.count('\n') < 2
           && (client->bytesToWrite() > 0 ? client->waitForBytesWritten(10000)
                                          : process.waitForReadyRead(10000)))
        output += process.readAllStandardOutput();
    QVERIFY2(output.endsWith("Press   Counter  7\n"), output.constData());
    QCOMPARE(client->state(), QAbstractSocket::ConnectedState);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    QVERIFY(client->waitForDisconnected(10000));
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), exitCode);
    QCOMPARE(counts(QString::fromUtf8(process.readAllStandardError())),
             text("Press 1 0 1 0 0").split(u' '));
}

// The plug-in is stopped after the summary.
void tst_Watch::stopsPlugin()
{
    const QByteArray plant = R"({"devices": [{"id": 1, "name": "A", "ip": "127.0.0.1",
 "parameters": {"script": "trace,raise-int"}, "items": [{"name": "x"}]}]})";
    const ProgramRun result = runWithPlant(
        text(VELHOST_FILE),
        {text("watch"), text("plant.json"), text("--plugin"), text(SCRIPTED_PLUGIN_FILE)}, plant);
    QCOMPARE(result.errors.section(u'\n', -2), text("log debug: stop: A\n"));
    QCOMPARE(counts(result.errors.section(u'\n', 0, -3) + u'\n'), text("A 1 0 1 0 0").split(u' '));
    QCOMPARE(result.exitCode, 130);
}

// Without a reader of its output the watch ends.
void tst_Watch::closedOutput()
{
    const QByteArray plant
        = R"({"devices": [{"id": 1, "name": "A", "ip": "127.0.0.1", "items": [{"name": "x"}]}]})";
    const ProgramRun result = runWithPlant(
        text("/bin/sh"),
        {text("-c"), text(R"(exec "$0" watch plant.json --plugin "$1" --interval 10 >/dev/full)"),
         text(VELHOST_FILE), text(SCRIPTED_PLUGIN_FILE)},
        plant);
    QCOMPARE(result.errors.section(u'\n', -2),
             text("velhost: standard output could not be written\n"));
    QCOMPARE(counts(result.errors.section(u'\n', 0, -3) + u'\n'), text("A 1 0 1 0 0").split(u' '));
    QCOMPARE(result.exitCode, 1);
}

QTEST_GUILESS_MAIN(tst_Watch)
#include "tst_watch.moc"
