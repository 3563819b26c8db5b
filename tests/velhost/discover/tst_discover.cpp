#include "discoverrun.h"
#include "kvsimprocess.h"
#include "scriptedpeer.h"
#include "simulatorthread.h"
#include "udppeer.h"

#include <QHostAddress>
#include <QTest>

// `discover`, mostly by TCP: what it asks, what counts as a controller, which options it refuses.

class tst_Discover : public QObject
{
    Q_OBJECT

    SilentPort m_nobody;

private Q_SLOTS:
    void tcpAnswers_data();
    void tcpAnswers();
    void answerInPieces();
    void tcpAndUdp();
    void udpAnswersTcpDoesNot();
    void controlPort();
    void severalControllers();
    void nothingAnswers();
    void wideRange();
    void usageErrors_data();
    void usageErrors();
    void noSearchDeclared();
};

void tst_Discover::tcpAnswers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("nonController");

    const auto controller = [](const char *title, const char *answer, const char *model) {
        QTest::newRow(title) << QByteArray(answer) << text(model) << QString();
    };
    controller("known model", "55\r\n", "KV-7500");
    controller("other model", "134\r\n", "model code 134");
    controller("no line feed, closed", "55\r", "KV-7500");
    controller("refusal", "E1\r\n", "not told, refused with E1");
    const auto nonController = [](const char *title, const QByteArray &answer, const char *shown) {
        QTest::newRow(title) << answer << QString() << text(shown);
    };
    nonController("greeting", "SSH-2.0-x\r\n", "\"SSH-2.0-x\"");
    nonController("four digits", "1234\r\n", "\"1234\"");
    nonController("cut short", "55", "\"55\"");
    nonController("control characters", "\x1b[2J\r\n", R"("\x1b[2J")");
    nonController("nothing", "", "nothing");
    const QByteArray line(64, 'x');
    nonController("endless line", line + line + line, QByteArray('"' + line + '"').constData());
}

void tst_Discover::tcpAnswers()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, model);
    QFETCH(QString, nonController);

    ScriptedPeer peer({{answer, Answer::Close}});
    const ProgramRun run = discover(m_nobody.udp(), QString::number(peer.port()));
    QCOMPARE(peer.finish(), QByteArray("?K\r"));
    const QString notice
        = text("velhost: 127.0.0.1:%1 (TCP) is no controller: it answered ").arg(peer.port());
    QCOMPARE(run.errors,
             searchMessage(14, 14)
                 + (nonController.isEmpty() ? QString()
                                            : notice + nonController + u'\n' + nothingFound));
    QCOMPARE(run.output, model.isEmpty() ? QString()
                                         : tableHead
                                               + tableRow("127.0.0.1", peer.port(), "TCP",
                                                          model.toLatin1().constData()));
    QCOMPARE(run.exitCode, model.isEmpty() ? 1 : 0);
}

void tst_Discover::answerInPieces()
{
    SimulatorThread controller;
    QVERIFY(controller.isListening());
    QCOMPARE(controller.addFault("dribble=20"), QString());
    const ProgramRun run = discover(m_nobody.udp(), QString::number(controller.port()));
    QCOMPARE(run.output, tableHead + tableRow("127.0.0.1", controller.port(), "TCP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(controller.faultCounts().constFirst().applied, 1);
}

void tst_Discover::tcpAndUdp()
{
    const ScriptedPeer controller({{"55\r\n", Answer::KeepOpen}});
    const UdpPeer peer({"55\r\n"}, QHostAddress(QHostAddress::LocalHost),
                       static_cast<quint16>(controller.port()));
    const QString port = QString::number(controller.port());
    QCOMPARE(QString::number(peer.port()), port);
    const ProgramRun run = discover(port, port);
    QCOMPARE(run.errors, searchMessage(14, 14));
    QCOMPARE(run.output,
             tableHead + tableRow("127.0.0.1", controller.port(), "TCP, UDP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
}

// What answers as a controller by one protocol is no stranger by the other.
void tst_Discover::udpAnswersTcpDoesNot()
{
    ScriptedPeer silent({{"", Answer::Close}});
    const UdpPeer peer({"55\r\n"}, QHostAddress(QHostAddress::LocalHost),
                       static_cast<quint16>(silent.port()));
    const QString port = QString::number(silent.port());
    QCOMPARE(QString::number(peer.port()), port);
    const ProgramRun run = discover(port, port);
    QCOMPARE(silent.finish(), QByteArray("?K\r"));
    QCOMPARE(run.errors, searchMessage(14, 14));
    QCOMPARE(run.output, tableHead + tableRow("127.0.0.1", silent.port(), "UDP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
}

// The simulator's own control port is neither a controller nor a stranger.
void tst_Discover::controlPort()
{
    KvsimProcess simulator({text("--port"), text("0"), text("--control"), text("0")}, 2);
    QVERIFY(simulator.port() != 0 && simulator.port(1) != 0);
    const ProgramRun run
        = runBesideLoop(text(VELHOST_FILE),
                        searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(),
                                        text("%1,%2").arg(simulator.port()).arg(simulator.port(1)),
                                        shortSearch(), {text("--subnet"), text("127.0.0.1")}));
    QCOMPARE(run.errors, text("velhost: asking 1 addresses by UDP at 1 ports, then 1 by TCP at 2, "
                              "for at most 1600 ms\n"));
    QCOMPARE(run.output, tableHead + tableRow("127.0.0.1", simulator.port(), "TCP", "KV-7500"));
    QCOMPARE(run.exitCode, 0);
    QVERIFY(simulator.terminate());
}

// Sorted by number, not by text.
void tst_Discover::severalControllers()
{
    const SimulatorThread tenth(QHostAddress(text("127.0.0.10")));
    const SimulatorThread second(QHostAddress(text("127.0.0.2")), tenth.port());
    const SimulatorThread third(QHostAddress(text("127.0.0.3")));
    const SimulatorThread beyond(QHostAddress(text("127.0.0.15")), tenth.port());
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

void tst_Discover::nothingAnswers()
{
    for (const char *const format : {"table", "json"}) {
        const ProgramRun run
            = discover(m_nobody.udp(), m_nobody.tcp(), {text("--format"), text(format)});
        QCOMPARE(run.output, QString());
        QCOMPARE(run.errors, searchMessage(14, 14) + nothingFound);
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
