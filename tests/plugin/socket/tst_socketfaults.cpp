#include "scriptedpeer.h"
#include "socket.h"
#include "systemcalls.h"

#include <QTest>

#include <array>
#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

using SystemCalls::Call;

namespace {
const QString loopback = QStringLiteral("127.0.0.1");
}

// Failing system calls, and which system calls a socket makes.
class tst_SocketFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SystemCalls::watch(); }
    void cleanup() { SystemCalls::stop(); }

    void constructorTimeout_data();
    void constructorTimeout();
    void connectAtOnceKeepsTheText();
    void connectFailure_data();
    void connectFailure();
    void interruptedConnect();
    void connectToBeTriedAgainIsWaitedFor();
    void reConnectWithoutADescriptor();
    void reConnectThatFailsAtItsEnd();
    void readFailure_data();
    void readFailure();
    void writeFailure();
    void partialSendIsSuccess();
    void disconnectClosesOnce();
    void destructorCloses();
    void destructorWithoutAConnectionClosesNothing();
    void descriptorNumberIsNotTouchedAfterDisconnect();
};

void tst_SocketFaults::constructorTimeout_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("waited");

    QTest::newRow("negative") << -5 << 1000;
    QTest::newRow("zero") << 0 << 1000;
    QTest::newRow("one") << 1 << 1000;
    QTest::newRow("two") << 2 << 2;
    QTest::newRow("three") << 3 << 3;
    QTest::newRow("seconds and a rest") << 2500 << 2500;
}

void tst_SocketFaults::constructorTimeout()
{
    QFETCH(int, given);
    ScriptedPeer peer;
    const Socket socket(loopback, peer.port(), given);
    QCOMPARE(SystemCalls::waits().size(), 1);
    QTEST(SystemCalls::waits().constFirst(), "waited");
}

void tst_SocketFaults::connectAtOnceKeepsTheText()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    socket.disconnect();
    socket.setError(QStringLiteral("of old"));
    SystemCalls::watch();
    SystemCalls::fail(Call::Connect, 0);
    QVERIFY(socket.reConnect());
    QCOMPARE(SystemCalls::failures(), 1);
    QCOMPARE(SystemCalls::waits(), QList<int>());
    QCOMPARE(socket.getError(), QStringLiteral("of old"));
}

void tst_SocketFaults::connectFailure_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("errorNumber");
    QTest::addColumn<int>("skip");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("closes");

    const auto row = [](const char *name, Call call, int errorNumber, int skip, const char *error,
                        bool closes) {
        QTest::newRow(name) << call << errorNumber << skip << QString::fromLatin1(error) << closes;
    };
    row("no descriptor", Call::Socket, EMFILE, 0, "Error opening socket", false);
    row("resolved to IPv6", Call::Resolve, EAFNOSUPPORT, 0, "Error resolving address", true);
    row("resolved to nothing", Call::Resolve, ENODATA, 0, "Error resolving address", true);
    row("resolved to three bytes", Call::Resolve, EMSGSIZE, 0, "Error resolving address", true);
    row("flags not readable", Call::GetFlags, EIO, 0, "Error: Input/output error", true);
    row("flags not settable", Call::SetFlags, EPERM, 0, "Error: Operation not permitted", true);
    row("refused at once", Call::Connect, ENETUNREACH, 0,
        "Error connecting: Network is unreachable", true);
    row("wait fails", Call::Poll, ENOMEM, 0, "Error: Cannot allocate memory", true);
    row("pending error not readable", Call::GetOption, ENOBUFS, 0,
        "Error connecting: No buffer space available", true);
    row("flags not readable afterwards", Call::GetFlags, EIO, 1, "Error: Input/output error",
        false);
    row("flags not settable afterwards", Call::SetFlags, EPERM, 1, "Error: Operation not permitted",
        false);
}

void tst_SocketFaults::connectFailure()
{
    QFETCH(Call, call);
    QFETCH(int, errorNumber);
    QFETCH(int, skip);
    QFETCH(bool, closes);

    ScriptedPeer peer;
    SystemCalls::fail(call, errorNumber, skip);
    Socket socket(loopback, peer.port(), 1000);
    QCOMPARE(SystemCalls::failures(), 1);
    QVERIFY(!socket.isConnected());
    QTEST(socket.getError(), "error");
    QCOMPARE(SystemCalls::closed(), closes ? QList<int>{socket.getSockfd()} : QList<int>());

    // The next attempt is not affected by the failure.
    socket.disconnect();
    QVERIFY(socket.reConnect());
}

void tst_SocketFaults::interruptedConnect()
{
    ScriptedPeer peer;
    SystemCalls::fail(Call::Poll, EINTR);
    Socket socket(loopback, peer.port(), 750);
    QCOMPARE(SystemCalls::failures(), 1);
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral(" Timeout: 750"));
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
}

void tst_SocketFaults::connectToBeTriedAgainIsWaitedFor()
{
    ScriptedPeer peer({{"1\r\n"}});
    SystemCalls::fail(Call::Connect, EAGAIN);
    Socket socket(loopback, peer.port(), 750);
    QCOMPARE(SystemCalls::failures(), 1);
    QCOMPARE(SystemCalls::waits(), QList<int>{750});
    QVERIFY(socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("OK"));
    QVERIFY(socket.write("RD DM1\r"));
    QByteArray answer;
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("1\r\n"));
}

void tst_SocketFaults::reConnectWithoutADescriptor()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    const int former = socket.getSockfd();
    SystemCalls::fail(Call::Socket, EMFILE);
    QVERIFY(!socket.reConnect());
    QCOMPARE(SystemCalls::failures(), 1);
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("Error opening socket"));
    QCOMPARE(socket.getSockfd(), -1);
    socket.disconnect();
    QCOMPARE(SystemCalls::closed(), QList<int>());
    QCOMPARE(::close(former), 0);
}

void tst_SocketFaults::reConnectThatFailsAtItsEnd()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    const int former = socket.getSockfd();
    SystemCalls::fail(Call::SetFlags, EPERM, 1);
    QVERIFY(!socket.reConnect());
    QCOMPARE(SystemCalls::failures(), 1);
    QVERIFY(!socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("Error: Operation not permitted"));
    QCOMPARE(SystemCalls::closed(), QList<int>());
    QCOMPARE(::close(former), 0);
    QCOMPARE(::close(socket.getSockfd()), 0);
}

void tst_SocketFaults::readFailure_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("errorNumber");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("staysConnected");

    QTest::newRow("wait interrupted")
        << Call::Poll << EINTR << QStringLiteral("Error reading: Interrupted system call (-1)")
        << false;
    QTest::newRow("wait fails") << Call::Poll << ENOMEM
                                << QStringLiteral("Error reading: Cannot allocate memory (-1)")
                                << false;
    QTest::newRow("receive fails")
        << Call::Receive << ECONNRESET
        << QStringLiteral("No data received - Connection reset by peer") << true;
}

void tst_SocketFaults::readFailure()
{
    QFETCH(Call, call);
    QFETCH(int, errorNumber);
    QFETCH(bool, staysConnected);
    ScriptedPeer peer({{"1\r\n"}});
    Socket socket(loopback, peer.port());
    QVERIFY(socket.write("RD DM1\r"));
    SystemCalls::fail(call, errorNumber);
    QByteArray data;
    QVERIFY(!socket.read(&data));
    QCOMPARE(SystemCalls::failures(), 1);
    QTEST(socket.getError(), "error");
    QCOMPARE(socket.isConnected(), staysConnected);
    QCOMPARE(SystemCalls::closed(), staysConnected ? QList<int>() : QList<int>{socket.getSockfd()});
}

void tst_SocketFaults::writeFailure()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    SystemCalls::fail(Call::Send, ENOBUFS);
    QVERIFY(!socket.write("RD DM1\r"));
    QCOMPARE(SystemCalls::failures(), 1);
    QCOMPARE(socket.getError(), QStringLiteral("No buffer space available"));
    QVERIFY(!socket.isConnected());
    QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
    QCOMPARE(peer.finish(), QByteArray());
}

void tst_SocketFaults::partialSendIsSuccess()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    SystemCalls::limitNextSend(3);
    QVERIFY(socket.write("RD DM1\r"));
    QCOMPARE(SystemCalls::failures(), 1);
    QVERIFY(socket.isConnected());
    socket.disconnect();
    QCOMPARE(peer.finish(), QByteArray("RD "));
}

void tst_SocketFaults::disconnectClosesOnce()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    const int number = socket.getSockfd();
    QVERIFY(!socket.disconnect());
    QVERIFY(!socket.disconnect());
    QCOMPARE(socket.getSockfd(), number);
    QCOMPARE(SystemCalls::closed(), QList<int>{number});
}

void tst_SocketFaults::destructorCloses()
{
    ScriptedPeer peer;
    int number = -1;
    {
        Socket socket(loopback, peer.port());
        number = socket.getSockfd();
    }
    QCOMPARE(SystemCalls::closed(), QList<int>{number});
}

void tst_SocketFaults::destructorWithoutAConnectionClosesNothing()
{
    ScriptedPeer peer;
    int number = -1;
    {
        // Fails with an open descriptor.
        SystemCalls::fail(Call::SetFlags, EPERM, 1);
        const Socket socket(loopback, peer.port());
        QCOMPARE(SystemCalls::failures(), 1);
        QVERIFY(!socket.isConnected());
        number = socket.getSockfd();
    }
    QCOMPARE(SystemCalls::closed(), QList<int>());
    QCOMPARE(::close(number), 0);
}

void tst_SocketFaults::descriptorNumberIsNotTouchedAfterDisconnect()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    const int number = socket.getSockfd();
    // The peer's own descriptor must not get that number.
    QVERIFY(peer.waitForConnections(1));
    socket.disconnect();

    // Another descriptor of the process gets the same number.
    std::array<int, 2> ends{};
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    if (ends[0] != number) {
        QCOMPARE(::dup2(ends[0], number), number);
        ::close(ends[0]);
    }
    QCOMPARE(::send(ends[1], "not for us", 10, 0), 10);
    SystemCalls::watch();

    QVERIFY(!socket.write("RD DM1\r"));
    QCOMPARE(socket.getError(), QStringLiteral("Bad file descriptor"));
    QByteArray data;
    QVERIFY(!socket.read(&data));
    QCOMPARE(socket.getError(), QStringLiteral("Error reading: Bad file descriptor (-1)"));
    socket.disconnect();

    QCOMPARE(socket.getSockfd(), number);
    QCOMPARE(SystemCalls::closed(), QList<int>());
    std::array<char, 16> buffer{};
    QCOMPARE(::recv(number, buffer.data(), buffer.size(), MSG_DONTWAIT), ssize_t(10));
    QCOMPARE(::recv(ends[1], buffer.data(), buffer.size(), MSG_DONTWAIT), ssize_t(-1));
    QCOMPARE(errno, EAGAIN);
    ::close(number);
    ::close(ends[1]);
}

QTEST_GUILESS_MAIN(tst_SocketFaults)
#include "tst_socketfaults.moc"
