#include "fullqueue.h"
#include "loopback.h"
#include "scriptedpeer.h"
#include "simulatorthread.h"
#include "tracedrun.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <unistd.h>

// What is written about each thing that a host does with its connections.
class tst_TraceEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void calls_data();
    void calls();
    void faults_data();
    void faults();
    void refusedConnection();
    void connectionNotAnswered();
    void waits();
    void longTransfer();
    void ports_data();
    void ports();
};

namespace {

const char *const connected = R"("connect","outcome":"connected","waited_us":N)";
const char *const sent = R"("sent","bytes":"RD D7\r")";
const char *const received = R"("received","waited_us":N,"bytes":"00007\r\n")";
const char *const closing = R"("close")";

// Runs the client without the library and with it. What the host sees must be the same.
QStringList linesOfBoth(int port, const QStringList &actions)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    const ProgramRun plain = runClient(port, actions, plainEnvironment());
    const ProgramRun traced = runClient(port, actions, tracedEnvironment(tracing(file, port)));
    if (plain.exitCode != 0 || plain.output.isEmpty())
        return {text("the client fails: ") + plain.errors};
    if (traced.output != plain.output || traced.errors != plain.errors
        || traced.exitCode != plain.exitCode)
        return {text("the host sees ") + traced.output + traced.errors + text(" instead of ")
                + plain.output + plain.errors};
    return linesOf(file, port);
}

} // namespace

void tst_TraceEvents::calls_data()
{
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QStringList>("lines");

    const QString send = text("send=RD D7\r");
    const QStringList all = tracedLines({connected, sent, received, closing});
    for (const char *const call : {"send", "write"})
        QTest::addRow("%s", call) << QStringList{text("connect"), text(call) + text("=RD D7\r"),
                                                 text("poll=10000"), text("recv"), text("close")}
                                  << all;
    for (const char *const call : {"recv", "read"})
        QTest::addRow("%s", call) << QStringList{text("connect"), send, text(call), text("close")}
                                  << all;
    QTest::newRow("what is only looked at is not received")
        << QStringList{text("connect"), send, text("poll=10000"), text("peek"), text("recv")}
        << tracedLines({connected, sent, received});
    QTest::newRow("an answer in two pieces")
        << QStringList{text("connect"), send, text("poll=10000"), text("recv=3"), text("recv")}
        << tracedLines({connected, sent, R"("received","waited_us":N,"bytes":"000")",
                        R"("received","waited_us":N,"bytes":"07\r\n")"});
    QTest::newRow("connecting without waiting, then the error is asked for")
        << QStringList{text("begin"), text("writable=10000"), text("error"), text("blocking"),
                       send,          text("recv"),           text("close")}
        << all;
    QTest::newRow("connecting without waiting, then only waited for")
        << QStringList{text("begin"), text("writable=10000"), text("close")}
        << tracedLines({connected, closing});
    QTest::newRow("connecting without waiting, then asked again")
        << QStringList{text("begin"), text("again"), text("close")}
        << tracedLines({connected, closing});
    QTest::newRow("the host keeps the connection to its end")
        << QStringList{text("connect"), send, text("recv")}
        << tracedLines({connected, sent, received});
}

void tst_TraceEvents::calls()
{
    QFETCH(const QStringList, actions);
    QFETCH(const QStringList, lines);
    const SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    QCOMPARE(linesOfBoth(simulator.port(), actions), lines);
}

void tst_TraceEvents::faults_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QStringList>("lines");

    const QStringList ask{text("connect"), text("send=RD D7\r"), text("poll=10000"), text("recv")};
    const QStringList askInVain{text("connect"), text("send=RD D7\r"), text("poll=20")};
    QTest::newRow("the peer closes") << QByteArray("close=before") << ask
                                     << tracedLines({connected, sent, R"("closed","waited_us":N)"});
    QTest::newRow("the peer resets")
        << QByteArray("reset=before") << ask
        << tracedLines(
               {connected, sent, R"("reset","outcome":"Connection reset by peer","waited_us":N)"});
    QTest::newRow("the peer is silent")
        << QByteArray("silent") << askInVain
        << tracedLines({connected, sent, R"("timeout","waited_us":N)"});
    QTest::newRow("a look is no wait")
        << QByteArray("silent")
        << QStringList{text("connect"), text("send=RD D7\r"), text("poll=0"), text("close")}
        << tracedLines({connected, sent, closing});
    QTest::newRow("a wait for nothing that was asked")
        << QByteArray("silent") << QStringList{text("connect"), text("poll=20"), text("close")}
        << tracedLines({connected, closing});
    QTest::newRow("sending to a peer that has reset")
        << QByteArray("reset=before") << ask + QStringList{text("send=RD D8\r")}
        << tracedLines({connected, sent,
                        R"("reset","outcome":"Connection reset by peer","waited_us":N)",
                        R"("reset","outcome":"Broken pipe","waited_us":N)"});
}

void tst_TraceEvents::faults()
{
    QFETCH(const QByteArray, fault);
    QFETCH(const QStringList, actions);
    QFETCH(const QStringList, lines);
    SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    QCOMPARE(simulator.addFault(fault), QString());
    QCOMPARE(linesOfBoth(simulator.port(), actions), lines);
    const bool isAsked = actions.size() > 1 && actions.at(1).startsWith(u"send");
    simulator.settle();
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(isAsked ? 2 : 0));
}

void tst_TraceEvents::refusedConnection()
{
    int port = 0;
    ::close(listenOnLoopback(1, &port));
    const char *const refused = R"("connect","outcome":"Connection refused","waited_us":N)";
    QCOMPARE(linesOfBoth(port, {text("connect"), text("close")}), tracedLines({refused, closing}));
    QCOMPARE(
        linesOfBoth(port, {text("begin"), text("writable=10000"), text("error"), text("close")}),
        tracedLines({refused, closing}));
}

void tst_TraceEvents::connectionNotAnswered()
{
    const FullQueue queue;
    QCOMPARE(linesOfBoth(queue.port(), {text("begin"), text("writable=20"), text("close")}),
             tracedLines({R"("timeout","waited_us":N)", closing}));
}

// The time is that of the wait, in microseconds.
void tst_TraceEvents::waits()
{
    SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    QCOMPARE(simulator.addFault("delay=50"), QString());
    for (const QStringList &waiting : {QStringList{text("poll=10000")}, QStringList()}) {
        const QTemporaryDir folder;
        const QString file = folder.filePath(text("trace"));
        const ProgramRun run = runClient(simulator.port(),
                                         QStringList{text("connect"), text("send=RD D7\r")}
                                             + waiting + QStringList{text("recv")},
                                         tracedEnvironment(tracing(file, simulator.port())));
        QCOMPARE(run.exitCode, 0);
        const QByteArray line = contentOf(file).split('\n').value(2);
        const qint64 waited = QString::fromLatin1(line)
                                  .section(text("\"waited_us\":"), 1)
                                  .section(u',', 0, 0)
                                  .toLongLong();
        QVERIFY2(waited >= 45000 && waited < 10000000, line.constData());
    }
}

// Every byte comes through, and a transfer that is too long for a line has several.
void tst_TraceEvents::longTransfer()
{
    QByteArray answer("\r");
    for (int i = 255; i >= 0; --i)
        answer += static_cast<char>(i);
    ScriptedPeer peer(script({answer, QByteArray(70000, 'x')}));
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    const ProgramRun run = runClient(peer.port(),
                                     {text("connect"), text("bytes"), text("poll=10000"),
                                      text("recv=257"), text("send=\r"), text("all=70000")},
                                     tracedEnvironment(tracing(file, peer.port())));
    QCOMPARE(run.exitCode, 0);
    QByteArray all;
    int longest = 0;
    const QByteArrayList lines = contentOf(file).split('\n');
    for (const QByteArray &line : lines) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object.value(text("event")) != QJsonValue(text("received")))
            continue;
        const QByteArray bytes = object.value(text("bytes")).toString().toLatin1();
        all += bytes;
        longest = qMax(longest, bytes.size());
    }
    QCOMPARE(all, answer + QByteArray(70000, 'x'));
    QVERIFY(longest <= 65536);
    QCOMPARE(QJsonDocument::fromJson(lines.value(1)).object().value(text("bytes")).toString(), [] {
        QString bytes;
        for (int i = 0; i < 256; ++i)
            bytes += QChar(i);
        return bytes;
    }());
}

void tst_TraceEvents::ports_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<int>("lines");

    QTest::newRow("the only one") << text("%1") << 1;
    QTest::newRow("the last of three") << text("1,65535,%1") << 1;
    QTest::newRow("the first of two") << text("%1,1") << 1;
    QTest::newRow("another") << text("1") << 0;
    QTest::newRow("the usual one") << QString() << 0;
}

void tst_TraceEvents::ports()
{
    QFETCH(const QString, list);
    QFETCH(const int, lines);
    const SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    QMap<QString, QString> settings{{text("VEL_TRACE"), file}};
    if (!list.isEmpty())
        settings.insert(text("VEL_TRACE_PORTS"),
                        list.contains(u'%') ? list.arg(simulator.port()) : list);
    const ProgramRun run
        = runClient(simulator.port(), {text("connect")}, tracedEnvironment(settings));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QString());
    QCOMPARE(linesOf(file, simulator.port()).size(), lines);
}

QTEST_GUILESS_MAIN(tst_TraceEvents)
#include "tst_traceevents.moc"
