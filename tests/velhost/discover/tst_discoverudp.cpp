#include "discoverrun.h"
#include "udppeer.h"

#include <QHostAddress>
#include <QNetworkDatagram>
#include <QTest>
#include <QUdpSocket>

// `discover` by UDP: what counts as a controller.

class tst_DiscoverUdp : public QObject
{
    Q_OBJECT

    SilentPort m_nobody;

private Q_SLOTS:
    void udpAnswers_data();
    void udpAnswers();
    void otherPort();
    void json();
    void broadcast();
};

void tst_DiscoverUdp::udpAnswers_data()
{
    QTest::addColumn<QList<QByteArray>>("answers");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("strangers");

    using Answers = QList<QByteArray>;
    QTest::newRow("known model") << Answers{"55\r\n"} << text("KV-7500") << QString();
    QTest::newRow("no end") << Answers{"55"} << text("KV-7500") << QString();
    QTest::newRow("other model") << Answers{"57\r\n"} << text("model code 57") << QString();
    QTest::newRow("refusal") << Answers{"E0\r\n"} << text("not told, refused with E0") << QString();
    QTest::newRow("twice") << Answers{"55\r\n", "55\r\n"} << text("KV-7500") << QString();
    QTest::newRow("its own question") << Answers{"?K\r"} << QString() << text("\"?K\"");
    QTest::newRow("empty") << Answers{""} << QString() << text("nothing");
    QTest::newRow("large") << Answers{QByteArray(9000, '5')} << QString()
                           << text("\"%1\"").arg(QString(64, u'5'));
    QTest::newRow("none") << Answers() << QString() << QString();
}

void tst_DiscoverUdp::udpAnswers()
{
    QFETCH(QList<QByteArray>, answers);
    QFETCH(QString, model);
    QFETCH(QString, strangers);

    const UdpPeer peer(answers);
    const ProgramRun run = discover(QString::number(peer.port()), m_nobody.tcp());
    QCOMPARE(peer.questions(), QList<QByteArray>{"?K\r"});
    const QString notice
        = text("velhost: 127.0.0.1:%1 (UDP) is no controller: it answered ").arg(peer.port());
    QCOMPARE(run.errors, searchMessage(14, 14)
                             + (strangers.isEmpty() ? QString() : notice + strangers + u'\n')
                             + (model.isEmpty() ? nothingFound : QString()));
    QCOMPARE(run.output, model.isEmpty() ? QString()
                                         : tableHead
                                               + tableRow("127.0.0.1", peer.port(), "UDP",
                                                          model.toLatin1().constData()));
    QCOMPARE(run.exitCode, model.isEmpty() ? 1 : 0);
}

// A datagram from a port that was not asked is ignored, whatever its content.
void tst_DiscoverUdp::otherPort()
{
    QUdpSocket other;
    QVERIFY(other.bind(QHostAddress(QHostAddress::LocalHost)));
    QUdpSocket asked;
    QVERIFY(asked.bind(QHostAddress(QHostAddress::LocalHost)));
    int answered = 0;
    connect(&asked, &QUdpSocket::readyRead, &other, [&] {
        while (asked.hasPendingDatagrams()) {
            const QNetworkDatagram question = asked.receiveDatagram();
            other.writeDatagram("55\r\n", question.senderAddress(),
                                static_cast<quint16>(question.senderPort()));
            ++answered;
        }
    });
    const ProgramRun run = discover(QString::number(asked.localPort()), m_nobody.tcp());
    QCOMPARE(answered, 1);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.errors, searchMessage(14, 14) + nothingFound);
    QCOMPARE(run.exitCode, 1);
}

void tst_DiscoverUdp::json()
{
    const UdpPeer peer({"57\r\n"});
    const ProgramRun run
        = discover(QString::number(peer.port()), m_nobody.tcp(), {text("--format"), text("json")});
    QCOMPARE(run.output, text(R"({"type":"controller","address":"127.0.0.1","port":%1,)"
                              R"("protocols":["udp"],"model":null,"answer":"57"})"
                              "\n")
                             .arg(peer.port()));
    QCOMPARE(run.exitCode, 0);
}

void tst_DiscoverUdp::broadcast()
{
    const UdpPeer peer({"55\r\n"}, QHostAddress(text("127.255.255.255")));
    QVERIFY(peer.port() != 0);
    const ProgramRun run = runBesideLoop(
        text(VELHOST_FILE),
        searchArguments(KEYENCE_PLUGIN_FILE, QString::number(peer.port()), m_nobody.tcp(),
                        shortSearch(),
                        {text("--interface"), text("lo"), text("--subnet"), text("127.0.0.1")}));
    QCOMPARE(peer.questions(), QList<QByteArray>{"?K\r"});
    QCOMPARE(run.errors, searchMessage(1, 1));
    QCOMPARE(run.output, tableHead + tableRow("127.0.0.1", peer.port(), "UDP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_DiscoverUdp)
#include "tst_discoverudp.moc"
