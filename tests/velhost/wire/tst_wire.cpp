#include "simulatorthread.h"
#include "tracedrun.h"
#include "writefile.h"

#include <QTest>

// velhost wire, with traces of the real library.
class tst_Wire : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faults_data();
    void faults();
    void garbage();
    void everyEvent();
    void laterRun();
    void json();
    void brokenFile_data();
    void brokenFile();
};

namespace {

// The host asks for D7, D100, D8 and D9, takes each receive for one answer, and writes D5.
QString recordedTrace(const QTemporaryDir &folder, const SimulatorThread &simulator)
{
    QStringList actions{text("connect")};
    for (const char *const command : {"RD D7\r", "RD D100\r", "RD D8\r", "RD D9\r", "WR D5 1\r"})
        actions += {text("send=") + text(command), text("poll=10000"), text("recv")};
    const QString file = folder.filePath(text("trace"));
    const ProgramRun run
        = runClient(simulator.port(), actions, tracedEnvironment(tracing(file, simulator.port())));
    return run.exitCode == 0 ? file : QString();
}

ProgramRun wire(const QString &file, const QStringList &options = {})
{
    return runProgram(text(VELHOST_FILE), QStringList{text("wire"), file} + options,
                      QDir::tempPath());
}

// The lines without time, connection, peer and wait.
QStringList shownLines(const QString &output)
{
    static const QRegularExpression head(
        text(R"(^[0-9-]{10}T[0-9:]{8}\.[0-9]{6}Z #1 127\.0\.0\.1:[0-9]+ )"));
    static const QRegularExpression wait(text(R"(  [0-9]+\.[0-9]{3} ms)"));
    QStringList lines = output.split(u'\n', Qt::SkipEmptyParts);
    for (QString &line : lines)
        line.remove(head).remove(wait);
    return lines;
}

QByteArray line(const QByteArray &process, const QByteArray &members)
{
    return R"({"time":"2026-11-22T09:14:35.123456Z","process":)" + process
           + R"(,"thread":2,"connection":1,"peer":"10.0.0.1:8501",)" + members + "}\n";
}

} // namespace

void tst_Wire::faults_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QStringList>("suspects");

    const QString command = text("> RD D100\\r");
    const auto row = [&](const char *fault, const char *answer, const char *verdict) {
        QTest::newRow(fault) << QByteArray(
            fault) << QStringList{command, u"< " + text(answer) + u"  SUSPECT: " + text(verdict)};
    };
    const char *const cut = "no line end: cut, or the rest comes later";
    for (const char *const fault : {"", "delay=5", "late=5", "refuse=E0"})
        QTest::newRow(*fault == '\0' ? "none" : fault) << QByteArray(fault) << QStringList();
    row("split=4,300", "0010", cut);
    row("dribble=20", "0", cut);
    row("no-terminator", "00100", cut);
    row("empty", "\\r\\n", "0 instead of 1 words");
    row("nul", R"(00\x0000\r\n)", R"("00\x0000" is not five digits)");
    row("long=19", "00100 00100 00100\\r\\n", "3 instead of 1 words");
    row("short-answer", "\\r\\n", "0 instead of 1 words");
    row("extra-word", "00100 65535\\r\\n", "2 instead of 1 words");
    row("not-a-number", "*****\\r\\n", R"("*****" is not five digits)");
    row("duplicate", R"(00100\r\n00100\r\n)", "2 lines: what is not of this answer came first");
    row("previous-answer", R"(00007\r\n)",
        R"(not "00100" as expected: the answer to another command?)");
    row("close=in", "001", cut);
}

void tst_Wire::faults()
{
    QFETCH(const QByteArray, fault);
    QFETCH(const QStringList, suspects);
    SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    if (!fault.isEmpty())
        QCOMPARE(simulator.addFault(fault + "@D100"), QString());
    const QTemporaryDir folder;
    const QString file = recordedTrace(folder, simulator);
    const ProgramRun run = wire(file, {text("--only-suspect"), text("--self-addressed")});
    QCOMPARE(run.errors, QString());
    QCOMPARE(
        shownLines(run.output).mid(0, 2).join(u'\n'),
        (suspects.isEmpty() ? QStringList{text("5 answers, 0 suspect")} : suspects).join(u'\n'));
    QCOMPARE(run.exitCode, suspects.isEmpty() ? 0 : 1);
    if (!fault.isEmpty())
        QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
}

// The simulator's random bytes are others in each run.
void tst_Wire::garbage()
{
    SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    QCOMPARE(simulator.addFault("garbage=20@D100"), QString());
    const QTemporaryDir folder;
    const ProgramRun run = wire(recordedTrace(folder, simulator));
    QVERIFY2(run.output.contains(u" is not five digits\n"), qPrintable(run.output));
    QVERIFY(run.output.endsWith(u"\n5 answers, 1 suspect\n"));
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
}

void tst_Wire::everyEvent()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    QVERIFY(writeFile(file,
                      line("1", R"("event":"connect","outcome":"connected","waited_us":412)")
                          + line("1", R"("event":"sent","bytes":"RD D7\r")")
                          + line("1", R"("event":"received","waited_us":1502,"bytes":"E0\r\n")")
                          + line("1", R"("event":"timeout","waited_us":2000000)")
                          + line("1", R"("event":"closed","waited_us":3)")
                          + line("1", R"("event":"reset","outcome":"Broken pipe","waited_us":0)")
                          + line("1", R"("event":"close")") + line("1", R"("event":"not known")")));
    const ProgramRun run = wire(file);
    QCOMPARE(run.errors, QString());
    const QString head = text("2026-11-22T09:14:35.123456Z #1 10.0.0.1:8501 ");
    QCOMPARE(
        run.output,
        head + text("connect: connected  0.412 ms\n") + head + text("> RD D7\\r\n") + head
            + text(
                "< E0\\r\\n  1.502 ms  refused with E0: the device or its number does not exist\n")
            + head + text("timeout  2000.000 ms\n") + head + text("closed  0.003 ms\n") + head
            + text("reset: Broken pipe  0.000 ms\n") + head + text("close\n") + head
            + text("not known\n") + text("1 answers, 0 suspect\n"));
    QCOMPARE(run.exitCode, 0);
}

// The same number is another connection in another process, and behind another connect.
void tst_Wire::laterRun()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    const QByteArray connect = R"("event":"connect","outcome":"connected","waited_us":0)";
    const QByteArray sent = R"("event":"sent","bytes":"RD D7\r")";
    QVERIFY(writeFile(file,
                      line("1", connect) + line("2", connect) + line("1", sent) + line("2", sent)
                          + line("1", connect)
                          + line("2", R"("event":"received","waited_us":0,"bytes":"00007\r\n")")
                          + line("1", R"("event":"received","waited_us":0,"bytes":"00007\r\n")")));
    const ProgramRun run = wire(file);
    QStringList numbers;
    const QStringList lines = run.output.split(u'\n').mid(0, 7);
    for (const QString &shown : lines)
        numbers.append(shown.section(u' ', 1, 1));
    QCOMPARE(numbers, (QStringList{text("#1"), text("#2"), text("#1"), text("#2"), text("#3"),
                                   text("#2"), text("#3")}));
    QVERIFY(run.output.endsWith(text("  SUSPECT: nothing was asked: the rest of an answer, or a "
                                     "late one\n2 answers, 1 suspect\n")));
}

void tst_Wire::json()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    QVERIFY(
        writeFile(file, line("1", R"("event":"sent","bytes":"RD D7\r")")
                            + line("1", R"("event":"received","waited_us":1502,"bytes":"\r\n")")));
    const ProgramRun run = wire(file, {text("--format"), text("json")});
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.output,
             text(R"({"type":"wire","time":"2026-11-22T09:14:35.123456Z","process":1,"thread":2,)"
                  R"("connection":1,"peer":"10.0.0.1:8501","event":"sent","bytes":"RD D7\r"})"
                  "\n"
                  R"({"type":"wire","time":"2026-11-22T09:14:35.123456Z","process":1,"thread":2,)"
                  R"("connection":1,"peer":"10.0.0.1:8501","event":"received","waited_us":1502,)"
                  R"("bytes":"\r\n","suspect":"0 instead of 1 words"})"
                  "\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Wire::brokenFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("exitCode");

    const QByteArray good = line("1", R"("event":"close")");
    QTest::newRow("the last line is cut")
        << good + good.left(50) << text(":2: warning: the last line is cut") << 0;
    QTest::newRow("a line that is none")
        << good + "hello\n" + good << text(":2: not valid JSON: illegal value") << 2;
}

void tst_Wire::brokenFile()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, error);
    QFETCH(const int, exitCode);
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    QVERIFY(writeFile(file, content));
    const ProgramRun run = wire(file);
    QCOMPARE(run.errors, text("velhost: ") + file + error + text("\n"));
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(run.output.count(u'\n'), exitCode == 0 ? 2 : 1);
}

QTEST_GUILESS_MAIN(tst_Wire)
#include "tst_wire.moc"
