#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "text.h"
#include "writefile.h"

#include <QTemporaryDir>
#include <QTest>

// `explain -` with a whole log: the built program.

namespace {

ProgramRun explainLog(const QByteArray &log, const QStringList &more = {})
{
    QTemporaryDir folder;
    if (!writeFile(folder.filePath(text("log")), log))
        return {-1, {}, text("the log cannot be written")};
    return runProgram(
        text("/bin/sh"),
        QStringList{text("-c"), text(R"(exec "$0" explain - "$@" <log)"), text(VELHOST_FILE)}
            + more,
        folder.path());
}

/// The lines of the table, without its header.
QStringList rows(const ProgramRun &run)
{
    QStringList lines;
    const QStringList all = run.output.split(u'\n', Qt::SkipEmptyParts).mid(1);
    for (const QString &line : all)
        lines.append(line.simplified());
    return lines;
}

const QString refused = QStringLiteral("invalid address: the controller refused the command");
const QString timedOut = QStringLiteral("Timeout reading ({milliseconds}ms): no answer in time");
const QString gone
    = QStringLiteral("then Bad file descriptor: an earlier item of the cycle lost the connection");

} // namespace

class tst_ExplainLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table();
    void json();
    void lines_data();
    void lines();
    void times_data();
    void times();
    void consequences_data();
    void consequences();
    void ofVelhostItself_data();
    void ofVelhostItself();
    void manyTexts();
    void nothingKnown();
};

void tst_ExplainLog::table()
{
    const ProgramRun run = explainLog(
        "2026-11-21 10:00:01 host: [RD DM1 ] socket read data error from <A> :Timeout reading "
        "(100ms)\n"
        "2026-11-21 10:00:01 host: [RD DM2 ] socket write data error from <B> :Bad file "
        "descriptor\n"
        "2026-11-21 10:00:02 host: started OK\n"
        "2026-11-21 10:05:01 host: [RD DM1 ] socket read data error from <A> :Timeout reading "
        "(2000ms)\n");
    QCOMPARE(
        run.output,
        text("Count  First                Last                 Text\n"
             "2      2026-11-21 10:00:01  2026-11-21 10:05:01  Timeout reading ({milliseconds}ms): "
             "no answer in time\n"
             "1      2026-11-21 10:00:01  2026-11-21 10:00:01  then Bad file descriptor: an "
             "earlier item of the cycle lost the connection\n"
             "1 other lines\n"));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
}

void tst_ExplainLog::json()
{
    const ProgramRun run = explainLog("2026-11-21T10:00:01Z <A> :Timeout reading (100ms)\n"
                                      "<B> :Bad file descriptor\n"
                                      "x\n",
                                      {text("--format"), text("json")});
    QCOMPARE(run.output,
             text(R"({"type":"count","id":"timeout-reading",)"
                  R"-("text":"Timeout reading ({milliseconds}ms)","after":"","count":1,)-"
                  R"("first":"2026-11-21T10:00:01Z","last":"2026-11-21T10:00:01Z"})"
                  "\n"
                  R"({"type":"count","id":"connection-gone","text":"Bad file descriptor",)"
                  R"("after":"timeout-reading","count":1,"first":"","last":""})"
                  "\n"
                  R"({"type":"others","lines":1})"
                  "\n"));
    QCOMPARE(run.exitCode, 0);
}

void tst_ExplainLog::lines_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char *name, const QByteArray &log, const QStringList &counted,
                        int others) {
        QTest::newRow(name) << log << counted + QStringList{text("%1 other lines").arg(others)};
    };
    const QByteArray entry = "log error: Press, cycle 1: [RD DM70000\\r] <A> :invalid address";
    const QString once = u"1 " + refused;
    row("the same text twice", "x :invalid port\ny :invalid port\n",
        {text("2 invalid port: the device's port holds no digit")}, 0);
    row("entry of velhost that is counted at the end", entry + "\nx\n" + entry + " (x 412)\n",
        {u"412 " + refused}, 1);
    row("count without the entry, from a terminal", "x\n" + entry + " (x 412)\n",
        {u"412 " + refused}, 1);
    row("the same entry of two devices",
        entry + '\n' + QByteArray(entry).replace("Press", "Oven") + '\n' + entry + " (x 3)\n"
            + QByteArray(entry).replace("Press", "Oven") + " (x 4)\n",
        {u"7 " + refused}, 0);
    row("debug entry", "log debug: init: 1 Press\n" + entry + '\n', {once}, 1);
    row("entry with another text", "log error: Counter: value refused\n" + entry + '\n',
        {text("1 Counter: value refused"), once}, 0);
    row("message of velhost", "velhost: plant.json: is empty\nvelhost: plant.json: is empty\n",
        {text("2 velhost: plant.json: is empty")}, 0);
    row("short text of three meanings", "invalid address\ninvalid address\n",
        {text("2 invalid address: has several meanings")}, 0);
    row("blank lines", "\n\r\n" + entry + "\r\n\n" + entry + "\r\n", {u"2 " + refused}, 0);
    row("text that is never reported", "started OK\n" + entry + '\n', {once}, 1);
    row("control characters", "log error: a\x1b[2J\n" + entry + '\n', {text("1 a\\x1b[2J"), once},
        0);
}

void tst_ExplainLog::lines()
{
    QFETCH(QByteArray, log);
    QFETCH(QStringList, expected);
    QCOMPARE(rows(explainLog(log)), expected);
}

void tst_ExplainLog::times_data()
{
    QTest::addColumn<QByteArray>("time");
    QTest::addColumn<bool>("isTime");

    for (const char *const time :
         {"2026-11-21T10:00:01.123+00:00", "2026-11-21T10:00:01Z", "2026-11-21 10:00:01",
          "2026-11-21 10:00:01,123", "2026-11-21 10:00:01.123 ", "Nov 21 10:00:01",
          "Nov  1 10:00:01"})
        QTest::newRow(time) << QByteArray(time) << true;
    QTest::newRow("none") << QByteArray("10:00") << false;
}

void tst_ExplainLog::times()
{
    QFETCH(QByteArray, time);
    QFETCH(bool, isTime);

    const ProgramRun run
        = explainLog("invalid port\n" + time + " invalid port\nx\n", {text("--format=json")});
    const QString found = isTime ? QString::fromLatin1(time.trimmed()) : QString();
    QVERIFY2(run.output.contains(text(R"("first":"","last":"%1"})").arg(found)),
             qPrintable(run.output));
}

void tst_ExplainLog::consequences_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QStringList>("expected");

    const QByteArray timeout = "<A> :Timeout reading (100ms)\n";
    const QByteArray lost = "<B> :Bad file descriptor\n";
    const QString alone
        = text("1 Bad file descriptor: an earlier item of the cycle lost the connection");
    const QString none = text("0 other lines");
    QTest::newRow("several") << QByteArray(timeout + lost + lost)
                             << QStringList{u"1 " + timedOut, u"2 " + gone, none};
    QTest::newRow("without a cause")
        << QByteArray(lost + timeout) << QStringList{alone, u"1 " + timedOut, none};
    QTest::newRow("another error between")
        << QByteArray(timeout + "invalid port\n" + lost)
        << QStringList{u"1 " + timedOut, text("1 invalid port: the device's port holds no digit"),
                       alone, none};
    QTest::newRow("other lines between")
        << QByteArray(timeout + "x\n" + lost)
        << QStringList{u"1 " + timedOut, u"1 " + gone, text("1 other lines")};
    QTest::newRow("after two causes")
        << QByteArray(timeout + lost + "No data received - Success\n" + lost)
        << QStringList{u"1 " + timedOut, u"1 " + gone,
                       text("1 No data received - Success: the controller closed the connection"),
                       u"1 " + gone, none};
    QTest::newRow("of another device")
        << QByteArray("log error: Press, cycle 1: " + timeout + "log error: Oven, cycle 1: " + lost)
        << QStringList{u"1 " + timedOut, alone, none};
    QTest::newRow("of the same device, another one between")
        << QByteArray("log error: Press, cycle 1: " + timeout
                      + "log error: Oven, cycle 1: <A> :invalid port\nlog error: Press, cycle 1: "
                      + lost)
        << QStringList{u"1 " + timedOut, u"1 " + gone,
                       text("1 invalid port: the device's port holds no digit"), none};
}

void tst_ExplainLog::consequences()
{
    QFETCH(QByteArray, log);
    QFETCH(QStringList, expected);
    QCOMPARE(rows(explainLog(log)), expected);
}

void tst_ExplainLog::ofVelhostItself_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<bool>("hasTimes");

    QTest::newRow("table") << QByteArray("table") << false;
    QTest::newRow("json") << QByteArray("json") << true;
    QTest::newRow("csv") << QByteArray("csv") << false;
}

// What velhost logs of a controller that does not answer the first item.
void tst_ExplainLog::ofVelhostItself()
{
    QFETCH(QByteArray, format);
    QFETCH(bool, hasTimes);

    SimulatorThread controller;
    QCOMPARE(controller.addFault("silent@DM1"), QString());
    const QByteArray plant
        = plantJson("127.0.0.1", portParameter(controller.port()) + R"(, "timeout": "50")",
                    {itemJson("A", "DM1"), itemJson("B", "DM2"), itemJson("C", "DM3")});
    const ProgramRun read
        = runWithPlant(text(VELHOST_FILE),
                       {text("read"), text("plant.json"), text("--plugin"),
                        text(KEYENCE_PLUGIN_FILE), text("--cycles"), text("2"), text("--interval"),
                        text("0"), text("--format"), QString::fromLatin1(format)},
                       plant);
    QCOMPARE(controller.faultCounts().at(0).applied, quint64(2));
    const QString log = hasTimes ? read.output : read.errors;
    const ProgramRun run = explainLog(log.toUtf8());
    const QString times = hasTimes ? text("T T ") : QString();
    QStringList expected{u"2 " + times + timedOut, u"4 " + times + gone};
    QCOMPARE(rows({0, withoutTimes(run.output), {}}).mid(0, 2), expected);
    QCOMPARE(run.exitCode, 0);
}

// A thousand different texts are kept.
void tst_ExplainLog::manyTexts()
{
    QByteArray log;
    for (int i = 0; i < 1001; ++i)
        log += "log error: text " + QByteArray::number(i) + '\n';
    const QStringList counted = rows(explainLog(log + "log error: text 5\n"));
    QCOMPARE(counted.size(), 1001);
    QCOMPARE(counted.at(5), text("2 text 5"));
    QCOMPARE(counted.last(), text("1 other lines"));
}

void tst_ExplainLog::nothingKnown()
{
    const ProgramRun run = explainLog("a\nb\n");
    QCOMPARE(run.output, text("2 other lines\n"));
    QCOMPARE(run.exitCode, 1);
}

QTEST_GUILESS_MAIN(tst_ExplainLog)
#include "tst_explainlog.moc"
