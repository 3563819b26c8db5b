#include "programrun.h"
#include "simulatorthread.h"
#include "text.h"
#include "textclient.h"
#include "udpclient.h"

#include <controller/controller.h>
#include <network/datagramserver.h>
#include <network/server.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

// The simulated controller over UDP, beside TCP on the same port.
class tst_DatagramServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void tcpBesideUdp();
    void manyDatagrams();
    void parts_data();
    void parts();
    void delayHoldsNothingElseBack();
    void manyDelayedAnswers();
    void clientFaultsStrikeNoDatagram_data();
    void clientFaultsStrikeNoDatagram();
    void previousAnswerOfAnySender();
    void restart();
    void restartDropsWaitingAnswers();
    void portTakenForUdpAlone();
    void answersFromItsOwnAddress();
    void program();
};

namespace {

constexpr int timeout = UdpClient::timeout;

QByteArray numbers(int first, int count)
{
    QList<QByteArray> texts;
    for (int i = first; i < first + count; ++i)
        texts.append(QByteArray::number(i).rightJustified(5, '0'));
    return texts.join(' ');
}

} // namespace

void tst_DatagramServer::answers_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("commands");

    const auto row = [](const char *name, const QByteArray &datagram, const QByteArray &answer,
                        int commands) { QTest::newRow(name) << datagram << answer << commands; };
    row("model code", "?K\r", "55\r\n", 1);
    row("line feed behind", "?K\r\n", "55\r\n", 1);
    row("no carriage return", "?K", "55\r\n", 1);
    row("two commands", "RD DM1\rRD DM2\r", "00001\r\n00002\r\n", 2);
    row("the last without carriage return", "RD DM1\r\nRD DM2", "00001\r\n00002\r\n", 2);
    row("write and read", "WR DM1 -1\rRD DM1", "OK\r\n65535\r\n", 2);
    row("a command that is empty", "\r", "E1\r\n", 1);
    row("refusal", "RD DM65535\r", "E0\r\n", 1);
    row("zero bytes", QByteArray(2, '\0'), "E1\r\n", 1);
    row("9 commands", QByteArray("?K\r").repeated(9), QByteArray("55\r\n").repeated(9), 9);
    row("10 commands", QByteArray("?K\r").repeated(10), QByteArray("55\r\n").repeated(10), 10);
    row("11 commands", QByteArray("WR DM1 9\r").repeated(10) + "WR DM1 9", "E1\r\n", 1);
    row("the largest datagram", QByteArray(65507, '\r'), "E1\r\n", 1);
    row("the longest answer", QByteArray("RDS DM0 1000\r").repeated(10),
        QByteArray(numbers(0, 1000) + "\r\n").repeated(10), 10);
}

void tst_DatagramServer::answers()
{
    QFETCH(QByteArray, datagram);
    QFETCH(QByteArray, answer);
    QFETCH(int, commands);

    SimulatorThread simulator;
    UdpClient client(simulator.port());
    // Without a command there is nothing to answer.
    client.send({});
    client.send("\n");
    QCOMPARE(client.ask(datagram), answer);
    QCOMPARE(simulator.counters().commands.load(), quint64(commands));
    QCOMPARE(simulator.counters().clients.load(), quint64(0));
    if (commands == 1)
        QCOMPARE(simulator.word("DM1"), 1);
}

void tst_DatagramServer::tcpBesideUdp()
{
    const SimulatorThread simulator;
    TextClient tcp(simulator.port());
    UdpClient udp(simulator.port());
    QCOMPARE(udp.ask("WR DM7 70"), QByteArray("OK\r\n"));
    QCOMPARE(tcp.ask("RD DM7\r"), QByteArray("00070\r\n"));
    QCOMPARE(tcp.ask("WR DM7 71\r"), QByteArray("OK\r\n"));
    QCOMPARE(udp.ask("RD DM7\r"), QByteArray("00071\r\n"));
    QCOMPARE(simulator.counters().commands.load(), quint64(4));
    QCOMPARE(simulator.counters().clients.load(), quint64(1));
}

// Datagrams that wait in the system are answered one after the other.
void tst_DatagramServer::manyDatagrams()
{
    Controller controller;
    Server server(&controller);
    QCOMPARE(server.listen(QHostAddress(QHostAddress::LocalHost), 0), QString());
    UdpClient client(server.serverPort());
    for (int i = 0; i < 50; ++i)
        client.send("RD DM" + QByteArray::number(i));
    QVERIFY(QTest::qWaitFor([&] { return controller.counters.answers == 50; }, timeout));
    for (int i = 0; i < 50; ++i)
        QCOMPARE(client.receive(), QByteArray(numbers(i, 1) + "\r\n"));
}

void tst_DatagramServer::parts_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<QList<QByteArray>>("parts");

    const auto row = [](const char *fault, const char *datagram, const QList<QByteArray> &parts) {
        QTest::addRow("%s, %s", fault, datagram)
            << QByteArray(fault) << QByteArray(datagram) << parts;
    };
    row("delay=20", "RD DM100", {"00100\r\n"});
    row("delay=20", "RD DM1\rRD DM100\rRD DM2", {"00001\r\n", "00100\r\n00002\r\n"});
    row("late=20", "RD DM1\rRD DM100\rRD DM2", {"00001\r\n00002\r\n", "00100\r\n"});
    row("silent", "RD DM1\rRD DM100\rRD DM2", {"00001\r\n00002\r\n"});
    row("refuse=E5", "RD DM100", {"E5\r\n"});
    row("split=3,20", "RD DM100", {"001", "00\r\n"});
    row("split=3,20", "RD DM1\rRD DM100\rRD DM2", {"00001\r\n001", "00\r\n00002\r\n"});
    row("dribble", "RD DM100", {"0", "0", "1", "0", "0", "\r", "\n"});
    row("dribble=1", "RD DM100", {"0", "0", "1", "0", "0", "\r", "\n"});
    row("no-terminator", "RD DM100", {"00100"});
    row("empty", "RD DM100", {"\r\n"});
    row("nul", "RD DM100", {QByteArray("00\00000\r\n", 7)});
    row("short-answer", "RDS DM99 2", {"00099\r\n"});
    row("extra-word", "RD DM100", {"00100 65535\r\n"});
    row("not-a-number", "RD DM100", {"*****\r\n"});
    row("duplicate", "RD DM100", {"00100\r\n00100\r\n"});
    row("previous-answer", "RD DM1\rRD DM100", {"00001\r\n00001\r\n"});
    row("close=before", "RD DM1\rRD DM100", {"00001\r\n"});
    row("close=in", "RD DM100\rRD DM2", {"00100002\r\n"});
    row("close=after", "RD DM100", {"00100\r\n"});
    row("reset=before", "RD DM100\rRD DM2", {"00002\r\n"});
    row("reset=in", "RD DM100", {"001"});
    row("reset=after", "RD DM100", {"00100\r\n"});
    row("long=65506", "RD DM100", {QByteArray("00100 ").repeated(10917) + "00\r\n"});
    row("long=65507", "RD DM100", {QByteArray("00100 ").repeated(10917) + "001\r\n"});
    row("long=65508", "RD DM100", {QByteArray("00100 ").repeated(10917) + "0010\r"});
}

// The datagrams that arrive. The next command is served without a fault.
void tst_DatagramServer::parts()
{
    QFETCH(QByteArray, fault);
    QFETCH(QByteArray, datagram);
    QFETCH(QList<QByteArray>, parts);

    SimulatorThread simulator;
    QCOMPARE(simulator.addFault(fault + "@DM100"), QString());
    UdpClient client(simulator.port());
    client.send(datagram);
    for (const QByteArray &part : qAsConst(parts))
        QCOMPARE(client.receive(), part);
    QCOMPARE(client.ask("?K"), QByteArray("55\r\n"));
    QCOMPARE(simulator.faultCounts().constFirst().seen, quint64(1));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
}

void tst_DatagramServer::delayHoldsNothingElseBack()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("delay=300@DM100"), QString());
    UdpClient client(simulator.port());
    QElapsedTimer clock;
    clock.start();
    client.send("RD DM100");
    QCOMPARE(client.ask("RD DM7"), QByteArray("00007\r\n"));
    QCOMPARE(client.receive(), QByteArray("00100\r\n"));
    QVERIFY2(clock.elapsed() >= 300, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
}

// More answers wait than the simulator keeps: it keeps its limit and drops the rest.
void tst_DatagramServer::manyDelayedAnswers()
{
    constexpr quint64 size = 1000 * 6 + 1 + 256;
    constexpr quint64 kept = DatagramServer::pendingLimit / size + 1;
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("delay=600000@DM0"), QString());
    UdpClient client(simulator.port());
    for (quint64 i = 0; i < kept; ++i) {
        client.send("RDS DM0 1000");
        const auto seen = [&] { return simulator.counters().commands == i + 1; };
        QVERIFY(QTest::qWaitFor(seen, timeout));
    }
    client.send("RD DM7");
    QCOMPARE(TextClient(simulator.port()).ask("?K\r"), QByteArray("55\r\n"));
    QCOMPARE(simulator.counters().commands.load(), kept + 1);
    QCOMPARE(simulator.faultCounts().constFirst().applied, kept);
}

void tst_DatagramServer::clientFaultsStrikeNoDatagram_data()
{
    QTest::addColumn<QByteArray>("fault");

    for (const char *fault : {"refuse-connect", "accept-then-silent", "max-clients=0"})
        QTest::newRow(fault) << QByteArray(fault);
}

void tst_DatagramServer::clientFaultsStrikeNoDatagram()
{
    QFETCH(QByteArray, fault);

    SimulatorThread simulator;
    QCOMPARE(simulator.addFault(fault), QString());
    UdpClient client(simulator.port());
    QCOMPARE(client.ask("RD DM7"), QByteArray("00007\r\n"));
    QCOMPARE(simulator.faultCounts().constFirst().seen, quint64(0));
}

void tst_DatagramServer::previousAnswerOfAnySender()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("previous-answer@DM100"), QString());
    UdpClient first(simulator.port());
    UdpClient second(simulator.port());
    QCOMPARE(first.ask("RD DM100"), QByteArray("00100\r\n"));
    QCOMPARE(first.ask("RD DM7"), QByteArray("00007\r\n"));
    QCOMPARE(second.ask("RD DM100"), QByteArray("00007\r\n"));
    QCOMPARE(simulator.faultCounts().constFirst().seen, quint64(2));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
}

// A command over TCP or UDP restarts both, and both answer again.
void tst_DatagramServer::restart()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("restart=1000@DM100"), QString());
    TextClient bystander(simulator.port());
    UdpClient client(simulator.port());
    QCOMPARE(client.ask("RD DM7\rWR DM100 5\rWR DM8 5"), QByteArray("00007\r\n"));
    QCOMPARE(bystander.receiveToEnd(), QByteArray());
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
    QCOMPARE(simulator.word("DM100"), 100);
    QCOMPARE(simulator.word("DM8"), 8);
    QUdpSocket taker;
    QVERIFY(taker.bind(QHostAddress(QHostAddress::LocalHost), simulator.port(),
                       QAbstractSocket::DontShareAddress));
    taker.close();

    const auto answers
        = [&simulator] { return TextClient(simulator.port()).ask("RD DM7\r") == "00007\r\n"; };
    QVERIFY(QTest::qWaitFor(answers, timeout));
    QCOMPARE(client.ask("RD DM8"), QByteArray("00008\r\n"));

    TextClient tcp(simulator.port());
    tcp.send("RD DM100\r");
    QCOMPARE(tcp.receiveToEnd(), QByteArray());
    QVERIFY(taker.bind(QHostAddress(QHostAddress::LocalHost), simulator.port(),
                       QAbstractSocket::DontShareAddress));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(2));
}

void tst_DatagramServer::restartDropsWaitingAnswers()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("delay=200@DM100"), QString());
    QCOMPARE(simulator.addFault("restart=0@DM7"), QString());
    UdpClient client(simulator.port());
    QElapsedTimer clock;
    clock.start();
    client.send("RD DM100");
    client.send("RD DM7");
    const auto applied = [&simulator] { return simulator.faultCounts().at(1).applied == 1; };
    QVERIFY(QTest::qWaitFor(applied, timeout));
    const auto answers
        = [&simulator] { return TextClient(simulator.port()).ask("?K\r") == "55\r\n"; };
    QVERIFY(QTest::qWaitFor(answers, timeout));
    QVERIFY(QTest::qWaitFor([&clock] { return clock.elapsed() > 250; }, timeout));
    QCOMPARE(client.ask("RD DM8"), QByteArray("00008\r\n"));
    QCOMPARE(simulator.faultCounts().at(0).applied, quint64(1));
}

// The address is the test's own: no connection of another program has its TCP port.
void tst_DatagramServer::portTakenForUdpAlone()
{
    const QString address = text("127.0.0.77");
    QUdpSocket owner;
    QVERIFY(owner.bind(QHostAddress(address), 0, QAbstractSocket::DontShareAddress));
    const QString port = QString::number(owner.localPort());
    const ProgramRun result
        = runProgram(text(KVSIM_PROGRAM), {text("--bind"), address, text("--port"), port}, {});
    QCOMPARE(result.errors,
             QStringLiteral("kvsim: cannot listen on 127.0.0.77:%1: The bound address is already "
                            "in use (UDP). Choose another --bind or --port.\n")
                 .arg(port));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 1);
}

// Among several controllers on one machine the answer's address tells which one it is.
void tst_DatagramServer::answersFromItsOwnAddress()
{
    const QHostAddress address(text("127.0.0.78"));
    Controller controller;
    Server server(&controller);
    QCOMPARE(server.listen(address, 0), QString());
    QUdpSocket client;
    QVERIFY(client.bind(QHostAddress(QHostAddress::LocalHost)));
    QSignalSpy arrival(&client, &QUdpSocket::readyRead);
    QCOMPARE(client.writeDatagram("?K", address, server.serverPort()), qint64(2));
    QVERIFY(arrival.wait(timeout));
    const QNetworkDatagram answer = client.receiveDatagram();
    QCOMPARE(answer.data(), QByteArray("55\r\n"));
    QCOMPARE(answer.senderAddress(), address);
    QCOMPARE(answer.senderPort(), int(server.serverPort()));
}

// The built program: answers, traces and counts datagrams.
void tst_DatagramServer::program()
{
    QProcess process;
    process.start(text(KVSIM_PROGRAM), {text("--port"), text("0"), text("--trace"), text("--fault"),
                                        text("silent@DM100")});
    while (!process.canReadLine())
        QVERIFY(process.waitForReadyRead(timeout));
    const QByteArray line = process.readLine();
    UdpClient client(line.mid(line.lastIndexOf(':') + 1).trimmed().toUShort());
    QCOMPARE(client.ask("RD DM100\rRD DM7\r\n?K"), QByteArray("00007\r\n55\r\n"));
    process.terminate();
    QVERIFY(process.waitForFinished(timeout));

    QString errors = QString::fromLatin1(process.readAllStandardError());
    static const QRegularExpression time(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3} "),
        QRegularExpression::MultilineOption);
    errors.remove(time);
    const QByteArray name
        = "127.0.0.1:" + QByteArray::number(client.socket()->localPort()) + "/udp";
    const QByteArray expected = name + " > RD DM100\\r\n" + name + " ! silent@DM100\n" + name
                                + " > RD DM7\\r\n" + name + " > ?K\n" + name
                                + " < 00007\\r\\n55\\r\\n\n"
                                + "commands 3, answers 2, refusals 0, clients 0\n"
                                  "fault silent@DM100: seen 1, applied 1\n";
    QCOMPARE(errors.toLatin1(), expected);
    QCOMPARE(process.exitCode(), 0);
}

QTEST_GUILESS_MAIN(tst_DatagramServer)
#include "tst_datagramserver.moc"
