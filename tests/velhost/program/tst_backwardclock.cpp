#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "terminalrun.h"
#include "text.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

// The built program while its clock is set back again and again: the times that it prints are the
// clock's, but intervals and ages are right.
class tst_BackwardClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void read();
    void watch();
    void watchOnTerminal();
};

namespace {

QProcessEnvironment environment()
{
    QProcessEnvironment result = plainEnvironment();
    const QString variable = text(BACKWARD_CLOCK);
    result.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    result.insert(text("TERM"), text("xterm"));
    return result;
}

QByteArray plantAt(int port)
{
    return plantJson("127.0.0.1", portParameter(port), {itemJson("Counter", "DM201")});
}

/// The times in the first column of the records.
QList<QDateTime> timesOf(const QString &csv)
{
    QList<QDateTime> times;
    const QStringList records = csv.split(text("\r\n"), Qt::SkipEmptyParts).mid(1);
    for (const QString &record : records)
        times.append(QDateTime::fromString(record.section(u',', 1, 1), Qt::ISODateWithMs));
    return times;
}

ProgramRun run(const QStringList &arguments, int port)
{
    const QTemporaryDir folder;
    writeFile(folder.filePath(text("plant.json")), plantAt(port));
    return runProgram(text(VELHOST_FILE),
                      arguments
                          + QStringList{text("plant.json"), text("--plugin"),
                                        text(KEYENCE_PLUGIN_FILE), text("--format"), text("csv")},
                      folder.path(), environment());
}

} // namespace

void tst_BackwardClock::initTestCase()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer's library must be the first that is loaded.");
#endif
}

void tst_BackwardClock::read()
{
    const SimulatorThread controller;
    QElapsedTimer sinceStart;
    sinceStart.start();
    const ProgramRun result
        = run({text("read"), text("--cycles"), text("3"), text("--interval"), text("100")},
              controller.port());
    QVERIFY(sinceStart.elapsed() >= 200);
    const QList<QDateTime> times = timesOf(result.output);
    QCOMPARE(times.size(), 3);
    QVERIFY2(times.at(2).isValid() && times.at(2) < times.at(1) && times.at(1) < times.at(0),
             qPrintable(result.output));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
}

// It ends after its time, and no read took less than nothing or an hour.
void tst_BackwardClock::watch()
{
    const SimulatorThread controller;
    const ProgramRun result
        = run({text("watch"), text("--for"), text("1"), text("--interval"), text("200")},
              controller.port());
    const QList<QDateTime> times = timesOf(result.output);
    QVERIFY(times.size() > 1 && times.size() <= 6);
    QVERIFY2(times.last().isValid() && times.last() < times.first(), qPrintable(result.output));
    const QStringList summary
        = result.errors.section(u'\n', -2, -2).split(u' ', Qt::SkipEmptyParts);
    QCOMPARE(summary.value(1).toInt(), times.size());
    for (const int column : {7, 8, 9}) {
        const double milliseconds = summary.value(column).toDouble();
        QVERIFY2(milliseconds > 0 && milliseconds < 1000, qPrintable(result.errors));
    }
    QCOMPARE(result.exitCode, 0);
}

// The value is read once; its age when the time is over is about a second.
void tst_BackwardClock::watchOnTerminal()
{
    const SimulatorThread controller;
    const QTemporaryDir folder;
    const QString plant = folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantAt(controller.port())));
    TerminalRun terminal(text(VELHOST_FILE),
                         {text("watch"), plant, text("--plugin"), text(KEYENCE_PLUGIN_FILE),
                          text("--for"), text("1"), text("--interval"), text("86400000")},
                         25, 120, environment());
    QCOMPARE(terminal.finish(), 0);
    const QString table = QString::fromUtf8(terminal.output()).section(text("\x1b[?1049l"), 1);
    const QRegularExpression row(
        text("\nPress +Counter +201 +[0-9] s +0 +0 +0 +([0-9]{2}):[0-9]{2}:[0-9]{2}\\.[0-9]{3}"));
    const QRegularExpressionMatch match = row.match(table);
    QVERIFY2(match.hasMatch(), qPrintable(table));
    // The clock in the title was asked after the read.
    const QRegularExpression title(text("cycle 1, ([0-9]{2}):"));
    const QString hour = title.match(QString::fromUtf8(terminal.output())).captured(1);
    QVERIFY(!hour.isEmpty());
    QVERIFY(hour != match.captured(1));
}

QTEST_GUILESS_MAIN(tst_BackwardClock)
#include "tst_backwardclock.moc"
