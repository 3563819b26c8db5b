#include "fullqueue.h"
#include "plantjson.h"
#include "simulatorthread.h"
#include "terminalrun.h"
#include "text.h"
#include "watchscreen.h"
#include "writefile.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

// What the user of `watch` sees of a plant that has errors, and the keys.

namespace {

constexpr int itemCount = 40;

QByteArray deviceJson(int number, int port, const QByteArray &timeout = "300")
{
    QByteArrayList items;
    for (int i = 0; i < itemCount; ++i)
        items.append(itemJson("Item " + QByteArray::number(i), "DM" + QByteArray::number(i)));
    return R"({"id": )" + QByteArray::number(number) + R"(, "name": "Plc)"
           + QByteArray::number(number) + R"(", "ip": "127.0.0.1", "parameters": {)"
           + portParameter(port) + R"(, "timeout": ")" + timeout + R"("}, "items": [)"
           + items.join(",\n") + "]}";
}

QProcessEnvironment withoutColour()
{
    QProcessEnvironment environment = terminalEnvironment();
    environment.insert(text("NO_COLOR"), text("1"));
    return environment;
}

/// The lines of the last drawing that begin with a device.
QList<QByteArray> rowsOf(const TerminalRun &watch)
{
    QList<QByteArray> rows;
    const QList<QByteArray> lines = lastDrawing(watch.output());
    for (const QByteArray &line : lines) {
        if (line.startsWith("Plc"))
            rows.append(line.simplified());
    }
    return rows;
}

} // namespace

class tst_WatchScreen : public QObject
{
    Q_OBJECT

    /// The arguments that watch these devices.
    QStringList arguments(const QByteArrayList &devices, const char *interval = "50");

    QTemporaryDir m_folder;

private Q_SLOTS:
    void firstScreen();
    void scrolls();
    void filters();
    void quits();
    void waits();
    void goesOnWhileWaiting();
    void wellAgain();
    void keyboardRestored_data();
    void keyboardRestored();
    void background();
};

QStringList tst_WatchScreen::arguments(const QByteArrayList &devices, const char *interval)
{
    const QString plant = m_folder.filePath(text("plant.json"));
    if (!writeFile(plant, R"({"devices": [)" + devices.join(",\n") + "]}"))
        return {};
    return {text("watch"),      plant,
            text("--interval"), text(interval),
            text("--plugin"),   text(KEYENCE_PLUGIN_FILE)};
}

// Of 120 items those of the second device fail: the first because nobody answers, the others
// because the connection is closed then.
void tst_WatchScreen::firstScreen()
{
    SimulatorThread first;
    SimulatorThread silent;
    SimulatorThread third;
    QCOMPARE(silent.addFault("silent"), QString());
    TerminalRun watch(text(VELHOST_FILE),
                      arguments({deviceJson(1, first.port()), deviceJson(2, silent.port()),
                                 deviceJson(3, third.port())}),
                      30, 120, withoutColour());
    QVERIFY(watch.waitFor("39 more: Bad file descriptor"));
    QVERIFY(watch.waitFor(end));
    const QList<QByteArray> rows = rowsOf(watch);
    QVERIFY2(rows.at(0).startsWith("Plc2 Item 0 "), rows.at(0).constData());
    QVERIFY2(rows.at(0).contains(" Timeout reading (300ms) "), rows.at(0).constData());
    QCOMPARE(rows.at(1), QByteArray("Plc2 39 more: Bad file descriptor"));
    QVERIFY2(rows.at(2).startsWith("Plc1 "), rows.at(2).constData());
    QVERIFY(silent.faultCounts().at(0).applied > 0);
}

void tst_WatchScreen::scrolls()
{
    SimulatorThread controller;
    TerminalRun watch(text(VELHOST_FILE), arguments({deviceJson(1, controller.port())}), 12, 100,
                      withoutColour());
    // Nine of 41 rows fit.
    QVERIFY(watch.waitFor("Plc1    Item 7 "));
    QVERIFY(watch.waitFor("\xe2\x80\xa6 32 more"));
    watch.type("\x1b[6~");
    QVERIFY(watch.waitFor("Plc1    Item 16 "));
    QVERIFY(watch.waitFor("\xe2\x80\xa6 9 above, 23 more"));
    watch.type("\x1b[B");
    QVERIFY(watch.waitFor("\xe2\x80\xa6 10 above, 22 more"));
    QVERIFY(watch.waitFor(end));
    const QList<QByteArray> rows = rowsOf(watch);
    QVERIFY2(rows.first().startsWith("Plc1 Item 9 "), rows.first().constData());
    QVERIFY2(rows.last().startsWith("Plc1 Item 17 "), rows.last().constData());
    watch.type("\x1b[A");
    QVERIFY(watch.waitFor("\xe2\x80\xa6 9 above, 23 more"));
    watch.type("\x1b[6~\x1b[6~\x1b[6~\x1b[6~");
    QVERIFY(watch.waitFor("\xe2\x80\xa6 32 above" + end));
    watch.type("\x1b[5~");
    QVERIFY(watch.waitFor("\xe2\x80\xa6 23 above, 9 more"));
}

void tst_WatchScreen::filters()
{
    SimulatorThread controller;
    TerminalRun watch(text(VELHOST_FILE), arguments({deviceJson(1, controller.port())}), 12, 100,
                      withoutColour());
    QVERIFY(watch.waitFor("/ filters, o lists outages, q ends"));
    watch.type("/item 3");
    QVERIFY(watch.waitFor("filter: item 3_, Enter ends, Esc clears"));
    // Item 3 and Items 30 to 39.
    QVERIFY(watch.waitFor("\xe2\x80\xa6 2 more"));
    watch.type("5\r");
    QVERIFY(watch.waitFor("only \"item 35\", Esc shows all; "));
    QVERIFY(watch.waitFor(end));
    QCOMPARE(rowsOf(watch).size(), 1);
    QVERIFY(rowsOf(watch).constFirst().startsWith("Plc1 Item 35 "));
    watch.type("\x1b");
    QVERIFY(watch.waitFor("\xe2\x80\xa6 32 more"));
}

// As Ctrl+C does.
void tst_WatchScreen::quits()
{
    SimulatorThread controller;
    TerminalRun watch(text(VELHOST_FILE), arguments({deviceJson(1, controller.port())}, "86400000"),
                      24, 100, withoutColour());
    QVERIFY(watch.waitFor("Plc1    Item 0    "));
    watch.type("q");
    QCOMPARE(watch.finish(), 130);
    const QByteArray rest = watch.output().mid(watch.output().lastIndexOf(leave));
    QVERIFY2(rest.contains("Device  Cycles  Failed  Reads "), rest.constData());
    QVERIFY2(rest.contains("\r\nPlc1    1       0       40 "), rest.constData());
}

// Nothing answers the connect, neither during init() nor in the cycles.
void tst_WatchScreen::waits()
{
    const FullQueue queue;
    TerminalRun watch(text(VELHOST_FILE), arguments({deviceJson(1, queue.port(), "2500")}, "1000"),
                      24, 120, withoutColour());
    const QByteArray place = "Plc1 (127.0.0.1:" + QByteArray::number(queue.port()) + "), ";
    QVERIFY(watch.waitFor("the plug-in starts, connecting to Plc1, 1 s"));
    QVERIFY(watch.waitFor("the plug-in starts, connecting to Plc1, 2 s"));
    QVERIFY(watch.waitFor("\r\x1b[K"));
    QVERIFY(watch.waitFor("cycle 0, "));
    // It is drawn once a second, at any moment of one.
    QVERIFY(watch.waitFor("waiting for " + place));
    QVERIFY(watch.waitFor("cycle 1, "));
    QVERIFY(watch.waitFor("the cycle takes "));
    QVERIFY(watch.waitFor(" s, the interval is 1 s"));
    QVERIFY(watch.waitFor("Not connected to PLC"));
    QVERIFY(watch.waitFor("connecting to " + place + "1 s; the cycle takes "));
    // The second one ends the program, which waits in the plug-in.
    watch.interruptUntilEnd();
    QCOMPARE(watch.finish(), -SIGINT);
}

// The age of what the first device gave goes on while the second lets the plug-in wait.
void tst_WatchScreen::goesOnWhileWaiting()
{
    SimulatorThread first;
    SimulatorThread silent;
    QCOMPARE(silent.addFault("silent"), QString());
    TerminalRun watch(
        text(VELHOST_FILE),
        arguments({deviceJson(1, first.port()), deviceJson(2, silent.port(), "86400000")}), 24, 120,
        withoutColour());
    QVERIFY(watch.waitFor("Plc1    Item 0    0      0 s "));
    QVERIFY(watch.waitFor("waiting for Plc2 ("));
    QVERIFY(watch.waitFor("), 1 s"));
    QVERIFY(watch.waitFor("Plc1    Item 0    0      1 s "));
    QVERIFY(watch.waitFor("), 2 s"));
    watch.type("/item 35");
    QVERIFY(watch.waitFor("filter: item 35_"));
    watch.interruptUntilEnd();
    QCOMPARE(watch.finish(), -SIGINT);
}

// A log entry goes when its device has no error any more.
void tst_WatchScreen::wellAgain()
{
    SimulatorThread controller;
    QCOMPARE(controller.addFault("refuse=E1@DM3"), QString());
    TerminalRun watch(text(VELHOST_FILE), arguments({deviceJson(1, controller.port())}), 24, 120,
                      withoutColour());
    QVERIFY(watch.waitFor("Plc1    Item 3 "));
    QVERIFY(watch.waitFor("  log error: Plc1, cycle "));
    QVERIFY(watch.waitFor(end));
    QVERIFY(rowsOf(watch).constFirst().startsWith("Plc1 Item 3 "));
    QVERIFY(controller.faultCounts().at(0).applied > 0);
    controller.clearFaults();
    QVERIFY(watch.waitFor("Item 0 "));
    while (lastDrawing(watch.output()).constLast().contains("log error"))
        QVERIFY(watch.waitFor(end));
    QVERIFY(!rowsOf(watch).constFirst().contains("Item"));
}

void tst_WatchScreen::keyboardRestored_data()
{
    QTest::addColumn<QByteArray>("keys");

    QTest::newRow("q") << QByteArray("q");
    QTest::newRow("Ctrl+C") << QByteArray("\x03");
    QTest::newRow("Ctrl+Z") << QByteArray("\x1a");
    QTest::newRow("Ctrl+\\") << QByteArray("\x1c");
}

// Lines are read as a whole and shown again.
void tst_WatchScreen::keyboardRestored()
{
    QFETCH(QByteArray, keys);

    SimulatorThread controller;
    TerminalRun shell(text("/bin/bash"),
                      QStringList{text("--norc"), text("-c"),
                                  text(R"(set -m; "$@"; stty -a </dev/tty; kill -KILL %1)"),
                                  text("bash"), text(VELHOST_FILE)}
                          + arguments({deviceJson(1, controller.port())}),
                      24, 100, withoutColour());
    QVERIFY(shell.waitFor("Plc1    Item 0 "));
    shell.type(keys);
    QVERIFY(shell.waitFor(leave));
    QVERIFY(shell.waitFor(" icanon"));
    QVERIFY(shell.waitFor(" echo "));
}

// Neither setting the terminal nor reading its keys stops a program in the background.
void tst_WatchScreen::background()
{
    SimulatorThread controller;
    TerminalRun shell(text("/bin/bash"),
                      QStringList{text("--norc"), text("-c"),
                                  text(R"(set -m; "$@" --for 1 & wait; echo over, $?)"),
                                  text("bash"), text(VELHOST_FILE)}
                          + arguments({deviceJson(1, controller.port())}),
                      24, 100, withoutColour());
    QVERIFY(shell.waitFor("Ctrl+C ends it"));
    shell.type("q");
    QVERIFY(shell.waitFor("Device  Cycles  Failed"));
    QVERIFY(shell.waitFor("over, 0"));
}

QTEST_GUILESS_MAIN(tst_WatchScreen)
#include "tst_watchscreen.moc"
