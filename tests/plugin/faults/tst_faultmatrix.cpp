#include "faultmodel.h"
#include "faultspage.h"
#include "hostrecords.h"
#include "pluginlink.h"
#include "recordingbackend.h"
#include "simulatorthread.h"
#include "text.h"
#include "textclient.h"

#include <vel/velinterface.h>

#include <QFile>
#include <QPluginLoader>
#include <QTest>

#include <memory>
#include <numeric>
#include <utility>

// Every fault of the simulator at every moment at which it can strike the built plug-in, and the
// cycles behind it.

namespace {

// Where nothing is to come in time, the plug-in waits for it. Everything else is there when it
// begins to wait (PluginLink), or comes a little later.
constexpr int shortTimeoutMs = 20;
constexpr int longTimeoutMs = 10000;

int timeoutFor(const FaultEffect &effect)
{
    const QByteArray fault = effect.fault;
    const bool comesLater = fault.endsWith("=20") || fault.endsWith(",300");
    return comesLater ? longTimeoutMs : shortTimeoutMs;
}

// A plug-in in its host, with a device and its four items, and the controller.
class Plant
{
public:
    explicit Plant(bool isWrite, int timeoutMs) : m_isWrite(isWrite), m_timeoutMs(timeoutMs)
    {
        m_plugin = qobject_cast<VELInterface *>(m_loader.instance());
    }
    ~Plant()
    {
        if (m_plugin != nullptr)
            m_plugin->stopPlugin();
        m_loader.unload();
    }
    Plant(const Plant &) = delete;
    Plant &operator=(const Plant &) = delete;

    VELInterface *plugin() { return m_plugin; }
    SimulatorThread &simulator() { return *m_simulator; }
    PluginLink &link() { return m_link; }

    void init()
    {
        m_host.configuredDevices
            = {deviceRecord(7, text("Press"), m_simulator->port(), m_timeoutMs)};
        m_plugin->init();
    }

    CycleResult cycle()
    {
        const QMap<QByteArray, int> &words = wordsBefore();
        for (auto word = words.begin(); word != words.end(); ++word)
            m_simulator->setWord(word.key(), word.value());
        m_host.errorLog.clear();
        LogList list = listBefore();
        m_isWrite ? m_plugin->writeData(&list) : m_plugin->readData(&list);

        m_simulator->settle();
        CycleResult result;
        for (const DataItem &item : qAsConst(list.dataItems)) {
            result.values.append(valueOf(item));
            result.errors.append(item.item.lastError);
        }
        result.deviceError = list.lastError;
        result.log = m_host.errorLog;
        result.commands = m_simulator->takeCommands();
        for (auto word = words.begin(); word != words.end(); ++word)
            result.words[word.key()] = m_simulator->word(word.key());
        const int clients = static_cast<int>(m_simulator->counters().clients);
        result.newConnections = clients - std::exchange(m_clients, clients);
        return result;
    }

    // The plug-in's first connection meets the fault. The system connects it before the controller
    // takes notice. Where the controller is to be away, another client has had it restart: nobody
    // listens when that client's connection has ended.
    void connectStruck(bool isAway)
    {
        if (isAway) {
            TextClient client(m_simulator->port());
            client.send("RD DM0\r");
            client.receiveToEnd();
            m_simulator->takeCommands();
            m_clients = 1;
        }
        m_simulator->pause();
        init();
        m_simulator->resume();
    }

    // The controller is there again, at the same port.
    bool startAgain()
    {
        const quint16 port = m_simulator->port();
        m_simulator.reset();
        m_simulator
            = std::make_unique<SimulatorThread>(QHostAddress(QHostAddress::LocalHost), port);
        m_link.follow(m_simulator.get());
        m_clients = 0;
        return m_simulator->isListening();
    }

private:
    LogList listBefore() const
    {
        const QStringList values = valuesBefore(m_isWrite);
        return logList(m_host.configuredDevices.at(0),
                       {dataItem(text("First"), text("D7"), text("1"), text("3"), values.at(0)),
                        dataItem(text("Second"), text("D100"), text("1"), text("3"), values.at(1)),
                        dataItem(text("Bit"), text("D201.3"), text("1"), text("0"), values.at(2)),
                        dataItem(text("Last"), text("D1000"), text("1"), text("3"), values.at(3))});
    }

    const bool m_isWrite;
    const int m_timeoutMs;
    std::unique_ptr<SimulatorThread> m_simulator = std::make_unique<SimulatorThread>();
    PluginLink m_link{m_simulator.get()};
    RecordingBackend m_host;
    QPluginLoader m_loader{text(KEYENCE_PLUGIN_FILE)};
    VELInterface *m_plugin = nullptr;
    int m_clients = 0;
};

} // namespace

Q_DECLARE_METATYPE(FaultMoment)

class tst_FaultMatrix : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindHasARow();
    void everyCellIsARowOrHasAReason();
    void cell_data();
    void cell();
    void page();
};

void tst_FaultMatrix::everyKindHasARow()
{
    Fault fault;
    const QString names = parseFault("?", &fault).section(text("use one of: "), 1);
    QStringList described;
    for (const FaultEffect &effect : faultEffects())
        described.append(text(effect.fault).section(u'=', 0, 0));
    described.removeDuplicates();
    QCOMPARE(described, names.split(text(", ")));
}

void tst_FaultMatrix::everyCellIsARowOrHasAReason()
{
    int rows = 0;
    QMap<QString, int> reasons;
    for (const FaultEffect &effect : faultEffects()) {
        for (const FaultMoment moment : moments) {
            for (const bool isWrite : {false, true}) {
                const QString reason = whyNot(effect, moment, isWrite);
                ++(reason.isEmpty() ? rows : reasons[reason]);
            }
        }
    }
    qInfo("%d rows", rows);
    for (auto reason = reasons.begin(); reason != reasons.end(); ++reason)
        qInfo("%d cells cannot be: %s", reason.value(), qPrintable(reason.key()));
    const int cells = static_cast<int>(faultEffects().size() * moments.size() * 2);
    QCOMPARE(std::accumulate(reasons.begin(), reasons.end(), rows), cells);
}

void tst_FaultMatrix::cell_data()
{
    QTest::addColumn<int>("effect");
    QTest::addColumn<FaultMoment>("moment");
    QTest::addColumn<bool>("isWrite");

    int number = 0;
    for (const FaultEffect &effect : faultEffects()) {
        for (const FaultMoment moment : moments) {
            for (const bool isWrite : {false, true}) {
                if (whyNot(effect, moment, isWrite).isEmpty())
                    QTest::addRow("%s, %s, %s", effect.fault, nameOf(moment),
                                  isWrite ? "write" : "read")
                        << number << moment << isWrite;
            }
        }
        ++number;
    }
}

void tst_FaultMatrix::cell()
{
    QFETCH(int, effect);
    QFETCH(FaultMoment, moment);
    QFETCH(bool, isWrite);

    const FaultEffect &fault = faultEffects().at(static_cast<std::size_t>(effect));
    const FaultCourse course = courseOf(fault, moment, isWrite, timeoutFor(fault));
    Plant plant(isWrite, timeoutFor(fault));
    QVERIFY(plant.plugin() != nullptr);
    QVERIFY(plant.simulator().isListening());
    if (fault.then == Then::SendsRest)
        plant.link().expectRests();

    if (moment != FaultMoment::Connecting)
        plant.init();
    for (const CycleResult &expected : course.before)
        QCOMPARE(plant.cycle().text(), expected.text());
    QCOMPARE(plant.simulator().addFault(QByteArray(fault.fault) + selectorOf(moment, isWrite)),
             QString());
    if (moment == FaultMoment::Connecting)
        plant.connectStruck(fault.then == Then::IsGone);
    QCOMPARE(plant.cycle().text(), course.struck.text());
    QCOMPARE(plant.simulator().faultCounts().constFirst().applied, quint64(1));
    for (const CycleResult &expected : course.away)
        QCOMPARE(plant.cycle().text(), expected.text());

    plant.simulator().clearFaults();
    if (fault.then == Then::IsGone)
        QVERIFY(plant.startAgain());
    for (const CycleResult &expected : course.after)
        QCOMPARE(plant.cycle().text(), expected.text());
    QVERIFY(plant.link().sends() > 0);
    // What came twice comes for ever.
    if (course.goodCycle == 0)
        QCOMPARE(course.after.constLast().text(), course.after.at(course.after.size() - 2).text());
}

void tst_FaultMatrix::page()
{
    QFile file(text(FAULTS_PAGE));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    const QList<QStringList> tables = faultTables();
    for (const QStringList &table : tables) {
        const int first = lines.indexOf(table.constFirst());
        const QStringList shown = first < 0 ? QStringList() : lines.mid(first, table.size());
        if (shown == table)
            continue;
        // At once, so that they can be put into the page.
        for (const QString &line : table)
            qInfo("%s", qPrintable(line));
        QFAIL("docs/faults.md must have the table that stands above");
    }
}

QTEST_GUILESS_MAIN(tst_FaultMatrix)
#include "tst_faultmatrix.moc"
