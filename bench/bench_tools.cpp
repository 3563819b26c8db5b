#include "loadedplugin.h"
#include "minimalserver.h"
#include "plantjson.h"
#include "sidebyside.h"
#include "writefile.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdlib>
#include <string>

// What the programs cost: the simulator against a server that does the least, and the development
// host beside the plug-in that it drives.

namespace {

constexpr int exchangesARun = 2000;

class Simulator
{
public:
    Simulator(const QStringList &arguments, const QString &errorFile)
    {
        m_process.setStandardErrorFile(errorFile);
        m_process.start(QStringLiteral(KVSIM_PROGRAM),
                        QStringList{QStringLiteral("--port"), QStringLiteral("0")} + arguments);
        if (!m_process.waitForReadyRead())
            qFatal("kvsim: %s", qPrintable(m_process.errorString()));
        m_port = m_process.readLine().trimmed().split(':').constLast().toInt();
    }
    ~Simulator()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }
    Simulator(const Simulator &) = delete;
    Simulator &operator=(const Simulator &) = delete;

    int port() const { return m_port; }

private:
    QProcess m_process;
    int m_port = 0;
};

Variant exchanges(const char *name, int descriptor)
{
    return {name, [descriptor] { exchangeBare(descriptor, exchangesARun); }};
}

void compareServers(const MinimalServer &minimal, const QDir &folder)
{
    const Simulator plain({}, QProcess::nullDevice());
    const Simulator tracing({QStringLiteral("--trace")}, folder.filePath(QStringLiteral("trace")));
    const std::vector<Variant> variants = {
        exchanges("kvsim", connectedTo(plain.port())),
        exchanges("kvsim --trace", connectedTo(tracing.port())),
        exchanges("minimal server", connectedTo(minimal.port())),
    };
    const std::vector<Times> times = inTurns(variants, exchangesARun);
    for (std::size_t i = 0; i < variants.size(); ++i)
        printFigure(variants[i].name, exchangesARun, times[i]);
    printFigure("minimal server / kvsim", exchangesARun, ratios(times[2], times[0]));
    printFigure("minimal server / kvsim --trace", exchangesARun, ratios(times[2], times[1]));
}

void runVelhost(const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral(VELHOST_FILE), arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        qFatal("velhost %s failed", qPrintable(arguments.join(QLatin1Char(' '))));
}

QString plantFile(const QDir &folder, int items, int port)
{
    QList<QByteArray> list;
    for (int i = 0; i < items; ++i)
        list.append(itemJson("Item" + QByteArray::number(i), "DM" + QByteArray::number(i)));
    QString file = folder.filePath(QStringLiteral("%1.json").arg(items));
    if (!writeFile(file, plantJson("127.0.0.1", portParameter(port), list)))
        qFatal("%s cannot be written", qPrintable(file));
    return file;
}

Times difference(const Times &more, const Times &less)
{
    Times result;
    for (std::size_t round = 0; round < more.size(); ++round)
        result.push_back(more[round] - less[round]);
    return result;
}

// Microseconds that velhost adds to an item: what ten thousand items more take, without what the
// plug-in takes for as many.
void measureReads(const MinimalServer &server, const QDir &folder)
{
    constexpr int few = 1000;
    constexpr int many = 11000;
    const DeviceInstancePlugin device = deviceRecord(1, QStringLiteral("bench"), server.port());
    const LoadedPlugin plugin({device});
    LogList list = wordList(device, many - few);
    const QString fewItems = plantFile(folder, few, server.port());
    const QString manyItems = plantFile(folder, many, server.port());
    for (const char *format : {"json", "csv", "table"}) {
        const auto read = [format](const QString &plant) {
            return [=] {
                runVelhost({QStringLiteral("read"), plant, QStringLiteral("--format"),
                            QLatin1String(format)});
            };
        };
        const std::vector<Times> times = inTurns(
            {{"", read(manyItems)}, {"", read(fewItems)}, {"", [&] { plugin->readData(&list); }}},
            many - few);
        const Times added = difference(difference(times[0], times[1]), times[2]);
        printFigure(std::string("velhost read --format ") + format, many, added);
    }
}

void measurePlan(const MinimalServer &server, const QDir &folder)
{
    constexpr int items = 10000;
    const QString plant = plantFile(folder, items, server.port());
    const std::vector<Times> times = inTurns({{"",
                                               [=] {
                                                   runVelhost({QStringLiteral("plan"), plant});
                                               }}},
                                             1);
    printFigure("velhost plan", items, times[0]);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    stayOnOneProcessor();
    const MinimalServer minimal;
    printHeader();
    compareServers(minimal, QDir(folder.path()));
    measureReads(minimal, QDir(folder.path()));
    measurePlan(minimal, QDir(folder.path()));
    return EXIT_SUCCESS;
}
