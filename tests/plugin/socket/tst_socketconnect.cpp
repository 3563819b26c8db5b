#include "fullqueue.h"
#include "scriptedpeer.h"
#include "socket.h"
#include "systemcalls.h"

#include <QTest>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString loopback = QStringLiteral("127.0.0.1");

// A loopback port at which nobody listens: it was just free.
int closedPort()
{
    ScriptedPeer peer;
    const int port = peer.port();
    peer.finish();
    return port;
}

bool answers(Socket &socket)
{
    QByteArray answer;
    return socket.write("RD DM1\r") && socket.read(&answer) && answer == "1\r\n";
}

} // namespace

// Opening a connection.
class tst_SocketConnect : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SystemCalls::watch(); }
    void cleanup() { SystemCalls::stop(); }

    void connects();
    void connectsToNoOtherAddress();
    void connectsWithLeadingZeros();
    void portIsCutTo16Bits();
    void connectStoresTheDescriptorElsewhere();
    void connectElsewhereLeavesTheOwnConnection();
    void failedConnectElsewhereClosesTheOwnConnection();
    void noDescriptorElsewhereLeavesTheOwnConnection();
    void connectIgnoresSigPipe();
    void unresolvedAddressKeepsTheText_data();
    void unresolvedAddressKeepsTheText();
    void refusedConnection();
    void unansweredConnection_data();
    void unansweredConnection();
    void unansweredConnectionShowsTheGivenTimeout();
    void descriptorClosedWhileConnecting();
};

void tst_SocketConnect::connects()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    QVERIFY(socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("OK"));
    QCOMPARE(socket.getIp(), loopback);
    QCOMPARE(socket.getPort(), peer.port());
    QCOMPARE(::fcntl(socket.getSockfd(), F_GETFL) & O_NONBLOCK, 0);
    QCOMPARE(SystemCalls::waits(), QList<int>{1000});
    socket.disconnect();
    QCOMPARE(peer.finish(), QByteArray());
    QCOMPARE(peer.connectionCount(), 1);
}

void tst_SocketConnect::connectsToNoOtherAddress()
{
    // Listens on 127.0.0.1 alone.
    ScriptedPeer peer;
    const Socket socket(QStringLiteral("127.0.0.2"), peer.port(), 1000);
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("Error connecting: Connection refused"));
    peer.finish();
    QCOMPARE(peer.connectionCount(), 0);
}

void tst_SocketConnect::connectsWithLeadingZeros()
{
    ScriptedPeer peer;
    Socket socket(QStringLiteral("127.000.000.001"), peer.port(), 1000);
    QVERIFY(socket.isConnected());
}

void tst_SocketConnect::portIsCutTo16Bits()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port() + 65536, 1000);
    QVERIFY(socket.isConnected());
    QCOMPARE(socket.getPort(), peer.port() + 65536);
}

void tst_SocketConnect::connectStoresTheDescriptorElsewhere()
{
    ScriptedPeer peer;
    Socket socket;
    int descriptor = -1;
    QVERIFY(socket.connect(loopback, peer.port(), &descriptor, 1000));
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getSockfd(), -1);
    QCOMPARE(::close(descriptor), 0);
}

void tst_SocketConnect::connectElsewhereLeavesTheOwnConnection()
{
    ScriptedPeer peer({{"1\r\n"}});
    ScriptedPeer other;
    Socket socket(loopback, peer.port());
    const int own = socket.getSockfd();
    int descriptor = -1;
    QVERIFY(socket.connect(loopback, other.port(), &descriptor, 1000));
    QVERIFY(other.waitForConnections(1));
    QVERIFY(descriptor != own);
    QCOMPARE(::close(descriptor), 0);

    QCOMPARE(socket.getSockfd(), own);
    QCOMPARE(socket.getPort(), peer.port());
    QVERIFY(socket.isConnected());
    QVERIFY(answers(socket));
    socket.disconnect();
    QCOMPARE(SystemCalls::closed(), (QList<int>{descriptor, own}));
}

// A failure counts as one of the object's connection, whatever the descriptor was for.
void tst_SocketConnect::failedConnectElsewhereClosesTheOwnConnection()
{
    const int port = closedPort();
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    const int own = socket.getSockfd();
    SystemCalls::watch();
    int descriptor = -1;
    QVERIFY(!socket.connect(loopback, port, &descriptor, 1000));
    QCOMPARE(socket.getError(), QStringLiteral("Error connecting: Connection refused"));
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getSockfd(), own);
    QCOMPARE(SystemCalls::closed(), QList<int>{own});
    QCOMPARE(::close(descriptor), 0);
}

void tst_SocketConnect::noDescriptorElsewhereLeavesTheOwnConnection()
{
    ScriptedPeer peer({{"1\r\n"}});
    Socket socket(loopback, peer.port());
    const int own = socket.getSockfd();
    SystemCalls::fail(SystemCalls::Call::Socket, EMFILE);
    int descriptor = own;
    QVERIFY(!socket.connect(loopback, peer.port(), &descriptor, 1000));
    QCOMPARE(SystemCalls::failures(), 1);
    QCOMPARE(descriptor, -1);
    QCOMPARE(socket.getError(), QStringLiteral("Error opening socket"));
    QCOMPARE(SystemCalls::closed(), QList<int>());

    QCOMPARE(socket.getSockfd(), own);
    QVERIFY(socket.isConnected());
    QVERIFY(answers(socket));
}

void tst_SocketConnect::connectIgnoresSigPipe()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    // The host may have changed it since: every connect sets it again.
    std::signal(SIGPIPE, SIG_DFL);
    socket.disconnect();
    QVERIFY(socket.reConnect());
    QVERIFY(std::signal(SIGPIPE, SIG_IGN) == SIG_IGN);
}

void tst_SocketConnect::unresolvedAddressKeepsTheText_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("empty") << QString();
    QTest::newRow("number too great") << QStringLiteral("256.0.0.1");
    QTest::newRow("no octal number") << QStringLiteral("127.0.0.09");
    QTest::newRow("followed by a line feed") << QStringLiteral("127.0.0.1\n");
}

void tst_SocketConnect::unresolvedAddressKeepsTheText()
{
    QFETCH(QString, address);
    Socket socket(address, 8501, 1000);
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("OK"));
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
}

void tst_SocketConnect::refusedConnection()
{
    const int port = closedPort();
    SystemCalls::watch();
    Socket socket(loopback, port, 1000);
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("Error connecting: Connection refused"));
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
}

void tst_SocketConnect::unansweredConnection_data()
{
    QTest::addColumn<int>("timeout");
    QTest::addColumn<QString>("error");

    QTest::newRow("default") << 0 << QStringLiteral(" Timeout: 1000");
    QTest::newRow("shortest") << 2 << QStringLiteral(" Timeout: 2");
    QTest::newRow("given") << 30 << QStringLiteral(" Timeout: 30");
}

void tst_SocketConnect::unansweredConnection()
{
    QFETCH(int, timeout);
    const FullQueue queue;
    SystemCalls::watch();
    Socket socket(loopback, queue.port(), timeout);
    QVERIFY(!socket.isConnected());
    QTEST(socket.getError(), "error");
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
}

void tst_SocketConnect::unansweredConnectionShowsTheGivenTimeout()
{
    const FullQueue queue;
    SystemCalls::watch();
    // The object's own time-out is 1000.
    Socket socket;
    int descriptor = -1;
    QVERIFY(!socket.connect(loopback, queue.port(), &descriptor, 30));
    QCOMPARE(socket.getError(), QStringLiteral(" Timeout: 30"));
    QCOMPARE(SystemCalls::waits(), QList<int>{30});
    QCOMPARE(::close(descriptor), 0);
}

void tst_SocketConnect::descriptorClosedWhileConnecting()
{
    // No peer thread may get the descriptor number that becomes free.
    const FullQueue queue;
    SystemCalls::watch();
    SystemCalls::fail(SystemCalls::Call::Poll, EBADF);
    Socket socket(loopback, queue.port(), 1000);
    QCOMPARE(SystemCalls::failures(), 1);
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("Error: Bad file descriptor"));
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
}

QTEST_GUILESS_MAIN(tst_SocketConnect)
#include "tst_socketconnect.moc"
