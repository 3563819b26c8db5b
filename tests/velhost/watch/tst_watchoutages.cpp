#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "terminalrun.h"
#include "text.h"
#include "watchscreen.h"
#include "writefile.h"

#include <watch/outages.h>

#include <QDateTime>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

// The outages that `watch` lists.

namespace {

QByteArray plantAt(int port)
{
    return plantJson("127.0.0.1", portParameter(port) + R"(, "timeout": "300")",
                     {itemJson("A", "DM1"), itemJson("B", "DM2"), itemJson("C", "DM3")});
}

/// The arguments that watch the plant for a second with the real plug-in.
QStringList arguments(const char *format)
{
    return {text("watch"),    text("plant.json"), text("--plugin"),   text(KEYENCE_PLUGIN_FILE),
            text("--for"),    text("1"),          text("--interval"), text("100"),
            text("--format"), text(format)};
}

/// A table without what it says about time.
QString withoutDates(QString table)
{
    static const QRegularExpression time(
        text("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
    return table.replace(time, text("T"));
}

} // namespace

class tst_WatchOutages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void overSoon();
    void still();
    void json();
    void itemWithoutValue();
    void none();
    void onScreen();
    void keepsLatest();
};

// The second item gets no answer once, and the third fails because of that.
void tst_WatchOutages::overSoon()
{
    SimulatorThread controller;
    QCOMPARE(controller.addFault("silent@DM2@nth=2"), QString());
    const ProgramRun result
        = runWithPlant(text(VELHOST_FILE), arguments("table"), plantAt(controller.port()));
    QCOMPARE(controller.faultCounts().at(0).applied, quint64(1));
    const QString table = withoutDates(result.errors)
                              .section(text("Device  Out from"), 1)
                              .section(text("\n\n"), 0, 0);
    QCOMPARE(table.section(u'\n', 1), text("Press   T  T  1       B     Timeout reading (300ms)"));
    QVERIFY(result.errors.section(u'\n', -3, -3).startsWith(text("Device  Cycles ")));
}

// The controller never answers: the device is out from its first to its last cycle.
void tst_WatchOutages::still()
{
    SimulatorThread controller;
    QCOMPARE(controller.addFault("silent"), QString());
    const ProgramRun result
        = runWithPlant(text(VELHOST_FILE), arguments("csv"), plantAt(controller.port()));
    QVERIFY(controller.faultCounts().at(0).applied > 1);
    const QString cycles
        = result.errors.section(u'\n', -2, -2).split(u' ', Qt::SkipEmptyParts).value(1);
    const QString table = withoutDates(result.errors)
                              .section(text("Device  Out from"), 1)
                              .section(text("\n\n"), 0, 0);
    QCOMPARE(table.section(u'\n', 1),
             text("Press   T  still  %1       A     Timeout reading (300ms)").arg(cycles));
}

void tst_WatchOutages::json()
{
    SimulatorThread controller;
    QCOMPARE(controller.addFault("silent@DM2@nth=2"), QString());
    const ProgramRun result
        = runWithPlant(text(VELHOST_FILE), arguments("json"), plantAt(controller.port()));
    QCOMPARE(controller.faultCounts().at(0).applied, quint64(1));
    QCOMPARE(
        withoutTimes(result.output).section(u'\n', -3, -3),
        text(
            R"json({"type":"outage","device":"Press","from":"T","to":"T","cycles":1,"item":"B","cause":"[RD DM2\r ] socket read data error from <B> :Timeout reading (300ms)"})json"));
    QVERIFY(result.output.section(u'\n', -2, -2).startsWith(text(R"({"type":"summary",)")));
}

// An item that never gave a value tells nothing about the device.
void tst_WatchOutages::itemWithoutValue()
{
    SimulatorThread controller;
    QCOMPARE(controller.addFault("refuse=E1@DM1"), QString());
    const ProgramRun result
        = runWithPlant(text(VELHOST_FILE), arguments("table"), plantAt(controller.port()));
    QVERIFY(controller.faultCounts().at(0).applied > 0);
    QVERIFY2(!result.errors.contains(text("Out from")), qPrintable(result.errors));
    QCOMPARE(result.exitCode, 1);
}

void tst_WatchOutages::none()
{
    SimulatorThread controller;
    const ProgramRun result
        = runWithPlant(text(VELHOST_FILE), arguments("table"), plantAt(controller.port()));
    QVERIFY2(result.errors.startsWith(text("Device  Cycles ")), qPrintable(result.errors));
    QCOMPARE(result.exitCode, 0);
}

// The controller goes and comes back while the list is shown.
void tst_WatchOutages::onScreen()
{
    auto controller = std::make_unique<SimulatorThread>();
    const int port = controller->port();
    const QTemporaryDir folder;
    const QString plant = folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantAt(port)));
    TerminalRun watch(text(VELHOST_FILE),
                      {text("watch"), plant, text("--interval"), text("50"), text("--plugin"),
                       text(KEYENCE_PLUGIN_FILE)},
                      24, 120, terminalEnvironment());
    QVERIFY(watch.waitFor("Press   C "));
    watch.type("o");
    QVERIFY(watch.waitFor("outages; o shows the values, q ends"));
    QVERIFY(watch.waitFor("Device  Out from  To  Cycles  Item  First cause"));
    controller.reset();
    QVERIFY(watch.waitFor("  still  "));
    QVERIFY(watch.waitFor(end));
    // Which item it is, and how it fails, depends on the moment.
    const QByteArray before = lastDrawing(watch.output()).value(2).simplified();
    const QByteArray cause = before.mid(before.lastIndexOf(" still ")).split(' ').mid(3).join(' ');
    QVERIFY2(cause.size() > 10, before.constData());
    controller = std::make_unique<SimulatorThread>(QHostAddress(QHostAddress::LocalHost),
                                                   static_cast<quint16>(port));
    QVERIFY(controller->isListening());
    while (lastDrawing(watch.output()).join().contains("  still  "))
        QVERIFY(watch.waitFor(end));
    const QByteArray after = lastDrawing(watch.output()).value(2).simplified();
    QVERIFY2(after.endsWith(cause), after.constData());
    watch.type("o");
    QVERIFY(watch.waitFor("Press   C "));
    watch.type("q");
    QCOMPARE(watch.finish(), 130);
    const QByteArray rest = watch.output().mid(watch.output().lastIndexOf(leave));
    QVERIFY2(rest.contains("Device  Out from "), rest.constData());
}

// Of those that are over. One that lasts stays, so that its beginning is true.
void tst_WatchOutages::keepsLatest()
{
    const QDateTime start(QDate(2024, 2, 29), QTime(12, 0));
    ItemReport cause;
    cause.error = text("lost");
    QList<Outage> outages;
    addRead(text("Oven"), start, cause, &outages);
    const auto addOutages = [&](int count) {
        for (int i = 0; i < count; ++i) {
            addRead(text("Press"), start.addSecs(i), cause, &outages);
            addRead(text("Press"), start.addSecs(i + 1), ItemReport(), &outages);
        }
        addRead(text("Oven"), start, cause, &outages);
    };
    addOutages(998);
    QCOMPARE(outages.size(), 999);
    QCOMPARE(outageRows(outages).size(), 1 + 999);
    addOutages(2);
    QCOMPARE(outages.size(), 1000);
    QCOMPARE(outageRows(outages).constLast(),
             QStringList({{}, {}, {}, {}, {}, text("only the latest are kept")}));
    QCOMPARE(outages.first().device, text("Oven"));
    QCOMPARE(outages.first().from, start);
    QCOMPARE(outages.first().cycles, 3);
    QCOMPARE(outages.at(1).from, start.addSecs(1));
}

QTEST_GUILESS_MAIN(tst_WatchOutages)
#include "tst_watchoutages.moc"
