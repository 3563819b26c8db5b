#include "fullqueue.h"
#include "loopback.h"
#include "programrun.h"
#include "simulatorthread.h"
#include "text.h"

#include <cycle/cycle.h>
#include <host/host.h>
#include <plant/assignment.h>
#include <plant/plant.h>
#include <plant/records.h>
#include <vel/velinterface.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPluginLoader>
#include <QTest>

#include <csignal>
#include <memory>

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

Q_DECLARE_METATYPE(QJsonObject)

namespace {

const QString deviceName = QStringLiteral("Press");

/// A port of loopback that is bound, but does not listen.
class UnheardPort
{
public:
    UnheardPort()
    {
        sockaddr_in address = loopbackAddress(0);
        socklen_t length = sizeof address;
        auto *generic = reinterpret_cast<sockaddr *>(&address);
        if (::bind(m_descriptor, generic, length) < 0
            || ::getsockname(m_descriptor, generic, &length) < 0)
            qFatal("no port can be had on loopback");
        m_port = ntohs(address.sin_port);
    }
    ~UnheardPort() { ::close(m_descriptor); }
    UnheardPort(const UnheardPort &) = delete;
    UnheardPort &operator=(const UnheardPort &) = delete;

    int port() const { return m_port; }

private:
    int m_descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int m_port = 0;
};

/// Interrupts the waits of this process with a signal every millisecond during its lifetime.
class Interruption
{
public:
    Interruption()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, &m_before);
        const itimerval everyMillisecond{{0, 1000}, {0, 1000}};
        ::setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    }
    ~Interruption()
    {
        const itimerval never{};
        ::setitimer(ITIMER_REAL, &never, nullptr);
        ::sigaction(SIGALRM, &m_before, nullptr);
    }
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    struct sigaction m_before = {};
};

/// The descriptor in this process that is connected to that port of loopback; -1: none.
int descriptorConnectedTo(int port)
{
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr *>(&address), &length) == 0
            && address.sin_family == AF_INET && ntohs(address.sin_port) == port)
            return descriptor;
    }
    return -1;
}

/// The plant of the provocation, with this port if it has none.
Plant plantOf(const QJsonObject &provocation, int port)
{
    QJsonObject parameters = provocation.value(text("parameters")).toObject();
    if (!parameters.contains(text("port")))
        parameters.insert(text("port"), QString::number(port));
    const QJsonObject device{
        {text("id"), 1},
        {text("name"), deviceName},
        {text("ip"), provocation.value(text("ip")).toString(text("127.0.0.1"))},
        {text("parameters"), parameters},
        {text("items"), provocation.value(text("items"))}};
    const QJsonObject root{{text("devices"), QJsonArray{device}}};
    QList<Problem> problems;
    const auto plant = parsePlantDraft(QJsonDocument(root).toJson(), &problems);
    if (!problems.isEmpty())
        qFatal("%s", qPrintable(problemLines(text("plant.json"), problems).join(u' ')));
    return *plant;
}

QStringList texts(const QJsonValue &list)
{
    QStringList result;
    const QJsonArray array = list.toArray();
    for (const QJsonValue &entry : array)
        result.append(entry.toString());
    return result;
}

/// The built plug-in, loaded during the lifetime of the object.
class Plugin
{
public:
    ~Plugin()
    {
        if (instance != nullptr)
            instance->stopPlugin();
        loader.unload();
    }
    Plugin() = default;
    Plugin(const Plugin &) = delete;
    Plugin &operator=(const Plugin &) = delete;

    QPluginLoader loader{text(KEYENCE_PLUGIN_FILE)};
    VELInterface *instance = qobject_cast<VELInterface *>(loader.instance());
};

/// The last errors that are not empty, by the name of the device or the item.
QJsonObject lastErrors(const LogList &list)
{
    QJsonObject result;
    if (!list.lastError.isEmpty())
        result.insert(list.name, list.lastError);
    for (const DataItem &item : list.dataItems) {
        if (!item.item.lastError.isEmpty())
            result.insert(item.item.name, item.item.lastError);
    }
    return result;
}

/// The entries of the catalogue that the built program finds for a text.
QStringList explainedAs(const QString &error)
{
    const ProgramRun run = runProgram(
        text(VELHOST_FILE), {text("explain"), text("--format"), text("json"), text("--"), error},
        QCoreApplication::applicationDirPath());
    QStringList ids;
    const QStringList lines = run.output.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines)
        ids.append(QJsonDocument::fromJson(line.toUtf8())[text("id")].toString());
    return run.exitCode == 0 && run.errors.isEmpty() ? ids : QStringList{run.errors};
}

} // namespace

// Provokes every error that can happen according to the catalogue.
class tst_ErrorProvocation : public QObject
{
    Q_OBJECT

    void serve(VELInterface *plugin, const QJsonObject &provocation, int port, LogList *list);

private Q_SLOTS:
    void provoke_data();
    void provoke();
};

void tst_ErrorProvocation::provoke_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QJsonObject>("provocation");

    QFile file(text(PROVOCATIONS_FILE));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const QJsonObject errors = QJsonDocument::fromJson(file.readAll()).object();
    for (auto error = errors.begin(); error != errors.end(); ++error) {
        const QJsonArray provocations = error.value().toArray();
        for (const QJsonValue &provocation : provocations) {
            const QString name = error.key() + u": " + provocation[text("what")].toString();
            QTest::newRow(qPrintable(name)) << error.key() << provocation.toObject();
        }
    }
}

/// Lets the plug-in read or write the list as often as the provocation says.
void tst_ErrorProvocation::serve(VELInterface *plugin, const QJsonObject &provocation, int port,
                                 LogList *list)
{
    std::unique_ptr<Interruption> interruption;
    if (provocation.value(text("peer")) == text("signal"))
        interruption = std::make_unique<Interruption>();
    if (provocation.contains(text("write"))) {
        QVERIFY(plugin->writeData(list));
        return;
    }
    for (int rest = provocation.value(text("cycles")).toInt(1); rest > 0; --rest) {
        const int descriptor = descriptorConnectedTo(port);
        QVERIFY(plugin->readData(list));
        // Waits until the peer's close or reset after the answer has arrived.
        pollfd hangUp{descriptor, 0, 0};
        if (rest > 1)
            QCOMPARE(::poll(&hangUp, 1, 10000), 1);
    }
}

void tst_ErrorProvocation::provoke()
{
    QFETCH(QString, id);
    QFETCH(QJsonObject, provocation);

    SimulatorThread simulator;
    QVERIFY2(simulator.isListening(), qPrintable(simulator.errorString()));
    const QStringList faults = texts(provocation.value(text("faults")));
    for (const QString &fault : faults)
        QCOMPARE(simulator.addFault(fault.toUtf8()), QString());
    const QString peer = provocation.value(text("peer")).toString();
    std::unique_ptr<FullQueue> fullQueue;
    std::unique_ptr<UnheardPort> unheard;
    int port = simulator.port();
    if (peer == text("full queue")) {
        fullQueue = std::make_unique<FullQueue>();
        port = fullQueue->port();
    } else if (peer == text("nobody")) {
        unheard = std::make_unique<UnheardPort>();
        port = unheard->port();
    }

    QStringList log;
    const Plant plant = plantOf(provocation, port);
    const Host host(plant, [&log](const LogEntry &entry) { log.append(entry.text); });
    const Plugin plugin;
    QVERIFY2(plugin.instance, qPrintable(plugin.loader.errorString()));
    QVERIFY(plugin.instance->init());
    QCOMPARE(log, QStringList());

    QList<Problem> problems;
    const QList<DeviceInstancePlugin> devices
        = deviceRecords(plant, *host.registration(), &problems);
    QVERIFY(problems.isEmpty());
    LogList list = readLists(devices).constFirst();
    if (provocation.contains(text("write")))
        list = writeLists(devices, {{0, 0, provocation.value(text("write")).toString()}})
                   .constFirst();
    serve(plugin.instance, provocation, port, &list);
    if (QTest::currentTestFailed())
        return;

    QCOMPARE(log, texts(provocation.value(text("log"))));
    QCOMPARE(lastErrors(list), provocation.value(text("lastErrors")).toObject());
    // A command that the plug-in did not wait for may still be on its way.
    const auto commands = static_cast<quint64>(provocation.value(text("commands")).toInt());
    QVERIFY(QTest::qWaitFor([&] { return simulator.counters().commands == commands; }));
    const QVector<FaultCount> counts = simulator.faultCounts();
    QCOMPARE(counts.size(), faults.size());
    for (const FaultCount &count : counts)
        QCOMPARE(count.applied, quint64(1));

    QCOMPARE(explainedAs(log.constLast()), QStringList{id});
    const QJsonObject texts = provocation.value(text("lastErrors")).toObject();
    for (const QJsonValue &shown : texts) {
        if (log.constLast().contains(shown.toString()))
            QVERIFY(explainedAs(shown.toString()).contains(id));
    }
}

QTEST_GUILESS_MAIN(tst_ErrorProvocation)
#include "tst_errorprovocation.moc"
