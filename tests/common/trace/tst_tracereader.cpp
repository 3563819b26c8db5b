#include <common/trace/trace.h>

#include "text.h"
#include "writefile.h"

#include <QTemporaryDir>
#include <QTest>

class tst_TraceReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeEvent();
    void events_data();
    void events();
    void problems_data();
    void problems();
    void longLine();
    void missingFile();
};

namespace {

struct Read
{
    QList<TraceEvent> events;
    QStringList problems;
};

Read read(const QByteArray &content)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(text("trace"));
    Read result;
    if (!writeFile(file, content))
        return {{}, {text("the file cannot be written")}};
    const QList<Problem> problems
        = readTrace(file, [&](const TraceEvent &event) { result.events.append(event); });
    result.problems = problemLines(text("t"), problems);
    return result;
}

const QByteArray plain = R"({"time":"2026-11-22T09:14:35.123456Z","connection":1,"event":"sent"})";

} // namespace

void tst_TraceReader::wholeEvent()
{
    const Read result
        = read(R"({"time":"2026-11-22T09:14:35.123456Z","process":812,"thread":813,"connection":7,)"
               R"("peer":"192.168.0.10:8501","event":"received","outcome":"ok","waited_us":1502,)"
               R"("bytes":"A\u0000\u00ff\"\\\r\n","later":[1]})"
               "\n");
    QCOMPARE(result.problems, QStringList());
    QCOMPARE(result.events.size(), 1);
    const TraceEvent event = result.events.constFirst();
    QCOMPARE(event.time, text("2026-11-22T09:14:35.123456Z"));
    QCOMPARE(event.process, qint64(812));
    QCOMPARE(event.thread, qint64(813));
    QCOMPARE(event.connection, qint64(7));
    QCOMPARE(event.peer, text("192.168.0.10:8501"));
    QCOMPARE(event.name, text("received"));
    QCOMPARE(event.outcome, text("ok"));
    QCOMPARE(event.waited, qint64(1502));
    QCOMPARE(event.bytes, QByteArray("A\0\xff\"\\\r\n", 7));
}

void tst_TraceReader::events_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("count");

    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("one line") << plain + '\n' << 1;
    QTest::newRow("a last line without its end") << plain + '\n' + plain << 2;
    QTest::newRow("lines that end as in another system") << plain + "\r\n" + plain + "\r\n" << 2;
    QTest::newRow("blanks between the parts")
        << QByteArray(
               R"( { "time" : "2026-11-22T09:14:35.000000Z", "event": "x", "connection": 1 } )")
               + '\n'
        << 1;
}

void tst_TraceReader::events()
{
    QFETCH(const QByteArray, content);
    QFETCH(const int, count);
    const Read result = read(content);
    QCOMPARE(result.problems, QStringList());
    QCOMPARE(result.events.size(), count);
    if (count > 0) {
        QCOMPARE(result.events.constFirst().waited, qint64(-1));
        QCOMPARE(result.events.constFirst().bytes, QByteArray());
    }
}

void tst_TraceReader::problems_data()
{
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("problem");

    const auto with = [](const char *before, const char *after) -> QByteArray {
        return QByteArray(plain).replace(before, after) + '\n';
    };
    QTest::newRow("a cut last line")
        << plain.left(20) << text("t:2: warning: the last line is cut");
    QTest::newRow("a cut line") << plain.left(20) + "\n" + plain + '\n'
                                << text("t:2: not valid JSON: unterminated string");
    QTest::newRow("an empty line") << QByteArray("\n") << text("t:2: is empty");
    QTest::newRow("a list") << QByteArray("[]\n") << text("t:2: expected an object, found a list");
    QTest::newRow("no time") << with("time", "tame") << text("t:2: time: missing; expected a text");
    QTest::newRow("connection 0") << with(
        ":1,",
        ":0,") << text("t:2: connection: expected a whole number from 1 to 9007199254740992");
    QTest::newRow("no connection")
        << with("connection", "c") << text("t:2: connection: missing; expected a number");
    QTest::newRow("an event without a name")
        << with("sent", "") << text("t:2: event: must not be empty; write a name");
    QTest::newRow("a wait that is a text")
        << with("1,", R"(1,"waited_us":"1",)")
        << text("t:2: waited_us: expected a number, found a text");
    QTest::newRow("a character that is no byte")
        << with("1,", R"(1,"bytes":"\u0100",)")
        << text("t:2: bytes: has a character above U+00FF, which is no byte");
}

// The first line is taken, what stands behind the second is not.
void tst_TraceReader::problems()
{
    QFETCH(const QByteArray, second);
    QFETCH(const QString, problem);
    const Read result = read(plain + '\n' + second);
    QCOMPARE(result.problems, QStringList{problem});
    QCOMPARE(result.events.size(), 1);
}

void tst_TraceReader::longLine()
{
    const Read result = read(plain + '\n' + QByteArray(600000, ' ') + '\n');
    QCOMPARE(result.problems, QStringList{text("t:2: longer than any line of a trace")});
}

void tst_TraceReader::missingFile()
{
    const QList<Problem> problems = readTrace(text("/nowhere/trace"), [](const TraceEvent &) {});
    QCOMPARE(problemLines(text("t"), problems),
             QStringList{text("t: cannot be read: No such file or directory")});
}

QTEST_APPLESS_MAIN(tst_TraceReader)
#include "tst_tracereader.moc"
