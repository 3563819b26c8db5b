#include "plantjson.h"
#include "programrun.h"
#include "text.h"
#include "writefile.h"

#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// SIGINT, SIGTERM and SIGHUP during a read: the running cycle is completed, the plug-in is stopped,
// the exit code is that of the signal.

namespace {

const QString pluginFile = QStringLiteral(SCRIPTED_PLUGIN_FILE);

/// Two devices of one item each; the first one has the script.
QByteArray plantWith(const QByteArray &script)
{
    return R"({"devices": [
 {"id": 1, "name": "A", "ip": "127.0.0.1",
  "parameters": {"time_stamp": "2024-02-29T12:34:56.789+00:00", "script": "trace,)"
           + script + R"("}, "items": [{"name": "x"}]},
 {"id": 2, "name": "B", "ip": "127.0.0.1",
  "parameters": {"time_stamp": "2024-02-29T12:34:56.789+00:00"}, "items": [{"name": "y"}]}]})";
}

QByteArray csvOfCycle()
{
    return "cycle,time,device,item,value,old,error,expected,suspect\r\n"
           "1,2024-02-29T12:34:56.789+00:00,A,x,0,,,,\r\n"
           "1,2024-02-29T12:34:56.789+00:00,B,y,0,,,,\r\n";
}

} // namespace

class tst_ReadSignals : public QObject
{
    Q_OBJECT

    /// Starts a read of so many cycles, a day apart.
    void startRead(QProcess *process, const QByteArray &script, const char *cycles);

    QTemporaryDir m_folder;

private Q_SLOTS:
    void betweenCycles_data();
    void betweenCycles();
    void duringCycle_data();
    void duringCycle();
    void ignoredFromTheStart_data();
    void ignoredFromTheStart();
    void twoTogether();
    void secondInterrupt();
    void stopFails();
};

void tst_ReadSignals::startRead(QProcess *process, const QByteArray &script, const char *cycles)
{
    const QString plant = m_folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantWith(script)));
    process->setProcessEnvironment(plainEnvironment());
    process->start(text(VELHOST_FILE), {text("read"), text("--plugin"), pluginFile, text("--plant"),
                                        plant, text("--cycles"), text(cycles), text("--interval"),
                                        text("86400000"), text("--format"), text("csv")});
    QVERIFY(process->waitForStarted());
}

void tst_ReadSignals::betweenCycles_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("SIGINT") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("SIGHUP") << SIGHUP << 129;
}

// Ends immediately: the interval is a day.
void tst_ReadSignals::betweenCycles()
{
    QFETCH(int, signal);
    QFETCH(int, exitCode);

    QProcess process;
    startRead(&process, "", "3");
    QByteArray output;
    while (output != csvOfCycle() && process.waitForReadyRead(10000))
        output += process.readAllStandardOutput();
    QCOMPARE(output, csvOfCycle());
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), exitCode);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(process.readAllStandardError().split('\n').value(3), QByteArray("log debug: stop: A"));
}

void tst_ReadSignals::duringCycle_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("cycles");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("SIGINT in the first of two")
        << QByteArray("raise-int") << QByteArray("2") << 130;
    QTest::newRow("SIGTERM in the first of two")
        << QByteArray("raise-term") << QByteArray("2") << 143;
    QTest::newRow("SIGHUP in the first of two")
        << QByteArray("raise-hup") << QByteArray("2") << 129;
    QTest::newRow("SIGINT in the only one") << QByteArray("raise-int") << QByteArray("1") << 130;
    QTest::newRow("both at once") << QByteArray("raise-term,raise-int") << QByteArray("2") << 130;
    QTest::newRow("also when an item has an error")
        << QByteArray("raise-int,read-error") << QByteArray("2") << 130;
}

// The signal comes while the first device is read; the second one is still read.
void tst_ReadSignals::duringCycle()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, cycles);
    QFETCH(int, exitCode);

    QProcess process;
    startRead(&process, script, cycles.constData());
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), exitCode);
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    QCOMPARE(lines.value(lines.size() - 2),
             QByteArray("1,2024-02-29T12:34:56.789+00:00,B,y,0,,,,\r"));
    QCOMPARE(process.readAllStandardError().split('\n').value(3), QByteArray("log debug: stop: A"));
}

void tst_ReadSignals::ignoredFromTheStart_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QByteArray>("script");

    QTest::newRow("background program of a shell") << text("INT") << QByteArray("raise-int");
    QTest::newRow("nohup") << text("HUP") << QByteArray("raise-hup");
}

void tst_ReadSignals::ignoredFromTheStart()
{
    QFETCH(QString, signal);
    QFETCH(QByteArray, script);

    const QString plant = m_folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantWith(script)));
    const ProgramRun run = runProgram(
        text("/bin/sh"),
        {text("-c"),
         text("trap '' $2; exec \"$0\" read --plugin \"$1\" --plant plant.json --cycles 2 "
              "--interval 0 --format csv --only-changes"),
         text(VELHOST_FILE), pluginFile, signal},
        m_folder.path());
    QCOMPARE(run.output, QString::fromLatin1(csvOfCycle()));
    QCOMPARE(run.exitCode, 0);
}

// As timeout(1) sends them.
void tst_ReadSignals::twoTogether()
{
    QProcess process;
    startRead(&process, "", "3");
    QVERIFY(process.waitForReadyRead(10000));
    const auto identifier = static_cast<pid_t>(process.processId());
    QCOMPARE(::kill(identifier, SIGINT), 0);
    QCOMPARE(::kill(identifier, SIGINT), 0);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 130);
}

// The controller never answers, and its time-out is a day. Ctrl+C is pressed until the program
// ends; the first one alone does not end it.
void tst_ReadSignals::secondInterrupt()
{
    QTcpServer controller;
    QVERIFY(controller.listen(QHostAddress(QHostAddress::LocalHost)));
    const QString plant = m_folder.filePath(text("plant.json"));
    const QByteArray parameters
        = portParameter(controller.serverPort()) + R"(, "timeout": "86400000")";
    QVERIFY(writeFile(plant, plantJson("127.0.0.1", parameters, {itemJson("x", "DM1")})));
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    process.start(text(VELHOST_FILE),
                  {text("read"), plant, text("--plugin"), text(KEYENCE_PLUGIN_FILE)});
    QVERIFY(controller.waitForNewConnection(10000));
    QTcpSocket *const client = controller.nextPendingConnection();
    QVERIFY(client->waitForReadyRead(10000));
    QCOMPARE(client->readAll(), QByteArray("RD DM1\r"));
    const int presses = interruptUntilEnd(&process);
    QVERIFY2(presses > 1, QByteArray::number(presses).constData());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGINT);
}

void tst_ReadSignals::stopFails()
{
    QProcess process;
    startRead(&process, "raise-int,stop-false", "2");
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 130);
    QCOMPARE(process.readAllStandardError().split('\n').value(4),
             QByteArray("velhost: the plug-in " SCRIPTED_PLUGIN_FILE
                        " returned false from stopPlugin()"));
}

QTEST_GUILESS_MAIN(tst_ReadSignals)
#include "tst_readsignals.moc"
