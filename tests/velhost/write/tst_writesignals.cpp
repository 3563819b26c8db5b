#include "plantjson.h"
#include "plantrun.h"
#include "text.h"

#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <csignal>

// `write` prints each line when it is done. SIGINT, SIGTERM and SIGHUP end it after the running
// item; what was not written is told.

namespace {

constexpr int timeout = 10000;

/// Three devices at `port`, each with the item "x".
QByteArray plantAt(int port)
{
    QList<QByteArray> devices;
    for (const char *const name : {"A", "B", "C"})
        devices.append(R"({"id": )" + QByteArray::number(devices.size() + 1) + R"(, "name": ")"
                       + name + R"(", "ip": "127.0.0.1", "parameters": {)" + portParameter(port)
                       + R"(, "timeout": "86400000"}, "items": [)" + itemJson("x", "DM1") + "]}");
    return R"({"devices": [)" + devices.join(", ") + "]}";
}

/// Waits for the command and answers it, if there is an answer.
bool answers(QTcpSocket *client, const QByteArray &command, const QByteArray &answer)
{
    QByteArray received;
    while (received.size() < command.size() && client->waitForReadyRead(timeout))
        received += client->readAll();
    client->write(answer);
    return received == command && (answer.isEmpty() || client->waitForBytesWritten(timeout));
}

/// Answers the rest of an item whose old value, 1, was given.
bool writesTwo(QTcpSocket *client)
{
    return answers(client, "WR DM1 0002\r", "OK\r\n") && answers(client, "RD DM1\r", "00002\r\n");
}

QString linesOf(QProcess *process, int count)
{
    QByteArray output;
    while (output.count('\n') < count && process->waitForReadyRead(timeout))
        output += process->readAllStandardOutput();
    return withoutTimes(QString::fromUtf8(output));
}

struct Ending
{
    const char *title;
    int signal;
    int exitCode;
};

constexpr std::array<Ending, 3> endings{
    {{"SIGINT", SIGINT, 130}, {"SIGTERM", SIGTERM, 143}, {"SIGHUP", SIGHUP, 129}}};

} // namespace

class tst_WriteSignals : public QObject
{
    Q_OBJECT

    /// Starts a write to the three devices and accepts their connections.
    void start(const QStringList &options);

    QTemporaryDir m_folder;
    QTcpServer m_controller;
    QScopedPointer<QProcess> m_write;
    QList<QTcpSocket *> m_clients;

private Q_SLOTS:
    void initTestCase();
    void verified_data();
    void verified();
    void withoutVerification_data();
    void withoutVerification();
    void lastItem_data();
    void lastItem();
};

void tst_WriteSignals::initTestCase()
{
    QVERIFY(m_controller.listen(QHostAddress(QHostAddress::LocalHost)));
    QVERIFY(writeFile(m_folder.filePath(text("plant.json")), plantAt(m_controller.serverPort())));
}

void tst_WriteSignals::start(const QStringList &options)
{
    m_write.reset(new QProcess);
    m_write->setProcessEnvironment(plainEnvironment());
    m_write->start(text(VELHOST_FILE),
                   QStringList{text("write"), m_folder.filePath(text("plant.json")), text("A/x=2"),
                               text("B/x=2"), text("C/x=2"), text("--plugin"),
                               text(KEYENCE_PLUGIN_FILE)}
                       + options);
    m_clients.clear();
    while (m_clients.size() < 3
           && (m_controller.hasPendingConnections() || m_controller.waitForNewConnection(timeout)))
        m_clients.append(m_controller.nextPendingConnection());
    QCOMPARE(m_clients.size(), 3);
}

void tst_WriteSignals::verified_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");

    for (const Ending &ending : endings) {
        const auto row = [&ending](const char *format, const char *before, const char *after) {
            QTest::addRow("%s, %s", ending.title, format)
                << text(format) << ending.signal << ending.exitCode << text(before)
                << text(after).arg(text(ending.title));
        };
        row("table",
            "Cycle  Time                           Device  Item  Old  New  Read back  Error\n"
            "1      T  A       x     1    2    2\n",
            "1      T  B       x     1    2    2\n"
            "1      T  C       x          2               not written, %1 ended the program "
            "before\n");
        row("json",
            R"({"type":"write","cycle":1,"time":"T","device":"A","item":"x","old":"1","new":"2","readback":"2","error":""})"
            "\n",
            R"({"type":"write","cycle":1,"time":"T","device":"B","item":"x","old":"1","new":"2","readback":"2","error":""})"
            "\n"
            R"({"type":"write","cycle":1,"time":"T","device":"C","item":"x","old":null,"new":"2","readback":null,"error":"not written, %1 ended the program before"})"
            "\n");
        row("csv",
            "cycle,time,device,item,old,new,readback,error\r\n"
            "1,T,A,x,1,2,2,\r\n",
            "1,T,B,x,1,2,2,\r\n"
            "1,T,C,x,,2,,\"not written, %1 ended the program before\"\r\n");
    }
}

// The signal comes while the second of three items waits for its old value.
void tst_WriteSignals::verified()
{
    QFETCH(QString, format);
    QFETCH(int, signal);
    QFETCH(int, exitCode);
    QFETCH(QString, before);
    QFETCH(QString, after);

    start({text("--format"), format});
    QVERIFY(answers(m_clients.at(0), "RD DM1\r", "00001\r\n"));
    QVERIFY(writesTwo(m_clients.at(0)));
    QCOMPARE(linesOf(m_write.get(), before.count(u'\n')), before);
    QVERIFY(answers(m_clients.at(1), "RD DM1\r", {}));
    QCOMPARE(::kill(static_cast<pid_t>(m_write->processId()), signal), 0);
    m_clients.at(1)->write("00001\r\n");
    QVERIFY(writesTwo(m_clients.at(1)));
    QVERIFY(m_write->waitForFinished(timeout));
    QCOMPARE(withoutTimes(QString::fromUtf8(m_write->readAllStandardOutput())), after);
    QCOMPARE(m_write->readAllStandardError(), QByteArray());
    QCOMPARE(m_write->exitCode(), exitCode);
    QVERIFY(!m_clients.at(2)->waitForReadyRead(timeout));
    QCOMPARE(m_clients.at(2)->state(), QAbstractSocket::UnconnectedState);
}

void tst_WriteSignals::withoutVerification_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");

    const QString header
        = text("Cycle  Time                           Device  Item  Value  Error\n");
    for (const Ending &ending : endings) {
        const auto row
            = [&ending](const char *format, const QString &before, const QString &after) {
                  QTest::addRow("%s, %s", ending.title, format)
                      << text(format) << ending.signal << ending.exitCode << before
                      << after.arg(text(ending.title));
              };
        row("table", header + text("1      T  A       x     2\n"),
            u'\n' + header + text("1      T  B       x     2\n\n") + header
                + text("1      T  C       x     2      not written, %1 ended the program "
                       "before\n"));
        row("json",
            text(
                R"({"type":"value","cycle":1,"time":"T","device":"A","item":"x","value":"2","error":""})"
                "\n"),
            text(
                R"({"type":"value","cycle":1,"time":"T","device":"B","item":"x","value":"2","error":""})"
                "\n"
                R"({"type":"value","cycle":1,"time":"T","device":"C","item":"x","value":"2","error":"not written, %1 ended the program before"})"
                "\n"));
        row("csv",
            text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                 "1,T,A,x,2,,,,\r\n"),
            text("1,T,B,x,2,,,,\r\n"
                 "1,T,C,x,2,,\"not written, %1 ended the program before\",,\r\n"));
    }
}

// The signal comes while the second of three devices waits for its answer.
void tst_WriteSignals::withoutVerification()
{
    QFETCH(QString, format);
    QFETCH(int, signal);
    QFETCH(int, exitCode);
    QFETCH(QString, before);
    QFETCH(QString, after);

    start({text("--no-verify"), text("--format"), format});
    QVERIFY(answers(m_clients.at(0), "WR DM1 0002\r", "OK\r\n"));
    QCOMPARE(linesOf(m_write.get(), before.count(u'\n')), before);
    QVERIFY(answers(m_clients.at(1), "WR DM1 0002\r", {}));
    QCOMPARE(::kill(static_cast<pid_t>(m_write->processId()), signal), 0);
    m_clients.at(1)->write("OK\r\n");
    QVERIFY(m_clients.at(1)->waitForBytesWritten(timeout));
    QVERIFY(m_write->waitForFinished(timeout));
    QCOMPARE(withoutTimes(QString::fromUtf8(m_write->readAllStandardOutput())), after);
    QCOMPARE(m_write->exitCode(), exitCode);
    QVERIFY(!m_clients.at(2)->waitForReadyRead(timeout));
    QCOMPARE(m_clients.at(2)->state(), QAbstractSocket::UnconnectedState);
}

void tst_WriteSignals::lastItem_data()
{
    QTest::addColumn<QString>("option");

    QTest::newRow("verified") << text("--format=csv");
    QTest::newRow("without verification") << text("--no-verify");
}

// Nothing is left to be written, yet the exit code is that of the signal.
void tst_WriteSignals::lastItem()
{
    QFETCH(QString, option);

    const QByteArray plant = plantJson("127.0.0.1", R"("script": "raise-hup")",
                                       {R"({"name": "x", "parameters": {"answers": "1|2"}})"});
    const ProgramRun run = runWithPlant(text(VELHOST_FILE),
                                        {text("write"), text("plant.json"), text("Press/x=2"),
                                         text("--plugin"), text(SCRIPTED_PLUGIN_FILE), option},
                                        plant);
    QVERIFY2(!run.output.contains(text("not written")), qPrintable(run.output));
    QCOMPARE(run.output.count(u'\n'), 2);
    QCOMPARE(run.exitCode, 129);
}

QTEST_GUILESS_MAIN(tst_WriteSignals)
#include "tst_writesignals.moc"
