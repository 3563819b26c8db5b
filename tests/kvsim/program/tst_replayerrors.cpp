#include "programrun.h"
#include "testfolder.h"
#include "text.h"
#include "tracelines.h"

#include <QTest>

// Traces that cannot be replayed.
class tst_ReplayErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void errors_data();
    void errors();
    void tooManyPeers();
    void noFile();
};

namespace {

const QByteArray press("192.168.0.10:8501");

QByteArray good()
{
    return traceExchange(press, 1, "?K", "55");
}

ProgramRun replay(const TestFolder &folder, const QStringList &more = {})
{
    return runProgram(text(KVSIM_PROGRAM), QStringList{text("--replay"), text("site.jsonl")} + more,
                      folder.path({}));
}

} // namespace

void tst_ReplayErrors::errors_data()
{
    QTest::addColumn<QByteArray>("trace");
    QTest::addColumn<QByteArrayList>("errors");

    const auto row = [](const char *name, const QByteArray &trace, const QByteArrayList &errors) {
        QTest::newRow(name) << trace << errors;
    };
    row("empty", {}, {" holds no connection"});
    row("nothing but unknown events", traceEvent(press, 1, "napping"), {" holds no connection"});
    row("a broken line", good() + "RD DM7\n" + good(), {"3: not valid JSON: illegal value"});
}

void tst_ReplayErrors::errors()
{
    QFETCH(QByteArray, trace);
    QFETCH(QByteArrayList, errors);

    const TestFolder folder;
    folder.write(text("site.jsonl"), trace);
    const ProgramRun result = replay(folder);
    QByteArray expected;
    for (const QByteArray &error : errors)
        expected += "kvsim: site.jsonl:" + error + '\n';
    QCOMPARE(result.errors.toUtf8(), expected);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

void tst_ReplayErrors::tooManyPeers()
{
    const TestFolder folder;
    QByteArray trace;
    for (int i = 1; i <= 3; ++i)
        trace += traceExchange("192.168.0." + QByteArray::number(i) + ":8501", i, "?K", "55");
    folder.write(text("site.jsonl"), trace);
    const ProgramRun result = replay(folder, {text("--bind"), text("127.0.0.253")});
    QCOMPARE(result.errors,
             text("kvsim: site.jsonl: 3 controllers from 127.0.0.253 on do not fit before .255; "
                  "write fewer, or a lower --bind.\n"));
    QCOMPARE(result.exitCode, 2);
}

void tst_ReplayErrors::noFile()
{
    const ProgramRun result = replay(TestFolder());
    QCOMPARE(result.errors, text("kvsim: site.jsonl: cannot be read: No such file or directory\n"));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_ReplayErrors)
#include "tst_replayerrors.moc"
