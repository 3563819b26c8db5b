#include "plantjson.h"
#include "simulatorthread.h"
#include "tracedrun.h"
#include "writefile.h"

#include <QTest>

// The library in a host that is there already, with the plug-in.
class tst_TracedVelhost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void reads_data();
    void reads();
};

void tst_TracedVelhost::initTestCase()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer's library must be the first that is loaded.");
#endif
}

void tst_TracedVelhost::reads_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("lines");

    const char *const connected = R"("connect","outcome":"connected","waited_us":N)";
    const char *const firstSent = R"("sent","bytes":"RD D7\r")";
    const char *const first = R"("received","waited_us":N,"bytes":"00007\r\n")";
    const char *const secondSent = R"("sent","bytes":"RDS D8 2\r")";
    const char *const second = R"("received","waited_us":N,"bytes":"00008 00009\r\n")";
    const char *const close = R"("close")";
    const auto firstAnswered = [&](const char *answer) {
        return tracedLines({connected, firstSent, answer, secondSent, second, close});
    };
    const auto secondAnswered = [&](const char *event) {
        return tracedLines({connected, firstSent, first, secondSent, event, close});
    };

    QTest::newRow("all well") << QByteArray() << 0 << firstAnswered(first);
    QTest::newRow("no digits: a wrong value without an error")
        << QByteArray("not-a-number@D7") << 0
        << firstAnswered(R"("received","waited_us":N,"bytes":"*****\r\n")");
    QTest::newRow("a refusal") << QByteArray("refuse=E1@D7") << 1
                               << firstAnswered(R"("received","waited_us":N,"bytes":"E1\r\n")");
    QTest::newRow("no answer") << QByteArray("silent@D7") << 1
                               << tracedLines(
                                      {connected, firstSent, R"("timeout","waited_us":N)", close});
    QTest::newRow("the controller closes")
        << QByteArray("close=before@D8") << 1 << secondAnswered(R"("closed","waited_us":N)");
    QTest::newRow("the controller resets")
        << QByteArray("reset=before@D8") << 1
        << secondAnswered(R"("reset","outcome":"Connection reset by peer","waited_us":N)");
}

void tst_TracedVelhost::reads()
{
    QFETCH(const QByteArray, fault);
    QFETCH(const int, exitCode);
    QFETCH(const QStringList, lines);
    SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    QVERIFY(fault.isEmpty() || simulator.addFault(fault).isEmpty());
    const QTemporaryDir folder;
    const QString plant = folder.filePath(text("plant.json"));
    QVERIFY(writeFile(
        plant, plantJson("127.0.0.1", portParameter(simulator.port()) + R"(, "timeout": "200")",
                         {itemJson("One", "D7"), itemJson("Two", "D8", "1", "Long")})));
    const QString file = folder.filePath(text("trace"));
    const QStringList arguments{text("--plugin"), text(KEYENCE_PLUGIN_FILE), text("read"), plant};
    const ProgramRun plain
        = runProgram(text(VELHOST_FILE), arguments, folder.path(), plainEnvironment());
    const ProgramRun traced = runProgram(text(VELHOST_FILE), arguments, folder.path(),
                                         tracedEnvironment(tracing(file, simulator.port())));
    QCOMPARE(plain.exitCode, exitCode);
    QCOMPARE(traced.exitCode, plain.exitCode);
    QCOMPARE(withoutTimes(traced.output), withoutTimes(plain.output));
    QCOMPARE(traced.errors, plain.errors);
    QCOMPARE(linesOf(file, simulator.port()), lines);
    if (!fault.isEmpty())
        QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(2));
}

QTEST_GUILESS_MAIN(tst_TracedVelhost)
#include "tst_tracedvelhost.moc"
