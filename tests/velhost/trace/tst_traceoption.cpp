#include "kvsimprocess.h"
#include "plantjson.h"
#include "programrun.h"
#include "simulatorthread.h"
#include "testfolder.h"
#include "text.h"

#include <QTest>

// --trace and --trace-file as a user has them.
class tst_TraceOption : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readTable();
    void readJson();
    void suspectInCsv();
    void write_data();
    void write();
    void suspectWrite();
    void lostConnection_data();
    void lostConnection();
    void refused();
    void fileAgain();
    void fileWithoutPrinting();
    void unwritableFile_data();
    void unwritableFile();
    void fullDisk();
    void watch();
};

namespace {

/// The second item has an address that the plug-in refuses: it sends nothing.
QByteArray plantAt(int port)
{
    return plantJson("127.0.0.1", portParameter(port) + R"(, "timeout": "500")",
                     {itemJson("First", "DM100", "1", "Word"), itemJson("Bad", "D100.16"),
                      itemJson("Last", "DM300", "1", "DWord")});
}

/// Runs the command on the plant at that port. The file of a trace is in the folder.
ProgramRun run(const TestFolder &folder, int port, const QString &command)
{
    folder.write(text("plant.json"), plantAt(port));
    return runProgram(text(VELHOST_FILE),
                      command.split(u' ')
                          + QStringList{text("--plugin"), text(KEYENCE_PLUGIN_FILE)},
                      folder.path({}));
}

/// Replaces what is another in each run.
QString settled(QString output)
{
    static const QRegularExpression time(text("[0-9-]{10}T[0-9:]{8}\\.[0-9]{6}Z"));
    static const QRegularExpression wait(text("  [0-9]+\\.[0-9]{3} ms"));
    static const QRegularExpression number(text(R"re("(process|thread|waited_us)":[0-9]+)re"));
    static const QRegularExpression port(text(R"(127\.0\.0\.1:[0-9]+)"));
    return withoutTimes(std::move(output))
        .replace(time, text("T"))
        .replace(wait, text("  W"))
        .replace(number, text(R"("\1":N)"))
        .replace(port, text("PEER"));
}

QString wireLines(const QString &errors)
{
    QString lines;
    const QStringList all = settled(errors).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : all) {
        if (line.startsWith(text("wire: ")))
            lines += line + u'\n';
    }
    return lines;
}

} // namespace

void tst_TraceOption::readTable()
{
    const SimulatorThread simulator;
    const TestFolder folder;
    const ProgramRun result = run(folder, simulator.port(), text("read plant.json --trace"));
    QCOMPARE(
        settled(result.errors),
        text("wire: PEER connect: connected  W\n"
             "log error: Press, cycle 1: [read data] item error from <Bad> :bit number invalid\n"
             "wire: Press/First > RD DM100\\r\n"
             "wire: Press/First < 00100\\r\\n  W\n"
             "wire: Press/Last > RDS DM300 2\\r\n"
             "wire: Press/Last < 00300 00301\\r\\n  W\n"
             "wire: PEER close\n"));
    QCOMPARE(result.exitCode, 1);
}

void tst_TraceOption::readJson()
{
    const SimulatorThread simulator;
    const TestFolder folder;
    const ProgramRun result
        = run(folder, simulator.port(), text("read plant.json --item Last --trace --format json"));
    QCOMPARE(
        settled(result.output),
        text(
            R"json({"type":"wire","time":"T","process":N,"thread":N,"connection":1,"peer":"PEER","event":"connect","outcome":"connected","waited_us":N}
{"type":"wire","time":"T","process":N,"thread":N,"connection":1,"peer":"PEER","event":"sent","bytes":"RDS DM300 2\r","cycle":1,"device":"Press","item":"Last"}
{"type":"wire","time":"T","process":N,"thread":N,"connection":1,"peer":"PEER","event":"received","waited_us":N,"bytes":"00300 00301\r\n","cycle":1,"device":"Press","item":"Last"}
{"type":"value","cycle":1,"time":"T","device":"Press","item":"Last","value":"19726636","error":""}
{"type":"wire","time":"T","process":N,"thread":N,"connection":1,"peer":"PEER","event":"close"}
)json"));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
}

void tst_TraceOption::suspectInCsv()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("extra-word@DM100"), QString());
    const TestFolder folder;
    const ProgramRun result
        = run(folder, simulator.port(), text("read plant.json --item First --trace --format csv"));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
    QCOMPARE(withoutTimes(result.output),
             text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                  "1,T,Press,First,0,,,,2 instead of 1 words\r\n"));
    QVERIFY(wireLines(result.errors)
                .contains(text("wire: Press/First < 00100 65535\\r\\n  W  SUSPECT: 2 instead of 1 "
                               "words\n")));
    QCOMPARE(result.exitCode, 1);
}

void tst_TraceOption::write_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("lines");

    const QString exchange = text("wire: %1 > WRS DM300 2 4464 1\\r\nwire: %1 < OK\\r\\n  W\n");
    const QString read
        = text("wire: Press/Last > RDS DM300 2\\r\nwire: Press/Last < %1\\r\\n  W\n");
    QTest::newRow("with its reads")
        << QString()
        << read.arg(text("00300 00301")) + exchange.arg(text("Press/Last"))
               + read.arg(text("04464 00001"));
    QTest::newRow("alone") << text(" --no-verify") << exchange.arg(text("Press/Last"));
    QTest::newRow("two items: whose command it is, is not known")
        << text(" --no-verify Press/First=5")
        << text("wire: Press > WRS DM300 2 4464 1\\r\nwire: Press < OK\\r\\n  W\n"
                "wire: Press > WR DM100 0005\\r\nwire: Press < OK\\r\\n  W\n");
}

void tst_TraceOption::write()
{
    QFETCH(const QString, options);
    QFETCH(const QString, lines);

    const SimulatorThread simulator;
    const TestFolder folder;
    const ProgramRun result = run(folder, simulator.port(),
                                  text("write plant.json --trace Press/Last=70000") + options);
    QCOMPARE(settled(result.errors),
             text("wire: PEER connect: connected  W\n") + lines + text("wire: PEER close\n"));
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(simulator.word("DM300"), 4464);
    QCOMPARE(simulator.word("DM301"), 1);
}

// The exit code alone tells, and only where somebody looks.
void tst_TraceOption::suspectWrite()
{
    for (const bool isTraced : {false, true}) {
        SimulatorThread simulator;
        QCOMPARE(simulator.addFault("no-terminator@DM300"), QString());
        const TestFolder folder;
        const ProgramRun result = run(folder, simulator.port(),
                                      text("write plant.json Press/Last=70000 --no-verify")
                                          + (isTraced ? text(" --trace") : QString()));
        QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
        QCOMPARE(wireLines(result.errors)
                     .count(text("wire: Press/Last < OK  W  SUSPECT: no line "
                                 "end: cut, or the rest comes later\n")),
                 isTraced ? 1 : 0);
        QCOMPARE(result.exitCode, isTraced ? 1 : 0);
        QCOMPARE(simulator.word("DM300"), 4464);
    }
}

void tst_TraceOption::lostConnection_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QString>("end");

    QTest::newRow("time-out") << QByteArray("silent@DM300")
                              << text("wire: Press/Last timeout  W\nwire: Press close\n");
    QTest::newRow("reset") << QByteArray("reset=before@DM300")
                           << text("wire: Press/Last reset: Connection reset by peer  W\n"
                                   "wire: PEER close\n");
    QTest::newRow("closed") << QByteArray("close=before@DM300")
                            << text("wire: Press/Last closed  W\nwire: PEER close\n");
    QTest::newRow("cut") << QByteArray("close=in@DM300")
                         << text("wire: Press/Last < 00300\\x20  W  SUSPECT: no line end: cut, "
                                 "or the rest comes later\nwire: PEER close\n");
}

// By the last command, so that no other one meets what is left of the connection.
void tst_TraceOption::lostConnection()
{
    QFETCH(const QByteArray, fault);
    QFETCH(const QString, end);

    SimulatorThread simulator;
    QCOMPARE(simulator.addFault(fault), QString());
    const TestFolder folder;
    const ProgramRun result = run(folder, simulator.port(), text("read plant.json --trace"));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
    QCOMPARE(wireLines(result.errors), text("wire: PEER connect: connected  W\n"
                                            "wire: Press/First > RD DM100\\r\n"
                                            "wire: Press/First < 00100\\r\\n  W\n"
                                            "wire: Press/Last > RDS DM300 2\\r\n")
                                           + end);
    QCOMPARE(result.exitCode, 1);
}

// Once at the start, for no device yet, and once in the cycle.
void tst_TraceOption::refused()
{
    int port = 0;
    {
        const SimulatorThread simulator;
        port = simulator.port();
    }
    const TestFolder folder;
    const ProgramRun result = run(folder, port, text("read plant.json --trace"));
    QCOMPARE(settled(result.errors), text("wire: PEER connect: Connection refused  W\n"
                                          "wire: PEER close\n"
                                          "log error: Press, cycle 1: Not connected to PLC\n"
                                          "wire: Press connect: Connection refused  W\n"
                                          "wire: Press close\n"));
    QCOMPARE(result.exitCode, 1);
}

// The file is understood by those that read wire traces, and replayed gives the same lines.
void tst_TraceOption::fileAgain()
{
    SimulatorThread simulator;
    QVERIFY(simulator.setWord("DM100", 4711));
    QCOMPARE(simulator.addFault("short-answer@DM300"), QString());
    const TestFolder folder;
    const QString command = text("read plant.json --trace --trace-file ");
    const ProgramRun result = run(folder, simulator.port(), command + text("site.jsonl"));
    QCOMPARE(result.exitCode, 1);
    QVERIFY(settled(result.output).contains(text("suspect: 1 instead of 2 words\n")));

    const ProgramRun shown
        = runProgram(text(VELHOST_FILE), {text("wire"), text("site.jsonl"), text("--only-suspect")},
                     folder.path({}));
    QCOMPARE(shown.errors, QString());
    QVERIFY2(shown.output.contains(text(" > RDS DM300 2\\r\n")), qPrintable(shown.output));
    QVERIFY2(shown.output.endsWith(text("  SUSPECT: 1 instead of 2 words\n2 answers, 1 suspect\n")),
             qPrintable(shown.output));
    QCOMPARE(shown.exitCode, 1);

    KvsimProcess replaying(
        {text("--port"), text("0"), text("--replay"), folder.path(text("site.jsonl"))});
    const ProgramRun again = run(folder, replaying.port(), command + text("again.jsonl"));
    QCOMPARE(settled(again.errors), settled(result.errors));
    QCOMPARE(settled(again.output), settled(result.output));
    QCOMPARE(settled(QString::fromUtf8(folder.read(text("again.jsonl")))),
             settled(QString::fromUtf8(folder.read(text("site.jsonl")))));
    QVERIFY(replaying.terminate());
}

void tst_TraceOption::fileWithoutPrinting()
{
    const SimulatorThread simulator;
    const TestFolder folder;
    const ProgramRun result = run(folder, simulator.port(),
                                  text("read plant.json --item First --trace-file site.jsonl"));
    QCOMPARE(result.errors, QString());
    QVERIFY(!result.output.contains(text("00100")));
    QCOMPARE(result.exitCode, 0);
    const QByteArray trace = folder.read(text("site.jsonl"));
    QCOMPARE(trace.count('\n'), 4);
    QCOMPARE(trace.count(R"("bytes":"00100\r\n","cycle":1,"device":"Press","item":"First"})"), 1);
}

void tst_TraceOption::unwritableFile_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("error");

    QTest::newRow("no such folder")
        << text("none/site.jsonl")
        << text("the trace none/site.jsonl cannot be written: No such file or directory");
    QTest::newRow("a folder") << text(".") << text("the trace . cannot be written: Is a directory");
    QTest::newRow("the plant, by another name")
        << text("./plant.json")
        << text("the trace would replace the plant file plant.json; name another file");
}

// Nothing is contacted.
void tst_TraceOption::unwritableFile()
{
    QFETCH(const QString, file);
    QFETCH(const QString, error);

    const SimulatorThread simulator;
    const TestFolder folder;
    const ProgramRun result
        = run(folder, simulator.port(), text("read plant.json --trace-file ") + file);
    QCOMPARE(result.errors, text("velhost: ") + error + u'\n');
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(static_cast<int>(simulator.counters().clients), 0);
}

// The values are shown all the same.
void tst_TraceOption::fullDisk()
{
    const SimulatorThread simulator;
    const TestFolder folder;
    const ProgramRun result = run(folder, simulator.port(),
                                  text("read plant.json --item First --trace-file /dev/full"));
    QCOMPARE(result.errors,
             text("velhost: the trace /dev/full cannot be written: No space left on device\n"));
    QVERIFY2(result.output.contains(text("  Press   First  100\n")), qPrintable(result.output));
    QCOMPARE(result.exitCode, 1);
}

// It judges without being told to; --trace only shows what it judges.
void tst_TraceOption::watch()
{
    for (const QString &option : {QString(), text(" --trace")}) {
        SimulatorThread simulator;
        QCOMPARE(simulator.addFault("empty@DM100@nth=1"), QString());
        const TestFolder folder;
        const ProgramRun result
            = run(folder, simulator.port(),
                  text("watch plant.json --item First --for 1 --interval 100") + option);
        QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
        QVERIFY2(result.output.contains(text("suspect: 0 instead of 1 words\n")),
                 qPrintable(result.output));
        const QString table = result.errors.mid(result.errors.indexOf(text("Device  Cycles")));
        const QStringList header = table.section(u'\n', 0, 0).simplified().split(u' ');
        const QStringList summary = table.section(u'\n', 1, 1).simplified().split(u' ');
        QCOMPARE(header.indexOf(text("Suspect")), 6);
        QCOMPARE(summary.value(6), text("1"));
        const QString mark = text("wire: Press/First < \\r\\n  W  SUSPECT: 0 instead of 1 words\n");
        QCOMPARE(settled(result.errors).count(mark), option.isEmpty() ? 0 : 1);
        QCOMPARE(result.exitCode, 1);
    }
}

QTEST_GUILESS_MAIN(tst_TraceOption)
#include "tst_traceoption.moc"
