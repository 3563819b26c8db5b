#include "scriptedpeer.h"
#include "socket.h"
#include "systemcalls.h"

#include <QTest>

#include <utility>

#include <unistd.h>

namespace {
const QString loopback = QStringLiteral("127.0.0.1");
}

// An open connection, and the Socket object itself.
class tst_Socket : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SystemCalls::watch(); }
    void cleanup() { SystemCalls::stop(); }

    void timeval_data();
    void timeval();

    void defaultObject();
    void reConnectAfterDisconnect();
    void reConnectLeavesAnOpenDescriptorOpen();
    void moveConstruction();
    void moveAssignment();
    void comparison_data();
    void comparison();
    void errorText();
};

void tst_Socket::timeval_data()
{
    QTest::addColumn<int>("ms");
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<qint64>("microseconds");

    QTest::newRow("below zero") << -1 << qint64(0) << qint64(0);
    QTest::newRow("far below zero") << -5 << qint64(0) << qint64(0);
    QTest::newRow("zero") << 0 << qint64(0) << qint64(0);
    QTest::newRow("one") << 1 << qint64(0) << qint64(1000);
    QTest::newRow("below a second") << 999 << qint64(0) << qint64(999000);
    QTest::newRow("a second") << 1000 << qint64(1) << qint64(0);
    QTest::newRow("above a second") << 1001 << qint64(1) << qint64(1000);
    QTest::newRow("seconds and a rest") << 1500 << qint64(1) << qint64(500000);
    QTest::newRow("greatest") << 2147483647 << qint64(2147483) << qint64(647000);
}

void tst_Socket::timeval()
{
    QFETCH(int, ms);
    const struct timeval result = socketTimevalFromMilliseconds(ms);
    QTEST(qint64(result.tv_sec), "seconds");
    QTEST(qint64(result.tv_usec), "microseconds");
}

void tst_Socket::defaultObject()
{
    {
        Socket socket;
        QVERIFY(!socket.isConnected());
        QCOMPARE(socket.getSockfd(), -1);
        QCOMPARE(socket.getPort(), 0);
        QCOMPARE(socket.getIp(), QString());
        QCOMPARE(socket.getError(), QString());

        QByteArray data = "old";
        QVERIFY(!socket.read(&data));
        QCOMPARE(socket.getError(), QStringLiteral("Error reading: Bad file descriptor (-1)"));
        QCOMPARE(data, QByteArray());
        QVERIFY(!socket.write("RD DM0\r"));
        QCOMPARE(socket.getError(), QStringLiteral("Bad file descriptor"));

        socket.setError(QStringLiteral("kept"));
        QVERIFY(!socket.reConnect());
        QVERIFY(!socket.isConnected());
        QCOMPARE(socket.getError(), QStringLiteral("kept"));
        QCOMPARE(SystemCalls::closed(), QList<int>{socket.getSockfd()});
    }
    QCOMPARE(SystemCalls::closed().size(), 1);
}

void tst_Socket::reConnectAfterDisconnect()
{
    ScriptedPeer peer({{"1\r\n"}});
    Socket socket(loopback, peer.port());
    QVERIFY(!socket.disconnect());
    QVERIFY(!socket.isConnected());
    socket.setError(QStringLiteral("of old"));
    QVERIFY(socket.reConnect());
    QVERIFY(socket.isConnected());
    QCOMPARE(socket.getError(), QStringLiteral("OK"));
    QVERIFY(socket.write("RD DM0\r"));
    QByteArray answer;
    QVERIFY(socket.read(&answer));
    QCOMPARE(answer, QByteArray("1\r\n"));
    socket.disconnect();
    peer.finish();
    QCOMPARE(peer.connectionCount(), 2);
}

void tst_Socket::reConnectLeavesAnOpenDescriptorOpen()
{
    ScriptedPeer peer;
    Socket socket(loopback, peer.port());
    const int first = socket.getSockfd();
    QVERIFY(socket.reConnect());
    QVERIFY(socket.getSockfd() != first);
    QCOMPARE(::close(first), 0);
}

void tst_Socket::moveConstruction()
{
    ScriptedPeer peer;
    auto *first = new Socket(loopback, peer.port(), 250);
    const int number = first->getSockfd();
    Socket second(std::move(*first));

    QCOMPARE(first->getSockfd(), -1);
    QVERIFY(!first->isConnected());
    QCOMPARE(first->getIp(), loopback);
    QCOMPARE(first->getPort(), peer.port());
    QCOMPARE(first->getError(), QStringLiteral("OK"));
    QVERIFY(second == *first);
    delete first;
    QCOMPARE(SystemCalls::closed(), QList<int>());

    QVERIFY(second.isConnected());
    QCOMPARE(second.getSockfd(), number);
    QCOMPARE(second.getIp(), loopback);
    QCOMPARE(second.getPort(), peer.port());
    QCOMPARE(second.getError(), QString());
    QByteArray data;
    QVERIFY(!second.read(&data));
    QCOMPARE(second.getError(), QStringLiteral("Timeout reading (250ms)"));
}

void tst_Socket::moveAssignment()
{
    ScriptedPeer peer;
    Socket first(loopback, peer.port(), 250);
    const int number = first.getSockfd();
    Socket second(loopback, peer.port());
    const int former = second.getSockfd();
    second.setError(QStringLiteral("its own"));
    second = std::move(first);

    // The state after a move is defined.
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
    QCOMPARE(first.getSockfd(), -1);
    QVERIFY(!first.isConnected());
    QCOMPARE(second.getSockfd(), number);
    QVERIFY(second.isConnected());
    QCOMPARE(second.getError(), QStringLiteral("its own"));
    QCOMPARE(SystemCalls::closed(), QList<int>());
    QCOMPARE(::close(former), 0);
}

void tst_Socket::comparison_data()
{
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("ip");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("same");

    // Addresses that never resolve, so that no connection is made.
    const QString own = QStringLiteral("256.0.0.1");
    QTest::newRow("same") << own << own << 8501 << true;
    QTest::newRow("other port") << own << own << 8502 << false;
    QTest::newRow("other address") << own << QStringLiteral("256.0.0.2") << 8501 << false;
    QTest::newRow("leading zeros") << own << QStringLiteral("256.0.0.01") << 8501 << false;
    QTest::newRow("both different") << own << QString() << 0 << false;
    QTest::newRow("other case") << QStringLiteral("fe80::1") << QStringLiteral("FE80::1") << 8501
                                << false;
}

void tst_Socket::comparison()
{
    QFETCH(QString, own);
    QFETCH(QString, ip);
    QFETCH(int, port);
    QFETCH(bool, same);
    const Socket socket(own, 8501, 100);
    const Socket other(ip, port, 200);
    QCOMPARE(socket.hasIpAndPort(ip, port), same);
    QCOMPARE(socket == other, same);
    QVERIFY(socket == socket);
}

void tst_Socket::errorText()
{
    Socket socket;
    socket.setError(QStringLiteral("text"));
    QCOMPARE(socket.getError(), QStringLiteral("text"));
}

QTEST_GUILESS_MAIN(tst_Socket)
#include "tst_socket.moc"
