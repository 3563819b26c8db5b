#include "plantjson.h"
#include "programrun.h"
#include "scriptedpeer.h"
#include "simulatorthread.h"
#include "text.h"
#include "writefile.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>

// Every fault of the simulator, read without and with a trace: what the user gets is the same, and
// what is wrong is marked.
class tst_TracedFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameRead_data();
    void sameRead();
    void resetOnConnect_data();
    void resetOnConnect();
    void otherAnswers_data();
    void otherAnswers();
};

namespace {

/// The names of the items, by what their values turn out to be.
struct Marks
{
    QStringList wrongAndMarked;
    QStringList wrongUnmarked;
    QStringList rightButMarked;
};

struct Outcome
{
    ProgramRun run;
    /// The lines of the file.
    QStringList traceFile;
    quint64 applied = 0;
};

/// Fresh memory tells its own address, so these values are right.
const QMap<QString, QString> &rightValues()
{
    static const QMap<QString, QString> values{{text("First"), text("7")},
                                               {text("Second"), text("100")},
                                               {text("Relay"), text("1")},
                                               {text("Pair"), text("19726636")},
                                               {text("Last"), text("1000")}};
    return values;
}

/// Only where the connection stays are there commands behind the one that is struck: on which of
/// them a lost connection is noticed is a matter of the moment.
QByteArray plantAt(int port)
{
    // The time-out is short for the faults that make it run out.
    return plantJson(
        "127.0.0.1", portParameter(port) + R"(, "timeout": "500")",
        {itemJson("First", "DM7", "1", "Word"), itemJson("Second", "DM100", "1", "Word"),
         itemJson("Relay", "R500", "Bit device", "BIT"), itemJson("Pair", "DM300", "1", "DWord"),
         itemJson("Last", "DM1000", "1", "Word")});
}

/// The event of a line, however that escapes its characters, without what tells it from other
/// records.
QString eventIn(const QByteArray &line)
{
    QJsonObject event = QJsonDocument::fromJson(line).object();
    event.remove(text("type"));
    return QString::fromUtf8(QJsonDocument(event).toJson(QJsonDocument::Compact));
}

Outcome readAt(int port, const QStringList &options)
{
    const QTemporaryDir folder;
    if (!writeFile(folder.filePath(text("plant.json")), plantAt(port)))
        return {};
    Outcome outcome;
    outcome.run = runProgram(text(VELHOST_FILE),
                             QStringList{text("read"), text("plant.json"), text("--plugin"),
                                         text(KEYENCE_PLUGIN_FILE), text("--format"), text("json")}
                                 + options,
                             folder.path());
    QFile file(folder.filePath(text("site.jsonl")));
    if (file.open(QIODevice::ReadOnly)) {
        while (!file.atEnd())
            outcome.traceFile.append(eventIn(file.readLine()));
    }
    return outcome;
}

/// From a fresh simulator.
Outcome readOnce(const QByteArray &fault, const QStringList &options)
{
    SimulatorThread simulator;
    if (!fault.isEmpty() && !simulator.addFault(fault).isEmpty())
        return {};
    Outcome outcome = readAt(simulator.port(), options);
    if (!fault.isEmpty())
        outcome.applied = simulator.faultCounts().constFirst().applied;
    return outcome;
}

const QStringList &traceOptions()
{
    static const QStringList options{text("--trace"), text("--trace-file"), text("site.jsonl")};
    return options;
}

bool isWire(const QString &record)
{
    return record.startsWith(text(R"({"type":"wire",)"));
}

QStringList wireEvents(const QString &output)
{
    QStringList events;
    const QStringList records = output.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &record : records) {
        if (isWire(record))
            events.append(eventIn(record.toUtf8()));
    }
    return events;
}

/// What a run without a trace would have printed.
QString withoutTrace(const QString &output)
{
    static const QRegularExpression suspect(text(R"(,"suspect":"(\\.|[^"\\])*")"));
    QString rest;
    const QStringList records = output.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &record : records) {
        if (!isWire(record))
            rest += QString(record).remove(suspect) + u'\n';
    }
    return rest;
}

Marks marksIn(const QString &output)
{
    Marks marks;
    const QStringList records = output.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : records) {
        const QJsonObject record = QJsonDocument::fromJson(line.toUtf8()).object();
        if (record[text("type")] != text("value") || record[text("error")] != QString())
            continue;
        const QString item = record[text("item")].toString();
        const bool isMarked = record.contains(text("suspect"));
        const bool isRight = record[text("value")].toString() == rightValues()[item];
        if (!isRight)
            (isMarked ? marks.wrongAndMarked : marks.wrongUnmarked).append(item);
        else if (isMarked)
            marks.rightButMarked.append(item);
    }
    return marks;
}

} // namespace

void tst_TracedFaults::sameRead_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<int>("tracedExitCode");
    QTest::addColumn<QString>("wrongAndMarked");
    QTest::addColumn<QString>("wrongUnmarked");
    QTest::addColumn<QString>("rightButMarked");

    const QString none;
    QTest::newRow("no fault") << QByteArray() << 0 << 0 << none << none << none;
    for (const char *fault : {"delay=20@DM1000", "delay=20+-10@DM1000", "late=20@DM1000",
                              "long=7@DM1000", "long=13@DM300", "long=3@R500", "close=after@DM1000",
                              "reset=after@DM1000", "max-clients=1"})
        QTest::newRow(fault) << QByteArray(fault) << 0 << 0 << none << none << none;
    for (const char *fault :
         {"delay=600000@DM1000", "silent@DM1000", "late=600000@DM1000", "refuse=E0@DM1000",
          "refuse=E1@DM1000", "refuse=E2@DM1000", "refuse=E4@DM1000", "refuse=E5@DM1000",
          "refuse=E6@DM1000", "close=before@DM1000", "reset=before@DM1000", "restart=600000@DM1000",
          "accept-then-silent"})
        QTest::newRow(fault) << QByteArray(fault) << 1 << 1 << none << none << none;
    const auto seen = [&](const char *fault, const char *item) {
        QTest::newRow(fault) << QByteArray(fault) << 0 << 1 << text(item) << none << none;
    };
    for (const char *fault :
         {"split=4,600000@DM1000", "dribble=600000@DM1000", "empty@DM1000", "garbage=20@DM1000",
          "nul@DM1000", "long=6@DM1000", "long=19@DM1000", "short-answer@DM1000",
          "extra-word@DM1000", "not-a-number@DM1000", "duplicate@DM1000", "previous-answer@DM1000",
          "close=in@DM1000", "reset=in@DM1000"})
        seen(fault, "Last");
    for (const char *fault :
         {"empty@DM300", "short-answer@DM300", "extra-word@DM300", "long=19@DM300", "nul@DM300",
          "not-a-number@DM300", "duplicate@DM300", "previous-answer@DM300"})
        seen(fault, "Pair");
    for (const char *fault :
         {"empty@R500", "nul@R500", "extra-word@R500", "not-a-number@R500", "previous-answer@R500"})
        seen(fault, "Relay");
    const auto needless = [&](const char *fault, const char *item) {
        QTest::newRow(fault) << QByteArray(fault) << 0 << 1 << none << none << text(item);
    };
    // The digits are whole, but nobody can know that.
    needless("split=5,600000@DM1000", "Last");
    needless("no-terminator@DM1000", "Last");
    needless("long=8@DM1000", "Last");
    needless("long=14@DM300", "Pair");
    QTest::newRow("not to be seen: the answer to a command of the same form")
        << QByteArray("previous-answer@DM100") << 0 << 0 << none << text("Second") << none;
}

void tst_TracedFaults::sameRead()
{
    QFETCH(const QByteArray, fault);
    QFETCH(const int, exitCode);
    QFETCH(const int, tracedExitCode);
    QFETCH(const QString, wrongAndMarked);
    QFETCH(const QString, wrongUnmarked);
    QFETCH(const QString, rightButMarked);

    const Outcome plain = readOnce(fault, {});
    const Outcome traced = readOnce(fault, traceOptions());
    const bool strikes = !fault.isEmpty() && fault != "max-clients=1";
    QCOMPARE(plain.applied, quint64(strikes ? 1 : 0));
    QCOMPARE(traced.applied, plain.applied);
    QCOMPARE(withoutTimes(withoutTrace(traced.run.output)), withoutTimes(plain.run.output));
    QCOMPARE(plain.run.errors, QString());
    QCOMPARE(traced.run.errors, QString());
    QCOMPARE(plain.run.exitCode, exitCode);
    QCOMPARE(traced.run.exitCode, tracedExitCode);
    const Marks marks = marksIn(traced.run.output);
    QCOMPARE(marks.wrongAndMarked.join(u' '), wrongAndMarked);
    QCOMPARE(marks.wrongUnmarked.join(u' '), wrongUnmarked);
    QCOMPARE(marks.rightButMarked.join(u' '), rightButMarked);
    QVERIFY(traced.traceFile.size() > 2);
    QCOMPARE(traced.traceFile.join(u'\n'), wireEvents(traced.run.output).join(u'\n'));
}

void tst_TracedFaults::resetOnConnect_data()
{
    QTest::addColumn<QByteArray>("fault");

    QTest::newRow("refuse-connect") << QByteArray("refuse-connect");
    QTest::newRow("max-clients=0") << QByteArray("max-clients=0");
}

// Which call notices the reset, and so with which error, is a matter of the moment.
void tst_TracedFaults::resetOnConnect()
{
    QFETCH(const QByteArray, fault);

    const Outcome plain = readOnce(fault, {text("--item"), text("First")});
    const Outcome traced
        = readOnce(fault, traceOptions() + QStringList{text("--item"), text("First")});
    for (const Outcome &outcome : {plain, traced}) {
        QVERIFY(outcome.applied > 0);
        QCOMPARE(outcome.run.exitCode, 1);
        QCOMPARE(outcome.run.errors, QString());
        QCOMPARE(outcome.run.output.count(text(R"("item":"First","value":"","error":)")), 1);
        QVERIFY(outcome.run.output.contains(text(R"({"type":"log","level":"error",)")));
        QVERIFY(!outcome.run.output.contains(text("\"suspect\"")));
    }
    QCOMPARE(traced.traceFile.join(u'\n'), wireEvents(traced.run.output).join(u'\n'));
}

void tst_TracedFaults::otherAnswers_data()
{
    QTest::addColumn<QByteArrayList>("answers");
    QTest::addColumn<QString>("wrongAndMarked");
    QTest::addColumn<QString>("wrongUnmarked");

    const QByteArray pair("00300 00301\r\n");
    QTest::newRow("the rest of a cut answer moves all behind it")
        << QByteArrayList{"00007\r\n", "0010", "0\r\n", "1\r\n", pair}
        << text("Second Relay Pair Last") << QString();
    QTest::newRow("not to be seen: an answer that comes again, where the form is the same")
        << QByteArrayList{"00007\r\n", "00007\r\n", "00100\r\n", "1\r\n", pair}
        << text("Relay Pair Last") << text("Second");
    QTest::newRow("not to be seen: another digit")
        << QByteArrayList{"00007\r\n", "00108\r\n", "0\r\n", "00300 00302\r\n", "01000\r\n"}
        << QString() << text("Second Relay Pair");
}

// What the simulator does not do, or not to the same commands each time.
void tst_TracedFaults::otherAnswers()
{
    QFETCH(const QByteArrayList, answers);
    QFETCH(const QString, wrongAndMarked);
    QFETCH(const QString, wrongUnmarked);

    const ScriptedPeer peer(script(answers));
    const Outcome plain = readAt(peer.port(), {});
    const ScriptedPeer tracedPeer(script(answers));
    const Outcome traced = readAt(tracedPeer.port(), traceOptions());
    QCOMPARE(withoutTimes(withoutTrace(traced.run.output)), withoutTimes(plain.run.output));
    QCOMPARE(plain.run.exitCode, 0);
    QCOMPARE(traced.run.exitCode, wrongAndMarked.isEmpty() ? 0 : 1);
    const Marks marks = marksIn(traced.run.output);
    QCOMPARE(marks.wrongAndMarked.join(u' '), wrongAndMarked);
    QCOMPARE(marks.wrongUnmarked.join(u' '), wrongUnmarked);
    QCOMPARE(marks.rightButMarked, QStringList());
}

QTEST_GUILESS_MAIN(tst_TracedFaults)
#include "tst_tracedfaults.moc"
