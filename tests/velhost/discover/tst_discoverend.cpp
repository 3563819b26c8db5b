#include "fullqueue.h"
#include "scriptedpeer.h"
#include "searchrun.h"
#include "simulatorthread.h"
#include "terminalrun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// How `discover` ends: by a signal, by its time-out, without free sockets. And its progress line.

namespace {

/// An area of eight million addresses, which no test searches to the end. The asked port is bound
/// at 127.0.0.1, so no other program can listen at it on all addresses.
QStringList largeArea()
{
    return {text("--interface"), text("lo"), text("--subnet"), text("127.0.0.0/9"),
            text("--force")};
}

} // namespace

class tst_DiscoverEnd : public QObject
{
    Q_OBJECT

    SilentPort m_nobody;

private Q_SLOTS:
    void signal_data();
    void signal();
    void timeLimit();
    void silentController();
    void opensNoConnection();
    void outOfSockets_data();
    void outOfSockets();
    void progressLine();
};

void tst_DiscoverEnd::signal_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("SIGINT") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("SIGHUP") << SIGHUP << 129;
}

// The controller's connection is closed when its answer has been taken.
void tst_DiscoverEnd::signal()
{
    QFETCH(int, number);
    QFETCH(int, exitCode);

    const QTemporaryDir folder;
    const QString plant = folder.filePath(text("plant.json"));
    ScriptedPeer controller({{"55\r\n", Answer::KeepOpen}});
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    process.start(text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(),
                                                      QString::number(controller.port()),
                                                      {text("--plant"), plant}, largeArea()));
    QVERIFY(controller.waitForConnections(1));
    QCOMPARE(controller.finish(), QByteArray("?K\r"));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), number), 0);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), exitCode);
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()),
             text("Address    Port   Protocol  Model\n127.0.0.1  %1  TCP       KV-7500\n")
                 .arg(controller.port()));
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
             text("velhost: asking 1 addresses by UDP at 1 ports, then 8388606 by TCP at 1, for at "
                  "most 60000 ms\n"
                  "velhost: the search was ended early; there may be more controllers\n"));
    QVERIFY(QFile::exists(plant));
}

void tst_DiscoverEnd::timeLimit()
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    const ProgramRun run = runBesideLoop(
        text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(), m_nobody.tcp(),
                                            {text("--timeout"), text("800")}, largeArea()));
    const qint64 elapsed = sinceStart.elapsed();
    QVERIFY2(elapsed >= 800 && elapsed < 10000, qPrintable(QString::number(elapsed)));
    QCOMPARE(run.exitCode, 1);
    const QRegularExpression progress(
        text("\\Avelhost: ([0-9]+) of 8388606 questions by TCP were not asked to the end: the "
             "time was over\\z"));
    const QRegularExpressionMatch match = progress.match(run.errors.section(u'\n', 1, 1));
    QVERIFY2(match.hasMatch(), qPrintable(run.errors));
    const int unasked = match.captured(1).toInt();
    QVERIFY2(unasked > 0 && unasked < 8388606, qPrintable(match.captured(1)));
}

// A controller that accepts but does not answer: the probe ends after its own time-out, not with
// the search.
void tst_DiscoverEnd::silentController()
{
    SimulatorThread controller;
    QVERIFY(controller.isListening());
    QCOMPARE(controller.addFault("silent"), QString());
    const ProgramRun run
        = runBesideLoop(text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(),
                                                            QString::number(controller.port())));
    QCOMPARE(controller.faultCounts().constFirst().applied, 1);
    QCOMPARE(run.errors.section(u'\n', 1, 1),
             text("velhost: 127.0.0.1:%1 (TCP) is no controller: it answered nothing")
                 .arg(controller.port()));
    QCOMPARE(run.exitCode, 1);
}

void tst_DiscoverEnd::opensNoConnection()
{
    const FullQueue queue;
    const ProgramRun run
        = runBesideLoop(text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(),
                                                            QString::number(queue.port())));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.errors.count(u'\n'), 2);
    QVERIFY(run.errors.section(u'\n', 1).startsWith(text("velhost: no controller found; check")));
    QCOMPARE(run.exitCode, 1);
}

void tst_DiscoverEnd::outOfSockets_data()
{
    QTest::addColumn<int>("descriptors");
    QTest::addColumn<bool>("isEnough");

    // 128 probes and the other descriptors of the program.
    QTest::newRow("enough for all at once") << 160 << true;
    QTest::newRow("too few") << 60 << false;
}

void tst_DiscoverEnd::outOfSockets()
{
    QFETCH(int, descriptors);
    QFETCH(bool, isEnough);

#ifdef __SANITIZE_ADDRESS__
    if (!isEnough)
        QSKIP("The sanitizer's own checks need a file descriptor and fail when there is none.");
#endif
    const ProgramRun run = runBesideLoop(
        text("/bin/sh"),
        QStringList{text("-c"), text(R"(ulimit -n %1; exec "$0" "$@")").arg(descriptors),
                    text(VELHOST_FILE)}
            + searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(), m_nobody.tcp(), shortSearch(),
                              {text("--subnet"), text("127.0.0.0/22")}));
    const QRegularExpression gap(text("questions by TCP were not asked to the end: [^\n]*"));
    QCOMPARE(gap.match(run.errors).captured(),
             isEnough ? QString()
                      : text("questions by TCP were not asked to the end: Out of resources"));
    QCOMPARE(run.exitCode, 1);
}

void tst_DiscoverEnd::progressLine()
{
    TerminalRun run(
        text(VELHOST_FILE),
        searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(), m_nobody.tcp(), shortSearch()), 25, 80,
        plainEnvironment());
    QCOMPARE(run.finish(), 1);
    const QByteArray &shown = run.output();
    const QList<QByteArray> states = shown.split('\r');
    QVERIFY2(states.contains("0 of 14 asked by TCP, 0 controllers found\x1b[K"), shown.constData());
    // The progress line is cleared before the next message.
    QVERIFY2(states.contains(
                 "\x1b[Kvelhost: no controller found; check that it has power and an address in "
                 "this network, that its Host Link port is among those asked, and that no "
                 "firewall is between"),
             shown.constData());
}

QTEST_GUILESS_MAIN(tst_DiscoverEnd)
#include "tst_discoverend.moc"
