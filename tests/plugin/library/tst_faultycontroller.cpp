#include "hostrecords.h"
#include "recordingbackend.h"
#include "simulatorthread.h"
#include "text.h"

#include <vel/velinterface.h>

#include <QPluginLoader>
#include <QTest>

// The results of the built plug-in for every fault of the simulator that strikes a read, with
// nothing in between that orders what both ends do. tst_faultmatrix has every moment of a cycle,
// and the rest.
class tst_FaultyController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void read_data();
    void read();
    void restart();
};

namespace {

constexpr int timeoutMs = 1000;

// The plug-in in its host, with one device that has the items "First" (D7) and "Second" (D100).
class Plant
{
public:
    explicit Plant(quint16 port)
    {
        host.interfaces = {{text("eth0")}};
        host.configuredDevices = {deviceRecord(7, text("Press"), port, timeoutMs)};
        list = logList(host.configuredDevices.at(0),
                       {dataItem(text("First"), text("D7"), text("1"), text("3"), text("old")),
                        dataItem(text("Second"), text("D100"), text("1"), text("3"), text("old"))});
        plugin = qobject_cast<VELInterface *>(loader.instance());
    }
    ~Plant()
    {
        if (plugin)
            plugin->stopPlugin();
        loader.unload();
    }
    Plant(const Plant &) = delete;
    Plant &operator=(const Plant &) = delete;

    QString value(int item) const { return valueOf(list.dataItems.at(item)); }
    QString error(int item) const { return list.dataItems.at(item).item.lastError; }

    RecordingBackend host;
    LogList list;
    QPluginLoader loader{text(KEYENCE_PLUGIN_FILE)};
    VELInterface *plugin = nullptr;
};

const char *const readError = "[RD D100\r ] socket read data error from <Second> :";

} // namespace

void tst_FaultyController::read_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("error");

    const auto value = [](const char *fault, const char *read) {
        QTest::newRow(fault) << QByteArray(fault) << text(read) << QString();
    };
    const auto error = [](const char *fault, const QString &message) {
        QTest::newRow(fault) << QByteArray(fault) << text("old") << message;
    };
    const QString readFailed = text(readError);
    const QString noAnswer = readFailed + text("Timeout reading (1000ms)");
    const QString refused = text("[RD D100\r] <Second> :invalid address");
    const QString closed = readFailed + text("No data received - Success");
    const QString reset = readFailed + text("No data received - Connection reset by peer");

    value("delay=20", "100");
    error("delay=600000", noAnswer);
    error("silent", noAnswer);
    error("late=600000", noAnswer);
    for (const char *fault :
         {"refuse=E0", "refuse=E1", "refuse=E2", "refuse=E4", "refuse=E5", "refuse=E6"})
        error(fault, refused);
    value("split=4,5000", "10");
    value("dribble=5000", "0");
    value("no-terminator", "100");
    value("empty", "0");
    value("garbage=20", "0");
    value("nul", "0");
    value("long=20", "0");
    value("long=1048576", "0");
    value("short-answer", "0");
    value("extra-word", "0");
    value("not-a-number", "0");
    value("duplicate", "0");
    value("previous-answer", "7");
    error("close=before", closed);
    value("close=in", "1");
    value("close=after", "100");
    error("reset=before", reset);
    value("reset=in", "1");
    value("reset=after", "100");
    error("restart=10000", closed);
}

void tst_FaultyController::read()
{
    QFETCH(QByteArray, fault);
    QFETCH(QString, value);
    QFETCH(QString, error);

    SimulatorThread simulator;
    QCOMPARE(simulator.addFault(fault + "@DM100"), QString());
    Plant plant(simulator.port());
    QVERIFY2(plant.plugin, qPrintable(plant.loader.errorString()));
    QVERIFY(plant.plugin->init());
    QVERIFY(plant.plugin->readData(&plant.list));
    QCOMPARE(plant.value(0), text("7"));
    QCOMPARE(plant.error(0), QString());
    QCOMPARE(plant.value(1), value);
    QCOMPARE(plant.error(1), error);
    QCOMPARE(simulator.faultCounts().constFirst().seen, quint64(1));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
}

// The cycles reconnect to the controller.
void tst_FaultyController::restart()
{
    SimulatorThread simulator;
    QCOMPARE(simulator.addFault("restart=50@DM7@nth=1"), QString());
    Plant plant(simulator.port());
    QVERIFY2(plant.plugin, qPrintable(plant.loader.errorString()));
    QVERIFY(plant.plugin->init());
    QVERIFY(plant.plugin->readData(&plant.list));
    QCOMPARE(plant.error(0),
             text("[RD D7\r ] socket read data error from <First> :No data received "
                  "- Success"));
    QCOMPARE(simulator.faultCounts().constFirst().applied, quint64(1));
    const auto readsAgain = [&plant] {
        plant.plugin->readData(&plant.list);
        return plant.value(0) == text("7") && plant.value(1) == text("100");
    };
    QVERIFY(QTest::qWaitFor(readsAgain));
}

QTEST_GUILESS_MAIN(tst_FaultyController)
#include "tst_faultycontroller.moc"
