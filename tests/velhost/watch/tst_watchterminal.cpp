#include "plantjson.h"
#include "programrun.h"
#include "simulatorthread.h"
#include "terminalrun.h"
#include "text.h"
#include "watchscreen.h"
#include "writefile.h"

#include <QHostAddress>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// `watch` on a terminal: what it draws, and how it restores the terminal.

namespace {

/// All output after the terminal was restored.
QByteArray afterLeaving(const QByteArray &output)
{
    return output.mid(output.lastIndexOf(leave) + leave.size());
}

} // namespace

class tst_WatchTerminal : public QObject
{
    Q_OBJECT

    /// The arguments that watch these items, each NAME=ADDRESS, of the controller.
    QStringList arguments(const SimulatorThread &controller, const QStringList &items,
                          const char *interval = "20");

    QTemporaryDir m_folder;

private Q_SLOTS:
    void redraws();
    void colour_data();
    void colour();
    void wrongValue();
    void smallWindow();
    void windowChanges();
    void ages();
    void logBelow();
    void controlCharacters();
    void ends_data();
    void ends();
    void secondInterrupt();
    void stoppedAndContinued();
    void withoutDrawing_data();
    void withoutDrawing();
};

QStringList tst_WatchTerminal::arguments(const SimulatorThread &controller,
                                         const QStringList &items, const char *interval)
{
    QList<QByteArray> json;
    for (const QString &item : items)
        json.append(itemJson(item.section(u'=', 0, 0).toUtf8(), item.section(u'=', 1).toUtf8(), "1",
                             "Short", R"(, "expect": "5")"));
    const QString plant = m_folder.filePath(text("plant.json"));
    if (!writeFile(plant, plantJson("127.0.0.1", portParameter(controller.port()), json)))
        return {};
    return {text("watch"),      plant,
            text("--interval"), text(interval),
            text("--plugin"),   text(KEYENCE_PLUGIN_FILE)};
}

void tst_WatchTerminal::redraws()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 5));
    TerminalRun watch(text(VELHOST_FILE), arguments(controller, {text("Counter=DM1")}), 24, 100,
                      terminalEnvironment());
    QVERIFY(watch.waitFor(enter + top + "velhost watch, cycle "));
    QVERIFY(watch.waitFor("Press   Counter  5      0 s         0        0       0        "));
    QVERIFY(watch.waitFor(end + top + "velhost watch, cycle "));
    QVERIFY(watch.waitFor(end));
    QCOMPARE(watch.output().count(enter), 1);
    const QList<QByteArray> lines = lastDrawing(watch.output());
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(1).trimmed(),
             QByteArray("Device  Item     Value  Age  Error  Changes  Errors  Suspect  Last read"));
    QVERIFY2(
        lines.at(2).startsWith("Press                   0 s                  0                "),
        lines.at(2).constData());
    QVERIFY2(
        lines.at(3).startsWith("Press   Counter  5      0 s         0        0       0        "),
        lines.at(3).constData());
    QVERIFY(controller.setWord("DM1", 6));
    QVERIFY(watch.waitFor("expected \"5\"\x1b[0m  1 "));
    QVERIFY(controller.setWord("DM1", 5));
    QVERIFY(watch.waitFor("  2        0 "));
}

void tst_WatchTerminal::colour_data()
{
    QTest::addColumn<QByteArray>("noColor");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("changed");
    QTest::addColumn<bool>("isColoured");

    QTest::newRow("colour") << QByteArray() << QByteArray("Press   Counter  5 ")
                            << QByteArray("Press   Counter  \x1b[30;43m1234\x1b[0m ") << true;
    QTest::newRow("NO_COLOR") << QByteArray("1") << QByteArray("Press   Counter   5 ")
                              << QByteArray("Press   Counter  *1234 ") << false;
    QTest::newRow("NO_COLOR of any value") << QByteArray("0") << QByteArray("Press   Counter   5 ")
                                           << QByteArray("Press   Counter  *1234 ") << false;
}

// The changed value is marked first, later no more.
void tst_WatchTerminal::colour()
{
    QFETCH(QByteArray, noColor);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, changed);
    QFETCH(bool, isColoured);

    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 5));
    QProcessEnvironment environment = terminalEnvironment();
    environment.insert(text("NO_COLOR"), QString::fromLatin1(noColor));
    TerminalRun watch(text(VELHOST_FILE), arguments(controller, {text("Counter=DM1")}), 24, 100,
                      environment);
    QVERIFY(watch.waitFor(before));
    QVERIFY(controller.setWord("DM1", 1234));
    QVERIFY(watch.waitFor(changed));
    QVERIFY(controller.setWord("DM1", 5));
    QVERIFY(watch.waitFor(QByteArray(changed).replace("1234", "5")));
    QVERIFY(watch.waitFor(before));
    QCOMPARE(watch.output().contains("\x1b[30;43m"), isColoured);
}

void tst_WatchTerminal::wrongValue()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 7));
    TerminalRun watch(text(VELHOST_FILE), arguments(controller, {text("Counter=DM1")}), 24, 100,
                      terminalEnvironment());
    QVERIFY(watch.waitFor("Press   Counter  \x1b[31m7\x1b[0m "));
    QVERIFY(watch.waitFor("\x1b[31mexpected \"5\"\x1b[0m  0 "));
}

void tst_WatchTerminal::smallWindow()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 12345));
    QProcessEnvironment environment = terminalEnvironment();
    environment.insert(text("NO_COLOR"), text("1"));
    TerminalRun watch(
        text(VELHOST_FILE),
        arguments(controller, {text("Counter=DM1"), text("B=DM70000"), text("C=DM3")}), 6, 22,
        environment);
    QVERIFY(watch.waitFor("  log er"));
    QVERIFY(watch.waitFor(end));
    const QList<QByteArray> lines = lastDrawing(watch.output());
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines.at(0), QByteArray("velhost watch, cycle…"));
    QCOMPARE(lines.at(3), QByteArray("… 3 more, 2 of them …"));
    QCOMPARE(lines.at(4), QByteArray(""));
    QVERIFY2(lines.at(5).endsWith("  log er…"), lines.at(5).constData());
    for (const QByteArray &line : lines)
        QVERIFY2(QString::fromUtf8(line).size() <= 21, line.constData());
}

void tst_WatchTerminal::windowChanges()
{
    SimulatorThread controller;
    TerminalRun watch(text(VELHOST_FILE), arguments(controller, {text("A=DM1"), text("B=DM2")}), 5,
                      100, terminalEnvironment());
    QVERIFY(watch.waitFor("Press   B "));
    QVERIFY(watch.waitFor(end));
    QVERIFY(!watch.output().contains(" more"));
    watch.resize(4, 100);
    QVERIFY(watch.waitFor("\xe2\x80\xa6 2 more, 1 of them with an error"));
}

// Long before the next cycle.
void tst_WatchTerminal::ages()
{
    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 5));
    TerminalRun watch(text(VELHOST_FILE), arguments(controller, {text("Counter=DM1")}, "86400000"),
                      24, 100, terminalEnvironment());
    QVERIFY(watch.waitFor("Press   Counter  5      0 s "));
    QVERIFY(watch.waitFor("Press   Counter  5      1 s "));
}

// A repeated entry is shown once, and in the drawings only. At the end it is printed once.
void tst_WatchTerminal::logBelow()
{
    SimulatorThread controller;
    TerminalRun watch(text(VELHOST_FILE), arguments(controller, {text("A=DM70000")}), 24, 100,
                      terminalEnvironment());
    const QByteArray entry = ": [RD DM70000\\r] <A> :invalid address";
    QVERIFY(watch.waitFor("  log error: Press, cycle "));
    QVERIFY(watch.waitFor(entry + " (x "));
    const QByteArray lastLine = lastDrawing(watch.output()).constLast();
    const QRegularExpression form(text("^[0-9:]{8}\\.[0-9]{3}  log error: Press, cycle [0-9]+: "));
    QVERIFY2(form.match(QString::fromUtf8(lastLine)).hasMatch(), lastLine.constData());
    watch.type("\x03");
    QCOMPARE(watch.finish(), 130);
    QVERIFY(watch.output().count(entry) <= watch.output().count(top) + 1);
    QCOMPARE(afterLeaving(watch.output()).count(entry + " (x "), 1);
}

void tst_WatchTerminal::controlCharacters()
{
    const QString plant = m_folder.filePath(text("plant.json"));
    const QByteArray json
        = R"({"devices": [{"id": 1, "name": "P\u001b]0;x\u0007", "ip": "127.0.0.1",
 "items": [{"name": "A\u001b[2J", "parameters": {"answers": "1\u001b[2J\u009b2J|!\u001b[2J"}}]}]})";
    QVERIFY(writeFile(plant, json));
    TerminalRun watch(text(VELHOST_FILE),
                      {text("watch"), plant, text("--interval"), text("150"), text("--plugin"),
                       text(SCRIPTED_PLUGIN_FILE)},
                      24, 150, terminalEnvironment());
    QVERIFY(watch.waitFor("P\\x1b]0;x\\x07  A\\x1b[2J  1\\x1b[2J\\x9b2J  "));
    QVERIFY(watch.waitFor("30;43m\\x1b[2J\x1b[0m"));
    watch.type("\x03");
    QCOMPARE(watch.finish(), 130);
    QVERIFY(!watch.output().contains("\x1b[2J"));
    QVERIFY(!watch.output().contains("\x1b]"));
    QVERIFY(!watch.output().contains("\xc2\x9b"));
}

void tst_WatchTerminal::ends_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<bool>("hasSummary");

    QTest::newRow("Ctrl+C") << QByteArray("\x03") << 0 << 130 << true;
    QTest::newRow("SIGTERM") << QByteArray() << SIGTERM << 143 << true;
    QTest::newRow("SIGQUIT") << QByteArray() << SIGQUIT << -SIGQUIT << false;
    QTest::newRow("SIGHUP") << QByteArray() << SIGHUP << 129 << true;
    QTest::newRow("a fault of the plug-in") << QByteArray() << SIGABRT << -SIGABRT << false;
}

// The terminal is restored once, and nothing is drawn after that.
void tst_WatchTerminal::ends()
{
    QFETCH(QByteArray, keys);
    QFETCH(int, signal);
    QFETCH(int, exitCode);
    QFETCH(bool, hasSummary);

    SimulatorThread controller;
    QVERIFY(controller.setWord("DM1", 5));
    TerminalRun watch(text(VELHOST_FILE), arguments(controller, {text("Counter=DM1")}), 24, 100,
                      terminalEnvironment());
    QVERIFY(watch.waitFor("velhost watch, cycle "));
    QVERIFY(watch.waitFor(end));
    if (!keys.isEmpty())
        watch.type(keys);
    if (signal != 0)
        watch.sendSignal(signal);
    QCOMPARE(watch.finish(), exitCode);
    QCOMPARE(watch.output().count("\x1b[?25l"), 1);
    QCOMPARE(watch.output().count(leave), 1);
    const QByteArray rest = afterLeaving(watch.output());
    QVERIFY2(!rest.contains('\x1b'), rest.constData());
    QCOMPARE(rest.contains("\r\n\r\nDevice  Cycles  Failed  Reads "), hasSummary);
    QCOMPARE(rest.contains("Press   Counter  5 "), hasSummary);
}

// The controller gives one answer, and the time-out is a day.
void tst_WatchTerminal::secondInterrupt()
{
    QTcpServer controller;
    QVERIFY(controller.listen(QHostAddress(QHostAddress::LocalHost)));
    const QString plant = m_folder.filePath(text("plant.json"));
    const QByteArray parameters
        = portParameter(controller.serverPort()) + R"(, "timeout": "86400000")";
    QVERIFY(writeFile(plant, plantJson("127.0.0.1", parameters, {itemJson("Counter", "DM1")})));
    TerminalRun watch(text(VELHOST_FILE),
                      {text("watch"), plant, text("--interval"), text("20"), text("--plugin"),
                       text(KEYENCE_PLUGIN_FILE)},
                      24, 100, terminalEnvironment());
    QVERIFY(controller.waitForNewConnection(10000));
    QTcpSocket *const client = controller.nextPendingConnection();
    QVERIFY(client->waitForReadyRead(10000));
    client->write("00005\r\n");
    QVERIFY(client->waitForBytesWritten(10000));
    QVERIFY(watch.waitFor("Press   Counter  5 "));
    QVERIFY(client->waitForReadyRead(10000));
    watch.interruptUntilEnd();
    QCOMPARE(watch.finish(), -SIGINT);
    const QByteArray rest = watch.output().mid(watch.output().indexOf(leave) + leave.size());
    QCOMPARE(rest, QByteArray());
}

// A stop restores the terminal, too. A continued program draws again.
void tst_WatchTerminal::stoppedAndContinued()
{
    SimulatorThread controller;
    const QStringList words = arguments(controller, {text("Counter=DM1")});
    // A shell with job control, which is needed to stop the program.
    TerminalRun shell(text("/bin/bash"),
                      QStringList{text("--norc"), text("-c"),
                                  text("set -m; \"$@\"; echo stopped; fg"), text("bash"),
                                  text(VELHOST_FILE)}
                          + words,
                      24, 100, terminalEnvironment());
    QVERIFY(shell.waitFor(end));
    shell.type("\x1a");
    QVERIFY(shell.waitFor(leave));
    QVERIFY(shell.waitFor("stopped"));
    QVERIFY(shell.waitFor(enter + top));
    QVERIFY(shell.waitFor(end));
    shell.type("\x03");
    QVERIFY(shell.waitFor(leave));
    QCOMPARE(shell.finish(), 130);
    QCOMPARE(shell.output().count(leave), 2);
}

void tst_WatchTerminal::withoutDrawing_data()
{
    QTest::addColumn<QByteArray>("term");
    QTest::addColumn<QByteArray>("option");

    QTest::newRow("changes alone") << QByteArray("xterm") << QByteArray("--only-changes");
    QTest::newRow("json") << QByteArray("xterm") << QByteArray("--format=json");
    QTest::newRow("dumb terminal") << QByteArray("dumb") << QByteArray("--format=table");
    QTest::newRow("unknown terminal") << QByteArray("") << QByteArray("--format=table");
}

// Prints lines instead of drawing.
void tst_WatchTerminal::withoutDrawing()
{
    QFETCH(QByteArray, term);
    QFETCH(QByteArray, option);

    SimulatorThread controller;
    QProcessEnvironment environment = terminalEnvironment();
    environment.insert(text("TERM"), QString::fromLatin1(term));
    TerminalRun watch(text(VELHOST_FILE),
                      arguments(controller, {text("Counter=DM1")})
                          + QStringList{QString::fromLatin1(option)},
                      24, 100, environment);
    QVERIFY(watch.waitFor("Counter"));
    QVERIFY(watch.waitFor("\r\n"));
    watch.type("\x03");
    QCOMPARE(watch.finish(), 130);
    QVERIFY2(!watch.output().contains('\x1b'), watch.output().constData());
}

QTEST_GUILESS_MAIN(tst_WatchTerminal)
#include "tst_watchterminal.moc"
