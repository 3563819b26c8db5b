#include "scriptedpeer.h"
#include "searchrun.h"
#include "udppeer.h"

#include <kvsim/simulatorthread.h>

#include <QHostAddress>
#include <QNetworkDatagram>
#include <QTest>
#include <QUdpSocket>

// `discover`: what it asks, what it takes for a controller, what it refuses.

namespace {

const QString tableHead = QStringLiteral("Address    Port   Protocol  Model\n");
const QString nothingFound = QStringLiteral(
    "velhost: no controller found; check that it has power and an address in this network, that "
    "its Host Link port is among those asked, and that no firewall is between\n");

/// A row of the table, for a port of five digits.
QString row(const char *address, int port, const char *protocol, const char *model)
{
    return text("%1  %2  %3  %4\n")
        .arg(text(address), QString::number(port), text(protocol).leftJustified(8), text(model));
}

/// What is told first, for one port each.
QString asking(int udpAddresses, int tcpAddresses)
{
    return text("velhost: asking %1 addresses by UDP at 1 ports, then %2 by TCP at 1, for at most "
                "1600 ms\n")
        .arg(udpAddresses)
        .arg(tcpAddresses);
}

ProgramRun discover(const QString &udpPorts, const QString &tcpPorts, const QStringList &more = {})
{
    return runBesideLoop(text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, udpPorts,
                                                             tcpPorts, shortSearch() + more));
}

} // namespace

class tst_Discover : public QObject
{
    Q_OBJECT

    SilentPort m_nobody;

private Q_SLOTS:
    void tcpAnswers_data();
    void tcpAnswers();
    void answerInPieces();
    void udpAnswers_data();
    void udpAnswers();
    void otherPort();
    void tcpAndUdp();
    void severalControllers();
    void json();
    void broadcast();
    void nobody();
    void wideRange();
    void usageErrors_data();
    void usageErrors();
    void noSearchDeclared();
};

void tst_Discover::tcpAnswers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("stranger");

    const auto controller = [](const char *title, const char *answer, const char *model) {
        QTest::newRow(title) << QByteArray(answer) << text(model) << QString();
    };
    controller("known model", "55\r\n", "KV-7500");
    controller("other model", "134\r\n", "model code 134");
    controller("no line feed, closed", "55\r", "KV-7500");
    controller("refusal", "E1\r\n", "not told, refused with E1");
    const auto stranger = [](const char *title, const QByteArray &answer, const char *shown) {
        QTest::newRow(title) << answer << QString() << text(shown);
    };
    stranger("greeting", "SSH-2.0-x\r\n", "\"SSH-2.0-x\"");
    stranger("four digits", "1234\r\n", "\"1234\"");
    stranger("cut short", "55", "\"55\"");
    stranger("control characters", "\x1b[2J\r\n", R"("\x1b[2J")");
    stranger("nothing", "", "nothing");
    const QByteArray line(64, 'x');
    stranger("endless line", line + line + line, QByteArray('"' + line + '"').constData());
}

void tst_Discover::tcpAnswers()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, model);
    QFETCH(QString, stranger);

    ScriptedPeer peer({{answer, Answer::Close}});
    const ProgramRun run = discover(m_nobody.udp(), QString::number(peer.port()));
    QCOMPARE(peer.finish(), QByteArray("?K\r"));
    const QString notice
        = text("velhost: 127.0.0.1:%1 (TCP) is no controller: it answered ").arg(peer.port());
    QCOMPARE(run.errors,
             asking(14, 14)
                 + (stranger.isEmpty() ? QString() : notice + stranger + u'\n' + nothingFound));
    QCOMPARE(run.output,
             model.isEmpty()
                 ? QString()
                 : tableHead + row("127.0.0.1", peer.port(), "TCP", model.toLatin1().constData()));
    QCOMPARE(run.exitCode, model.isEmpty() ? 1 : 0);
}

void tst_Discover::answerInPieces()
{
    kvsim::SimulatorThread controller;
    QVERIFY(controller.isListening());
    QCOMPARE(controller.addFault("dribble=20"), QString());
    const ProgramRun run = discover(m_nobody.udp(), QString::number(controller.port()));
    QCOMPARE(run.output, tableHead + row("127.0.0.1", controller.port(), "TCP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(controller.faultCounts().constFirst().applied, 1);
}

void tst_Discover::udpAnswers_data()
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

void tst_Discover::udpAnswers()
{
    QFETCH(QList<QByteArray>, answers);
    QFETCH(QString, model);
    QFETCH(QString, strangers);

    const UdpPeer peer(answers);
    const ProgramRun run = discover(QString::number(peer.port()), m_nobody.tcp());
    QCOMPARE(peer.questions(), QList<QByteArray>{"?K\r"});
    const QString notice
        = text("velhost: 127.0.0.1:%1 (UDP) is no controller: it answered ").arg(peer.port());
    QCOMPARE(run.errors, asking(14, 14)
                             + (strangers.isEmpty() ? QString() : notice + strangers + u'\n')
                             + (model.isEmpty() ? nothingFound : QString()));
    QCOMPARE(run.output,
             model.isEmpty()
                 ? QString()
                 : tableHead + row("127.0.0.1", peer.port(), "UDP", model.toLatin1().constData()));
    QCOMPARE(run.exitCode, model.isEmpty() ? 1 : 0);
}

// A datagram from a port that was not asked is no answer, whatever it holds.
void tst_Discover::otherPort()
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
    QCOMPARE(run.errors, asking(14, 14) + nothingFound);
    QCOMPARE(run.exitCode, 1);
}

void tst_Discover::tcpAndUdp()
{
    const ScriptedPeer controller({{"55\r\n", Answer::KeepOpen}});
    const UdpPeer peer({"55\r\n"}, QHostAddress(QHostAddress::LocalHost),
                       static_cast<quint16>(controller.port()));
    const QString port = QString::number(controller.port());
    QCOMPARE(QString::number(peer.port()), port);
    const ProgramRun run = discover(port, port);
    QCOMPARE(run.errors, asking(14, 14));
    QCOMPARE(run.output, tableHead + row("127.0.0.1", controller.port(), "TCP, UDP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
}

// Sorted by number, not by text.
void tst_Discover::severalControllers()
{
    const kvsim::SimulatorThread tenth(QHostAddress(text("127.0.0.10")));
    const kvsim::SimulatorThread second(QHostAddress(text("127.0.0.2")), tenth.port());
    const kvsim::SimulatorThread third(QHostAddress(text("127.0.0.3")));
    const kvsim::SimulatorThread beyond(QHostAddress(text("127.0.0.15")), tenth.port());
    QVERIFY(tenth.isListening() && second.isListening() && third.isListening()
            && beyond.isListening());
    const ProgramRun run
        = discover(m_nobody.udp(), text("%1,%2").arg(tenth.port()).arg(third.port()));
    const auto line = [](const char *address, quint16 port) {
        return text("%1  %2  TCP       KV-7500\n").arg(text(address).leftJustified(10)).arg(port);
    };
    QCOMPARE(run.output, text("Address     Port   Protocol  Model\n")
                             + line("127.0.0.2", second.port()) + line("127.0.0.3", third.port())
                             + line("127.0.0.10", tenth.port()));
    QCOMPARE(run.exitCode, 0);
}

void tst_Discover::json()
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

void tst_Discover::broadcast()
{
    const UdpPeer peer({"55\r\n"}, QHostAddress(text("127.255.255.255")));
    QVERIFY(peer.port() != 0);
    const ProgramRun run = runBesideLoop(
        text(VELHOST_FILE),
        searchArguments(KEYENCE_PLUGIN_FILE, QString::number(peer.port()), m_nobody.tcp(),
                        shortSearch(),
                        {text("--interface"), text("lo"), text("--subnet"), text("127.0.0.1")}));
    QCOMPARE(peer.questions(), QList<QByteArray>{"?K\r"});
    QCOMPARE(run.errors, asking(1, 1));
    QCOMPARE(run.output, tableHead + row("127.0.0.1", peer.port(), "UDP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
}

void tst_Discover::nobody()
{
    for (const char *const format : {"table", "json"}) {
        const ProgramRun run
            = discover(m_nobody.udp(), m_nobody.tcp(), {text("--format"), text(format)});
        QCOMPARE(run.output, QString());
        QCOMPARE(run.errors, asking(14, 14) + nothingFound);
        QCOMPARE(run.exitCode, 1);
    }
}

// At an address of our own alone, as all ports of loopback belong to others, too.
void tst_Discover::wideRange()
{
    const ProgramRun run
        = runBesideLoop(text(VELHOST_FILE),
                        searchArguments(KEYENCE_PLUGIN_FILE, text("1-65535"), text("65535,1-65535"),
                                        {}, {text("--subnet"), text("127.213.7.9")}));
    QCOMPARE(run.errors,
             text("velhost: --udp-ports: \"1-65535\" names more than 64 ports; only the first 64 "
                  "are asked, up to 64\n"
                  "velhost: --tcp-ports: \"65535,1-65535\" names more than 64 ports; only the "
                  "first 64 are asked, up to 63\n"
                  "velhost: asking 1 addresses by UDP at 64 ports, then 1 by TCP at 64, for at "
                  "most 60000 ms\n")
                 + nothingFound);
    QCOMPARE(run.exitCode, 1);
}

void tst_Discover::usageErrors_data()
{
    QTest::addColumn<QStringList>("area");
    QTest::addColumn<QString>("error");

    QTest::newRow("loopback is large")
        << QStringList{text("--interface"), text("lo")}
        << text("velhost: the network 127.0.0.0/8 has 16777214 addresses, more than the 1022 of a "
                "/22; name a part of it with --subnet, or add --force\n");
    QTest::newRow("several, in one go")
        << QStringList{text("--subnet"), text("127.0.0.0/21"), text("--timeout"), text("0")}
        << text("velhost: --timeout: \"0\" is no time; write milliseconds as a whole number from 1 "
                "to 3600000\n"
                "velhost: the network 127.0.0.0/21 has 2046 addresses, more than the 1022 of a "
                "/22; name a part of it with --subnet, or add --force\n");
}

void tst_Discover::usageErrors()
{
    QFETCH(QStringList, area);
    QFETCH(QString, error);

    const ProgramRun run
        = runBesideLoop(text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(),
                                                            m_nobody.tcp(), {}, area));
    QCOMPARE(run.errors, error);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
}

void tst_Discover::noSearchDeclared()
{
    const ProgramRun run = runBesideLoop(
        text(VELHOST_FILE), searchArguments(SCRIPTED_PLUGIN_FILE, m_nobody.udp(), m_nobody.tcp()));
    QCOMPARE(run.errors, text("velhost: the plug-in declares no device search: its device "
                              "parameters lack timeout_ms, network_interface, udp_ports, "
                              "tcp_ports; name another one with --plugin\n"));
    QCOMPARE(run.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_Discover)
#include "tst_discover.moc"
