#include "scriptedpeer.h"
#include "socket.h"
#include "systemcalls.h"

#include <QScopeGuard>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <vector>

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const QString loopback = QStringLiteral("127.0.0.1");

// Waits until that many bytes can be received at once.
bool waitForBytes(int descriptor, int count)
{
    const int usual = 1;
    int available = 0;
    pollfd arrived{descriptor, POLLIN, 0};
    return ::setsockopt(descriptor, SOL_SOCKET, SO_RCVLOWAT, &count, sizeof count) == 0
           && ::poll(&arrived, 1, 10000) == 1
           && ::setsockopt(descriptor, SOL_SOCKET, SO_RCVLOWAT, &usual, sizeof usual) == 0
           && ::ioctl(descriptor, FIONREAD, &available) == 0 && available == count;
}

} // namespace

// Sending and receiving over a connection.
class tst_SocketTransfer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SystemCalls::watch(); }
    void cleanup() { SystemCalls::stop(); }

    void exchange();
    void readReturnsWhatOneReceiveDelivers();
    void readOfALongAnswer();
    void readTakesUpTo65535Bytes_data();
    void readTakesUpTo65535Bytes();
    void readTimeout_data();
    void readTimeout();
    void readAfterOrderlyClose();
    void readReplacesOldBytes();
    void writeRaw();
    void writeToAPeerThatIsGone();
    void descriptorClosedUnderneath();
    void descriptorZero();
    void descriptorAbove1024();
};

void tst_SocketTransfer::exchange()
{
    ScriptedPeer peer({{"00001\r\n"}, {"OK\r\n"}});
    Socket socket(loopback, peer.port());
    QByteArray answer;
    QVERIFY(socket.write("RD DM1\r"));
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("00001\r\n"));
    QVERIFY(socket.write("WR DM1 5\r"));
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("OK\r\n"));
    QCOMPARE(socket.getError(), QStringLiteral("OK"));
    socket.disconnect();
    QCOMPARE(peer.finish(), QByteArray("RD DM1\rWR DM1 5\r"));
}

void tst_SocketTransfer::readReturnsWhatOneReceiveDelivers()
{
    ScriptedPeer peer({{"000"}});
    Socket socket(loopback, peer.port());
    QByteArray answer;
    QVERIFY(socket.write("RD DM1\r"));
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("000"));
    peer.send("01\r\n");
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("01\r\n"));
}

void tst_SocketTransfer::readOfALongAnswer()
{
    const QByteArray sent = QByteArray(200000, '7') + "\r\n";
    ScriptedPeer peer({{sent}});
    Socket socket(loopback, peer.port());
    QVERIFY(socket.write("RD DM1\r"));
    QByteArray received;
    QByteArray piece;
    int reads = 0;
    while (received.size() < sent.size()) {
        QVERIFY(socket.read(&piece));
        QVERIFY(piece.size() <= 65535);
        received += piece;
        ++reads;
    }
    QVERIFY(reads >= 4);
    QCOMPARE(received, sent);
}

void tst_SocketTransfer::readTakesUpTo65535Bytes_data()
{
    QTest::addColumn<int>("sent");
    QTest::addColumn<int>("first");

    QTest::newRow("above a page") << 4097 << 4097;
    QTest::newRow("below the greatest") << 65534 << 65534;
    QTest::newRow("greatest") << 65535 << 65535;
    QTest::newRow("above the greatest") << 65536 << 65535;
}

void tst_SocketTransfer::readTakesUpTo65535Bytes()
{
    QFETCH(int, sent);
    QFETCH(int, first);
    QByteArray bytes(sent, '7');
    bytes.back() = '8';
    ScriptedPeer peer({{bytes}});
    Socket socket(loopback, peer.port());
    QVERIFY(socket.write("RD DM1\r"));
    QVERIFY(waitForBytes(socket.getSockfd(), sent));
    QByteArray answer;
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer.size(), first);
    QCOMPARE(answer, bytes.left(first));
    if (first < sent) {
        QVERIFY(socket.read(&answer));
        QCOMPARE(answer, bytes.mid(first));
    }
}

void tst_SocketTransfer::readTimeout_data()
{
    QTest::addColumn<int>("timeout");
    QTest::addColumn<int>("waited");
    QTest::addColumn<QString>("error");

    QTest::newRow("default") << 0 << 1000 << QStringLiteral("Timeout reading (1000ms)");
    QTest::newRow("shortest") << 2 << 2 << QStringLiteral("Timeout reading (2ms)");
    QTest::newRow("given") << 30 << 30 << QStringLiteral("Timeout reading (30ms)");
}

void tst_SocketTransfer::readTimeout()
{
    QFETCH(int, timeout);
    ScriptedPeer peer;
    Socket socket(loopback, peer.port(), timeout);
    SystemCalls::watch();
    QByteArray data = "old";
    QVERIFY(!socket.read(&data));
    QCOMPARE(SystemCalls::waits().size(), 1);
    QTEST(SystemCalls::waits().constFirst(), "waited");
    QTEST(socket.getError(), "error");
    QCOMPARE(data, QByteArray());
    QVERIFY(!socket.isConnected());
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
}

void tst_SocketTransfer::readAfterOrderlyClose()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    QVERIFY(peer.waitForConnections(1));
    peer.closeConnection();
    SystemCalls::watch();
    QByteArray data = "old";
    // The errno of an earlier call must not be in the text.
    errno = EIO;
    QVERIFY(!socket.read(&data));
    QCOMPARE(socket.getError(), QStringLiteral("No data received - Success"));
    QCOMPARE(data, QByteArray());
    QVERIFY(socket.isConnected());
    QCOMPARE(SystemCalls::closed(), QList<int>());
}

void tst_SocketTransfer::readReplacesOldBytes()
{
    ScriptedPeer peer({{QByteArray("1\0\r\n", 4)}});
    Socket socket(loopback, peer.port());
    socket.setError(QStringLiteral("kept by a success"));
    QVERIFY(socket.write("RD DM1\r"));
    QCOMPARE(socket.getError(), QStringLiteral("kept by a success"));
    QByteArray data = "something longer than the answer";
    QVERIFY(socket.read(&data));
    QCOMPARE(data, QByteArray("1\0\r\n", 4));
    QCOMPARE(socket.getError(), QStringLiteral("kept by a success"));
}

void tst_SocketTransfer::writeRaw()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    QVERIFY(socket.write("RD DM100\r...", 9));
    QVERIFY(socket.write("RD DM100\r...", 0));
    QVERIFY(socket.isConnected());
    QVERIFY(!socket.write("RD DM100\r...", -1));
    QCOMPARE(socket.getError(), QStringLiteral("Invalid argument"));
    QVERIFY(!socket.isConnected());
    QCOMPARE(peer.finish(), QByteArray("RD DM100\r"));
}

void tst_SocketTransfer::writeToAPeerThatIsGone()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    QVERIFY(peer.waitForConnections(1));
    peer.closeConnection();
    QByteArray data;
    QVERIFY(!socket.read(&data));
    // The peer answers the first bytes with a reset; after it has arrived, the next ones cannot be
    // sent.
    QVERIFY(socket.write("RD DM1\r"));
    pollfd reset{socket.getSockfd(), 0, 0};
    QCOMPARE(::poll(&reset, 1, 10000), 1);
    QVERIFY((reset.revents & POLLHUP) != 0);

    SystemCalls::watch();
    std::signal(SIGPIPE, SIG_DFL);
    QVERIFY(!socket.write("RD DM2\r"));
    std::signal(SIGPIPE, SIG_IGN);
    QCOMPARE(socket.getError(), QStringLiteral("Broken pipe"));
    QVERIFY(!socket.isConnected());
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
}

void tst_SocketTransfer::descriptorClosedUnderneath()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    // The peer's own descriptor must not get that number.
    QVERIFY(peer.waitForConnections(1));
    ::close(socket.getSockfd());
    QByteArray data;
    QVERIFY(!socket.read(&data));
    QCOMPARE(socket.getError(), QStringLiteral("Error reading: Bad file descriptor (-1)"));
    QVERIFY(!socket.isConnected());
}

void tst_SocketTransfer::descriptorZero()
{
    ScriptedPeer peer({{"1\r\n"}});
    const int standardInput = ::dup(STDIN_FILENO);
    QVERIFY(standardInput > 0);
    const auto restore = qScopeGuard([standardInput] {
        ::dup2(standardInput, STDIN_FILENO);
        ::close(standardInput);
    });
    ::close(STDIN_FILENO);
    SystemCalls::watch();

    Socket socket(loopback, peer.port());
    QCOMPARE(socket.getSockfd(), 0);
    QVERIFY(socket.isConnected());
    QVERIFY(socket.write("RD DM1\r"));
    QByteArray answer;
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("1\r\n"));
    socket.disconnect();
    QCOMPARE(SystemCalls::closed(), QList<int>{0});
}

void tst_SocketTransfer::descriptorAbove1024()
{
    struct rlimit limit = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlim_t former = limit.rlim_cur;
    limit.rlim_cur = 2048;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<int> held;
    while (held.empty() || held.back() < 1024)
        held.push_back(::dup(STDERR_FILENO));

    ScriptedPeer peer({{"1\r\n"}});
    Socket socket(loopback, peer.port());
    QVERIFY(socket.getSockfd() > 1024);
    QVERIFY(socket.isConnected());
    QVERIFY(socket.write("RD DM1\r"));
    QByteArray answer;
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("1\r\n"));

    for (const int descriptor : held)
        ::close(descriptor);
    socket.disconnect();
    peer.finish();
    limit.rlim_cur = former;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

QTEST_GUILESS_MAIN(tst_SocketTransfer)
#include "tst_sockettransfer.moc"
