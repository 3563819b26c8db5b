#include "loopback.h"
#include "simulatorthread.h"
#include "textclient.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

// Every fault as a client meets it, over a real connection.
class tst_ServerFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytes_data();
    void bytes();
    void delayHoldsLaterAnswersBack();
    void lateLetsLaterAnswersPass();
    void manyLateAnswers();
    void silence();
    void partsArriveApart();
    void longestAnswer();
    void ends_data();
    void ends();
    void restart();
    void turnedAway_data();
    void turnedAway();
    void roomForOneClient();
    void acceptThenSilent();
    void clientGoesBeforeItsAnswer();
    void clearFaults();
    void counters();
};

namespace {

void compareCount(const SimulatorThread &simulator, quint64 seen, quint64 applied)
{
    const FaultCount count = simulator.faultCounts().value(0);
    QCOMPARE(count.seen, seen);
    QCOMPARE(count.applied, applied);
}

// All that comes for `bytes` up to the end of the connection, and how it ends: "00100 closed",
// "reset". The system's own calls, because QTcpSocket reports both ends alike and connects again
// by itself when it is reset early.
QByteArray exchange(quint16 port, const QByteArray &bytes)
{
    const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval limit{TextClient::timeout / 1000, 0};
    ::setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    const sockaddr_in address = loopbackAddress(port);
    QByteArray received;
    if (::connect(client, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        received = errno == ECONNRESET ? "reset" : "not connected";
    } else {
        const ssize_t sent = ::send(client, bytes.constData(),
                                    static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
        std::array<char, 100> part{};
        ssize_t size = sent < 0 ? -1 : 1;
        while (size > 0) {
            size = ::recv(client, part.data(), part.size(), 0);
            received.append(part.data(), static_cast<int>(std::max<ssize_t>(size, 0)));
        }
        received += size == 0 ? "closed" : errno == ECONNRESET ? "reset" : "failed";
    }
    ::close(client);
    return received;
}

} // namespace

void tst_ServerFaults::bytes_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("bytes");

    const auto row = [](const char *fault, const QByteArray &bytes) {
        QTest::newRow(fault) << QByteArray(fault) << bytes;
    };
    row("delay=10@DM100", "00100\r\n");
    row("delay=10+-10@DM100", "00100\r\n");
    row("late=0@DM100", "00100\r\n");
    row("refuse=E5@DM100", "E5\r\n");
    row("split=3,5@DM100", "00100\r\n");
    row("dribble@DM100", "00100\r\n");
    row("dribble=1@DM100", "00100\r\n");
    row("no-terminator@DM100", "00100");
    row("empty@DM100", "\r\n");
    row("nul@DM100", QByteArray("00\00000\r\n", 7));
    row("long=12@DM100", "00100 0010\r\n");
    row("short-answer@DM100", "\r\n");
    row("extra-word@DM100", "00100 65535\r\n");
    row("not-a-number@DM100", "*****\r\n");
    row("duplicate@DM100", "00100\r\n00100\r\n");
    row("previous-answer@DM100", "00007\r\n");
}

// The answer is altered. The next command is served without a fault.
void tst_ServerFaults::bytes()
{
    QFETCH(QByteArray, fault);
    QFETCH(QByteArray, bytes);

    SimulatorThread simulator;
    QCOMPARE(simulator.addFault(fault), QString());
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    client.send("RD DM100\r");
    QCOMPARE(client.receive(bytes.size()), bytes);
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    compareCount(simulator, 1, 1);
}

void tst_ServerFaults::delayHoldsLaterAnswersBack()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("delay=50@DM100"), QString());
    TextClient client(simulator.port());
    QElapsedTimer clock;
    clock.start();
    client.send("RD DM100\rRD DM7\r");
    QCOMPARE(client.receiveLine(), QByteArray("00100\r\n"));
    QVERIFY2(clock.elapsed() >= 50, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(client.receiveLine(), QByteArray("00007\r\n"));
    compareCount(simulator, 1, 1);
}

void tst_ServerFaults::lateLetsLaterAnswersPass()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("late=300@DM100"), QString());
    TextClient client(simulator.port());
    client.send("RD DM100\rRD DM7\rRD DM8\r");
    QCOMPARE(client.receiveLine(), QByteArray("00007\r\n"));
    QCOMPARE(client.receiveLine(), QByteArray("00008\r\n"));
    QCOMPARE(client.receiveLine(), QByteArray("00100\r\n"));
    compareCount(simulator, 1, 1);
}

// More late answers are wanted than the simulator keeps at a time; none is lost.
void tst_ServerFaults::manyLateAnswers()
{
    constexpr int commands = 3000;
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("late=1"), QString());
    TextClient client(simulator.port());
    client.send(QByteArray("RD DM7\r").repeated(commands));
    const QByteArray expected = QByteArray("00007\r\n").repeated(commands);
    QCOMPARE(client.receive(expected.size()), expected);
    compareCount(simulator, commands, commands);
}

void tst_ServerFaults::silence()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("silent@DM100"), QString());
    TextClient client(simulator.port());
    client.send("WR DM100 5\r");
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    QCOMPARE(simulator.word("DM100"), 5);
    compareCount(simulator, 1, 1);
}

void tst_ServerFaults::partsArriveApart()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("split=3,1000"), QString());
    TextClient client(simulator.port());
    QElapsedTimer clock;
    clock.start();
    client.send("RD DM100\r");
    QVERIFY(client.socket()->waitForReadyRead(TextClient::timeout));
    QCOMPARE(client.socket()->readAll(), QByteArray("001"));
    QCOMPARE(client.receiveLine(), QByteArray("00\r\n"));
    QVERIFY2(clock.elapsed() >= 1000, qPrintable(QString::number(clock.elapsed())));
    compareCount(simulator, 1, 1);
}

void tst_ServerFaults::longestAnswer()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("long=1048576@DM100"), QString());
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM100\r").size(), 1048576);
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    compareCount(simulator, 1, 1);
}

void tst_ServerFaults::ends_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("close before") << QByteArray("close=before") << QByteArray("closed");
    QTest::newRow("close in") << QByteArray("close=in") << QByteArray("001closed");
    QTest::newRow("close after") << QByteArray("close=after") << QByteArray("00100\r\nclosed");
    QTest::newRow("reset before") << QByteArray("reset=before") << QByteArray("reset");
    QTest::newRow("reset in") << QByteArray("reset=in") << QByteArray("001reset");
    QTest::newRow("reset after") << QByteArray("reset=after") << QByteArray("00100\r\nreset");
}

void tst_ServerFaults::ends()
{
    QFETCH(QByteArray, fault);
    QFETCH(QByteArray, bytes);

    SimulatorThread simulator;
    QCOMPARE(simulator.addFault(fault + "@DM100"), QString());
    QCOMPARE(exchange(simulator.port(), "RD DM100\rRD DM7\r"), bytes);
    compareCount(simulator, 1, 1);
    QCOMPARE(simulator.counters().commands.load(), quint64(1));
    QCOMPARE(TextClient(simulator.port()).ask("RD DM7\r"), QByteArray("00007\r\n"));
}

void tst_ServerFaults::restart()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("restart=1000@DM100"), QString());
    TextClient bystander(simulator.port());
    QCOMPARE(bystander.ask("RD DM7\r"), QByteArray("00007\r\n"));
    TextClient client(simulator.port());
    client.send("WR DM100 5\r");
    QCOMPARE(client.receiveToEnd(), QByteArray());
    QCOMPARE(bystander.receiveToEnd(), QByteArray());
    compareCount(simulator, 1, 1);
    QCOMPARE(TextClient(simulator.port()).socket()->state(), QAbstractSocket::UnconnectedState);

    const auto answers
        = [&simulator] { return TextClient(simulator.port()).ask("RD DM7\r") == "00007\r\n"; };
    QVERIFY(QTest::qWaitFor(answers, TextClient::timeout));
    QCOMPARE(simulator.word("DM100"), 100);
}

void tst_ServerFaults::turnedAway_data()
{
    QTest::addColumn<QByteArray>("fault");

    QTest::newRow("refuse-connect") << QByteArray("refuse-connect@nth=2");
    QTest::newRow("max-clients") << QByteArray("max-clients=1");
}

void tst_ServerFaults::turnedAway()
{
    QFETCH(QByteArray, fault);

    SimulatorThread simulator;
    QCOMPARE(simulator.addFault(fault), QString());
    TextClient first(simulator.port());
    QCOMPARE(first.ask("RD DM7\r"), QByteArray("00007\r\n"));
    QCOMPARE(exchange(simulator.port(), {}), QByteArray("reset"));
    compareCount(simulator, 2, 1);
    QCOMPARE(first.ask("RD DM8\r"), QByteArray("00008\r\n"));
}

// A client that disconnects makes room for another one.
void tst_ServerFaults::roomForOneClient()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("max-clients=1"), QString());
    QCOMPARE(simulator.addFault("close=after"), QString());
    QCOMPARE(exchange(simulator.port(), "RD DM7\r"), QByteArray("00007\r\nclosed"));
    QCOMPARE(exchange(simulator.port(), "RD DM8\r"), QByteArray("00008\r\nclosed"));
    compareCount(simulator, 2, 0);
}

void tst_ServerFaults::acceptThenSilent()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("accept-then-silent@nth=1"), QString());
    TextClient ignored(simulator.port());
    ignored.send("WR DM100 5\r");
    TextClient served(simulator.port());
    QCOMPARE(served.ask("RD DM7\r"), QByteArray("00007\r\n"));
    compareCount(simulator, 2, 1);
    QCOMPARE(simulator.word("DM100"), 100);
    QCOMPARE(simulator.counters().commands.load(), quint64(1));
    QCOMPARE(ignored.socket()->state(), QAbstractSocket::ConnectedState);
    QCOMPARE(ignored.socket()->bytesAvailable(), 0);
}

void tst_ServerFaults::clientGoesBeforeItsAnswer()
{
    SimulatorThread simulator;
    for (const char *fault : {"delay=20@DM1", "late=20@DM2", "dribble=10@DM3"})
        QCOMPARE(simulator.addFault(fault), QString());
    int faults = 0;
    for (const char *command : {"RD DM1\r", "RD DM2\r", "RD DM3\r"}) {
        TextClient client(simulator.port());
        client.send(command);
        const auto applied = [&] { return simulator.faultCounts().at(faults).applied == 1; };
        QVERIFY(QTest::qWaitFor(applied, TextClient::timeout));
        client.socket()->abort();
        ++faults;
    }
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM1\r"), QByteArray("00001\r\n"));
    QCOMPARE(client.ask("RD DM2\r"), QByteArray("00002\r\n"));
    QCOMPARE(client.ask("RD DM3\r"), QByteArray("00003\r\n"));
}

void tst_ServerFaults::clearFaults()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("refuse=E5"), QString());
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("E5\r\n"));
    simulator.clearFaults();
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    QCOMPARE(simulator.faultCounts().size(), 0);
    QCOMPARE(simulator.addFault("refuse=E7"),
             QStringLiteral("'refuse=E7' is wrong; write refuse=E0, E1, E2, E4, E5 or E6"));
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
}

void tst_ServerFaults::counters()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("silent@nth=2"), QString());
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    client.send("RD DM7\r");
    QCOMPARE(client.ask("RD QQ7\r"), QByteArray("E0\r\n"));
    QCOMPARE(TextClient(simulator.port()).ask("?E\r"), QByteArray("000\r\n"));
    QCOMPARE(simulator.counters().commands.load(), quint64(4));
    QCOMPARE(simulator.counters().answers.load(), quint64(3));
    QCOMPARE(simulator.counters().refusals.load(), quint64(1));
    QCOMPARE(simulator.counters().clients.load(), quint64(2));
}

QTEST_GUILESS_MAIN(tst_ServerFaults)
#include "tst_serverfaults.moc"
