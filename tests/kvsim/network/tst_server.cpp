#include "simulatorthread.h"

#include <controller/controller.h>
#include <controller/linebuffer.h>
#include <network/connection.h>
#include <network/server.h>

#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <memory>

#include <sys/socket.h>

// The simulated controller over TCP, and in a thread of its own.
class tst_Server : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandInTwoSegments();
    void commandsInOneSegment();
    void twoClients();
    void lineTooLong();
    void answersAfterHalfClose();
    void clientThatDoesNotRead();
    void tracedEvents();
    void memoryAccess_data();
    void memoryAccess();
    void memoryAccessRefused_data();
    void memoryAccessRefused();
    void cannotListen();
    void endsWithClientConnected();
};

namespace {

constexpr int timeout = 60000; // milliseconds; only a failing test takes so long

// A client that blocks and needs no event loop.
class Client
{
public:
    explicit Client(quint16 port)
    {
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
        m_socket.waitForConnected(timeout);
        m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    }

    QTcpSocket *socket() { return &m_socket; }

    void send(const QByteArray &bytes)
    {
        m_socket.write(bytes);
        while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(timeout)) {
        }
    }

    /// The next `lines` answers, or those that came in time.
    QByteArray receive(int lines = 1)
    {
        QByteArray answers;
        while (lines > 0 && (m_socket.canReadLine() || m_socket.waitForReadyRead(timeout))) {
            if (!m_socket.canReadLine())
                continue;
            answers += m_socket.readLine();
            --lines;
        }
        return answers;
    }

    QByteArray ask(const QByteArray &command)
    {
        send(command);
        return receive();
    }

private:
    QTcpSocket m_socket;
};

} // namespace

void tst_Server::commandInTwoSegments()
{
    const SimulatorThread simulator;
    Client client(simulator.port());
    client.send("RD D");
    // An answer to another client shows that the server has seen what was sent before.
    QCOMPARE(Client(simulator.port()).ask("?K\r"), QByteArray("55\r\n"));
    QCOMPARE(client.ask("M100\r"), QByteArray("00100\r\n"));
}

void tst_Server::commandsInOneSegment()
{
    const SimulatorThread simulator;
    Client client(simulator.port());
    client.send("RD DM1\r\nRD QQ1\r\nRDS DM2 2\r\nRD DM");
    QCOMPARE(client.receive(3), QByteArray("00001\r\nE0\r\n00002 00003\r\n"));
    QCOMPARE(client.ask("4\r"), QByteArray("00004\r\n"));
}

void tst_Server::twoClients()
{
    const SimulatorThread simulator;
    Client one(simulator.port());
    Client two(simulator.port());
    one.send("WR DM");
    QCOMPARE(two.ask("RD DM5\r"), QByteArray("00005\r\n"));
    QCOMPARE(one.ask("5 77\r"), QByteArray("OK\r\n"));
    QCOMPARE(two.ask("RD DM5\r"), QByteArray("00077\r\n"));
}

void tst_Server::lineTooLong()
{
    const SimulatorThread simulator;
    Client client(simulator.port());
    QCOMPARE(client.ask(QByteArray(LineBuffer::maximumLength + 1, 'A')), QByteArray("E1\r\n"));
    client.send(QByteArray(4 * LineBuffer::maximumLength, 'B'));
    client.send("\r?K\r");
    QCOMPARE(client.receive(), QByteArray("55\r\n"));
}

void tst_Server::answersAfterHalfClose()
{
    constexpr int commands = 20;
    const SimulatorThread simulator;
    Client client(simulator.port());
    client.send(QByteArray("RDS DM0 1000\r").repeated(commands) + "RD DM");
    QCOMPARE(::shutdown(static_cast<int>(client.socket()->socketDescriptor()), SHUT_WR), 0);
    QCOMPARE(client.receive(commands).size(), commands * (1000 * 6 + 1));
    QVERIFY(client.socket()->state() == QAbstractSocket::UnconnectedState
            || client.socket()->waitForDisconnected(timeout));
    QCOMPARE(client.socket()->readAll(), QByteArray());
}

void tst_Server::clientThatDoesNotRead()
{
    constexpr int commands = 2000;
    const QByteArray command("RDS DM0 1000\r");
    constexpr int answerSize = 1000 * 6 + 1;

    Controller controller;
    Server server(&controller);
    QCOMPARE(server.listen(QHostAddress(QHostAddress::LocalHost), 0), QString());

    qint64 mostUnsent = 0;
    int answers = 0;
    controller.traced = [&](const QByteArray &, ClientEvent event, const QByteArray &) {
        answers += event == ClientEvent::Sent;
        mostUnsent = std::max(mostUnsent, server.findChild<QTcpSocket *>()->bytesToWrite());
    };

    QTcpSocket client;
    client.setReadBufferSize(1);
    client.connectToHost(server.serverAddress(), server.serverPort());
    client.write(command.repeated(commands));
    QVERIFY(QTest::qWaitFor([&] { return mostUnsent > Connection::unsentLimit; }, timeout));
    QVERIFY(answers < commands);

    // Once the client reads, every command is answered.
    qint64 received = 0;
    client.setReadBufferSize(0);
    connect(&client, &QTcpSocket::readyRead, this, [&] { received += client.readAll().size(); });
    received += client.readAll().size();
    const qint64 expected = qint64(commands) * answerSize;
    QVERIFY(QTest::qWaitFor([&] { return received >= expected; }, timeout));
    QCOMPARE(received, expected);
    QCOMPARE(answers, commands);
    QVERIFY(mostUnsent <= Connection::unsentLimit + answerSize);
}

void tst_Server::tracedEvents()
{
    Controller controller;
    Server server(&controller);
    QCOMPARE(server.listen(QHostAddress(QHostAddress::LocalHost), 0), QString());
    QByteArrayList events;
    controller.traced = [&](const QByteArray &client, ClientEvent event, const QByteArray &bytes) {
        events.append(client + ' ' + static_cast<char>(event) + ' ' + bytes);
    };

    QTcpSocket client;
    client.connectToHost(server.serverAddress(), server.serverPort());
    client.write("\nRD DM1\r" + QByteArray(LineBuffer::maximumLength + 1, 'A'));
    QVERIFY(QTest::qWaitFor([&] { return events.size() >= 5; }, timeout));
    const QByteArray name = "127.0.0.1:" + QByteArray::number(client.localPort());
    client.disconnectFromHost();
    QVERIFY(QTest::qWaitFor([&] { return events.size() >= 6; }, timeout));

    const QByteArray beginning(LineBuffer::shownLength, 'A');
    QCOMPARE(events, QByteArrayList({name + " + connected", name + " > RD DM1\r",
                                     name + " < 00001\r\n", name + " > " + beginning,
                                     name + " < E1\r\n", name + " - closed by the client"}));
}

void tst_Server::memoryAccess_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("fresh");
    QTest::addColumn<int>("stored");
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("word") << QByteArray("DM7") << 7 << 65535 << QByteArray("65535\r\n");
    QTest::newRow("hexadecimal") << QByteArray("W1F") << 31 << 0 << QByteArray("00000\r\n");
    QTest::newRow("read-only word") << QByteArray("CM7") << 7 << 8 << QByteArray("00008\r\n");
    QTest::newRow("bit set") << QByteArray("R015") << 0 << 1 << QByteArray("1\r\n");
    QTest::newRow("bit cleared") << QByteArray("R100") << 1 << 0 << QByteArray("0\r\n");
    QTest::newRow("read-only bit") << QByteArray("CR100") << 1 << 0 << QByteArray("0\r\n");
}

void tst_Server::memoryAccess()
{
    QFETCH(QByteArray, address);
    QFETCH(int, fresh);
    QFETCH(int, stored);
    QFETCH(QByteArray, answer);

    SimulatorThread simulator;
    QCOMPARE(simulator.word(address), fresh);
    QVERIFY(simulator.setWord(address, stored));
    QCOMPARE(Client(simulator.port()).ask("RD " + address + '\r'), answer);
    QCOMPARE(simulator.word(address), stored);
}

void tst_Server::memoryAccessRefused_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("fresh");
    QTest::addColumn<int>("value");

    QTest::newRow("no such device") << QByteArray("QQ1") << -1 << 1;
    QTest::newRow("no such number") << QByteArray("DM65535") << -1 << 1;
    QTest::newRow("word above 65535") << QByteArray("DM7") << 7 << 65536;
    QTest::newRow("word below -32768") << QByteArray("DM7") << 7 << -32769;
    QTest::newRow("bit above 1") << QByteArray("R100") << 1 << 2;
    QTest::newRow("bit below 0") << QByteArray("R100") << 1 << -1;
}

void tst_Server::memoryAccessRefused()
{
    QFETCH(QByteArray, address);
    QFETCH(int, fresh);
    QFETCH(int, value);

    SimulatorThread simulator;
    QCOMPARE(simulator.setWord(address, value), false);
    QCOMPARE(simulator.word(address), fresh);
}

void tst_Server::cannotListen()
{
    const SimulatorThread first;
    QVERIFY(first.isListening());
    QCOMPARE(first.errorString(), QString());

    const QHostAddress localHost(QHostAddress::LocalHost);
    const SimulatorThread second(localHost, first.port());
    QCOMPARE(second.isListening(), false);
    QCOMPARE(second.port(), quint16(0));
    QCOMPARE(second.errorString(), QStringLiteral("The bound address is already in use"));
    QCOMPARE(second.word("DM7"), 7);
}

void tst_Server::endsWithClientConnected()
{
    auto simulator = std::make_unique<SimulatorThread>();
    const quint16 port = simulator->port();
    Client client(port);
    QCOMPARE(client.ask("?M\r"), QByteArray("1\r\n"));
    simulator.reset();
    QVERIFY(client.socket()->state() == QAbstractSocket::UnconnectedState
            || client.socket()->waitForDisconnected(timeout));
    QCOMPARE(Client(port).socket()->state(), QAbstractSocket::UnconnectedState);
}

QTEST_GUILESS_MAIN(tst_Server)
#include "tst_server.moc"
