#include "keyence.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QScopeGuard>
#include <QTest>
#include <QTextCodec>

namespace {

const QString loopback = QStringLiteral("127.0.0.1");

} // namespace

// One exchange with the controller.
class tst_Exchange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void letterOutsideAscii_data();
    void letterOutsideAscii();
    void emptyCommand();
    void withoutAnswer();
    void peerCloses();
    void withoutConnection();
    void takesOneReceiveOnly();
};

void tst_Exchange::answers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("error");

    const QString refusal = text("[RD DM1\r] <Counter> :invalid address");
    QTest::newRow("value") << QByteArray("00001\r\n") << QString();
    QTest::newRow("OK") << QByteArray("OK\r\n") << QString();
    QTest::newRow("refusal E0") << QByteArray("E0\r\n") << refusal;
    QTest::newRow("refusal E1") << QByteArray("E1\r\n") << refusal;
    QTest::newRow("refusal E4") << QByteArray("E4\r\n") << refusal;
    QTest::newRow("the letter alone") << QByteArray("E") << refusal;
    QTest::newRow("a word in E") << QByteArray("EXTRA\r\n") << refusal;
    QTest::newRow("lower case") << QByteArray("e0\r\n") << QString();
    QTest::newRow("not at the beginning") << QByteArray(" E0\r\n") << QString();
    QTest::newRow("behind a line feed") << QByteArray("\nE0\r\n") << QString();
    QTest::newRow("line end only") << QByteArray("\r\n") << QString();
    QTest::newRow("zero byte before") << QByteArray("\0E0\r\n", 5) << QString();
}

void tst_Exchange::answers()
{
    QFETCH(QByteArray, answer);
    ScriptedPeer peer({{answer}});
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    QByteArray response = "old";
    QTEST(plugin.sendCommand(socket, text("RD DM1\r"), text("Counter"), &response), "error");
    QCOMPARE(response, answer);
    QVERIFY(socket.isConnected());
    socket.disconnect();
    QCOMPARE(peer.finish(), QByteArray("RD DM1\r"));
}

void tst_Exchange::letterOutsideAscii_data()
{
    QTest::addColumn<QByteArray>("encoding");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("UTF-8") << QByteArray("UTF-8") << QByteArray("RD \xC3\x96M1\r");
    QTest::newRow("Latin-1") << QByteArray("ISO-8859-1") << QByteArray("RD \xD6M1\r");
}

// The line is sent in the encoding of the machine's locale.
void tst_Exchange::letterOutsideAscii()
{
    QFETCH(QByteArray, encoding);
    QTextCodec *const machine = QTextCodec::codecForLocale();
    const auto restore = qScopeGuard([machine] { QTextCodec::setCodecForLocale(machine); });
    QTextCodec *const codec = QTextCodec::codecForName(encoding);
    QVERIFY(codec != nullptr);
    QTextCodec::setCodecForLocale(codec);
    ScriptedPeer peer({{"00001\r\n"}});
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    QByteArray response;
    QCOMPARE(plugin.sendCommand(socket, text("RD \u00D6M1\r"), text("Counter"), &response),
             QString());
    socket.disconnect();
    QTEST(peer.finish(), "line");
}

void tst_Exchange::emptyCommand()
{
    ScriptedPeer peer;
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    QByteArray response = "old";
    QCOMPARE(plugin.sendCommand(socket, QString(), text("Counter"), &response),
             text("[ ] not sent: Data item parameters invalid"));
    QCOMPARE(response, QByteArray("old"));
    socket.disconnect();
    QCOMPARE(peer.finish(), QByteArray());
}

void tst_Exchange::withoutAnswer()
{
    ScriptedPeer peer;
    Keyence plugin;
    Socket socket(loopback, peer.port(), 30);
    QByteArray response = "old";
    QCOMPARE(plugin.sendCommand(socket, text("RD DM1\r"), text("Counter"), &response),
             text("[RD DM1\r ] socket read data error from <Counter> :Timeout reading (30ms)"));
    QCOMPARE(response, QByteArray());
    QVERIFY(!socket.isConnected());
}

void tst_Exchange::peerCloses()
{
    ScriptedPeer peer({{"", Answer::Close}});
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    QByteArray response;
    QCOMPARE(plugin.sendCommand(socket, text("RD DM1\r"), text("Counter"), &response),
             text("[RD DM1\r ] socket read data error from <Counter> :No data received - Success"));
    QVERIFY(socket.isConnected());
}

void tst_Exchange::withoutConnection()
{
    Keyence plugin;
    Socket socket;
    QByteArray response = "old";
    QCOMPARE(plugin.sendCommand(socket, text("RD DM1\r"), text("Counter"), &response),
             text("[RD DM1\r ] socket write data error from <Counter> :Bad file descriptor"));
    QCOMPARE(response, QByteArray("old"));
}

void tst_Exchange::takesOneReceiveOnly()
{
    ScriptedPeer peer({{"000"}});
    Keyence plugin;
    Socket socket(loopback, peer.port(), 2000);
    QByteArray response;
    QCOMPARE(plugin.sendCommand(socket, text("RD DM1\r"), text("Counter"), &response), QString());
    QCOMPARE(response, QByteArray("000"));
}

QTEST_GUILESS_MAIN(tst_Exchange)
#include "tst_exchange.moc"
