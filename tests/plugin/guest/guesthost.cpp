#include "hostrecords.h"
#include "processstate.h"
#include "recordingbackend.h"
#include "text.h"

#include <vel/velinterface.h>

#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QPluginLoader>

#include <array>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <utility>

#include <fcntl.h>
#include <langinfo.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

// The host of tst_guest, a process without anything but the plug-in in it: REPORT PLUG-IN MODE
// PORT... It writes what it sees into the file REPORT, because the plug-in is to print nothing.

namespace {

struct Arguments
{
    QString report;
    QString plugin;
    QByteArray mode;
    QList<int> ports;
};

// Opened and closed for each text, so that no descriptor is open meanwhile.
void report(const Arguments &arguments, const QByteArrayList &lines)
{
    QFile file(arguments.report);
    if (!file.open(QIODevice::Append))
        qFatal("the report cannot be written");
    for (const QByteArray &line : lines)
        file.write(line + '\n');
}

// One life of the plug-in: loaded, driven, stopped and unloaded.
void live(const Arguments &arguments, RecordingBackend *host, int timeoutMs,
          const std::function<void(VELInterface *)> &drive)
{
    for (int i = 0; i < arguments.ports.size(); ++i)
        host->configuredDevices.append(
            deviceRecord(i, text("Press"), arguments.ports.at(i), timeoutMs));
    QPluginLoader loader(arguments.plugin);
    auto *plugin = qobject_cast<VELInterface *>(loader.instance());
    if (plugin == nullptr)
        qFatal("%s", qPrintable(loader.errorString()));
    drive(plugin);
    plugin->stopPlugin();
    if (!loader.unload())
        qFatal("the plug-in cannot be unloaded");
}

DataItem item(const char *name, const char *address, const char *type, const char *value)
{
    return dataItem(text(name), text(address), text("1"), text(type), text(value));
}

LogList fourItems(const DeviceInstancePlugin &device)
{
    return logList(device, {item("First", "D7", "3", "1"), item("Second", "D100", "3", "2"),
                            item("Bit", "D201.3", "0", "0"), item("Last", "D1000", "3", "3")});
}

QByteArrayList linesOf(const LogList &list)
{
    QByteArrayList lines;
    for (const DataItem &served : list.dataItems)
        lines.append(served.item.name.toUtf8() + " '" + valueOf(served).toUtf8() + "' "
                     + served.item.lastError.toUtf8());
    return lines;
}

void liveFiveTimes(const Arguments &arguments)
{
    report(arguments, processState());
    for (int life = 0; life < 5; ++life) {
        {
            RecordingBackend host;
            host.interfaces = {{text("eth0")}};
            live(arguments, &host, 20, [&host](VELInterface *plugin) {
                plugin->init();
                for (const DeviceInstancePlugin &device : qAsConst(host.configuredDevices)) {
                    LogList list = fourItems(device);
                    plugin->readData(&list);
                    plugin->writeData(&list);
                    plugin->readData(&list);
                }
            });
        }
        const QByteArray heap = QByteArray::number(heapInUse());
        report(arguments, QByteArrayList{"", "heap: " + heap} + processState());
    }
}

// A thousand more than select() could watch.
void holdTwoThousandDescriptors()
{
    constexpr rlim_t wanted = 2100;
    struct rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < wanted)
        limit.rlim_cur = wanted;
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
        qFatal("this user may not have 2100 descriptors: raise the limit, see ulimit -H -n");
    for (int i = 0; i < 2000; ++i) {
        if (::open("/dev/null", O_RDONLY | O_CLOEXEC) < 0)
            qFatal("/dev/null cannot be opened so often");
    }
}

QByteArrayList socketsIn(const QByteArrayList &state)
{
    QByteArrayList sockets;
    for (const QByteArray &line : state) {
        if (line.contains(": socket:"))
            sockets.append(line.left(line.indexOf(':')));
    }
    return sockets;
}

// The first device answers, the second one does not.
void manyDescriptors(const Arguments &arguments)
{
    holdTwoThousandDescriptors();
    RecordingBackend host;
    live(arguments, &host, 20, [&](VELInterface *plugin) {
        // The one that answers is waited for.
        host.configuredDevices[0].parameters[text("timeout")] = text("10000");
        plugin->init();
        const QByteArrayList sockets = socketsIn(processState());
        for (const QByteArray &socket : sockets) {
            const int number = socket.mid(socket.lastIndexOf(' ') + 1).toInt();
            report(arguments, {number >= 2000 ? "a socket above 2000" : "a socket below 2000"});
        }
        LogList list = fourItems(host.configuredDevices.at(0));
        plugin->readData(&list);
        report(arguments, linesOf(list));
        plugin->writeData(&list);
        LogList silent = fourItems(host.configuredDevices.at(1));
        plugin->readData(&silent);
        report(arguments, linesOf(silent));
    });
    report(arguments, {"left open: " + QByteArray::number(socketsIn(processState()).size())});
}

// Opens a file when it hears of the first error, as a host that writes a log file does.
class OpeningHost : public RecordingBackend
{
public:
    explicit OpeningHost(QString fileName) : m_fileName(std::move(fileName)) {}

    void logError(const QString &message) override
    {
        RecordingBackend::logError(message);
        if (descriptor < 0)
            descriptor = ::open(QFile::encodeName(m_fileName).constData(),
                                O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    }

    int descriptor = -1;

private:
    const QString m_fileName;
};

// The host's file gets the number of the connection that was closed in mid-cycle. The device does
// not answer.
void reusedDescriptor(const Arguments &arguments)
{
    OpeningHost host(arguments.report + text(".log"));
    QByteArray connection;
    live(arguments, &host, 20, [&](VELInterface *plugin) {
        plugin->init();
        connection = socketsIn(processState()).value(0);
        LogList list = fourItems(host.configuredDevices.at(0));
        plugin->readData(&list);
        report(arguments, linesOf(list));
        const QByteArray file = "descriptor " + QByteArray::number(host.descriptor);
        report(arguments, {file == connection ? "the same number" : "another number"});
        plugin->writeData(&list);
        plugin->readData(&list);
    });
    struct stat state = {};
    const bool isOpen = ::fstat(host.descriptor, &state) == 0 && S_ISREG(state.st_mode);
    report(arguments, {isOpen ? "the file is open" : "the file is closed",
                       "bytes: " + QByteArray::number(qint64(state.st_size))});
}

// Values and bytes in the locale of the environment.
void values(const Arguments &arguments)
{
    if (std::setlocale(LC_ALL, "") == nullptr)
        qFatal("there is no such locale");
    const QByteArray point = std::localeconv()->decimal_point;
    if (point == ",")
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "%.1f", 1.5);
    report(arguments, {QByteArray(number.data()) + ' ' + QLocale().toString(1.5).toUtf8() + ' '
                       + ::nl_langinfo(CODESET)});
    RecordingBackend host;
    live(arguments, &host, 10000, [&](VELInterface *plugin) {
        plugin->init();
        LogList list = logList(
            host.configuredDevices.at(0),
            {item("Bit", "DM100.3", "0", "1"), item("Short", "D1", "1", "-1234"),
             item("Long", "D2", "2", "-70000"), item("Word", "D4", "3", "65535"),
             item("DWord", "D5", "4", "4000000000"), item("Hex16", "D7", "5", "FF"),
             item("Hex32", "D8", "6", "ABCD1234"), item("Float", "D10", "7", "1234.5"),
             item("Double", "D12", "8", "-0.015625"), item("Text", "D20-3", "9", "Ab,.9~")});
        plugin->writeData(&list);
        for (DataItem &written : list.dataItems)
            written.values[text("value")] = text("old");
        plugin->readData(&list);
        report(arguments, linesOf(list));
    });
}

volatile std::sig_atomic_t interruptions = 0;

void interruptEvery(suseconds_t microseconds)
{
    const timeval interval{0, microseconds};
    const itimerval timer{interval, interval};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

// The first device does not take a connection, the second one takes it and does not answer. Both
// would be waited for for a minute.
void interruptedWaits(const Arguments &arguments)
{
    struct sigaction action = {};
    action.sa_handler = [](int) { interruptions = interruptions + 1; };
    ::sigaction(SIGALRM, &action, nullptr);
    Arguments first = arguments;
    first.ports = arguments.ports.mid(0, 1);
    Arguments second = arguments;
    second.ports = arguments.ports.mid(1, 1);

    QElapsedTimer time;
    time.start();
    RecordingBackend deaf;
    live(first, &deaf, 60000, [&](VELInterface *plugin) {
        interruptEvery(5000);
        plugin->init();
        LogList list = fourItems(deaf.configuredDevices.at(0));
        plugin->readData(&list);
        interruptEvery(0);
        report(arguments, {list.lastError.toUtf8()});
    });
    RecordingBackend dumb;
    live(second, &dumb, 60000, [&](VELInterface *plugin) {
        plugin->init();
        LogList list = fourItems(dumb.configuredDevices.at(0));
        interruptEvery(5000);
        plugin->readData(&list);
        interruptEvery(0);
        report(arguments, linesOf(list));
    });
    report(arguments, {interruptions > 2 ? "interrupted" : "not interrupted",
                       time.elapsed() < 60000 ? "in time" : "too late"});
}

} // namespace

int main(int argc, char **argv)
{
    Arguments arguments{QFile::decodeName(argv[1]), QFile::decodeName(argv[2]), argv[3], {}};
    for (int i = 4; i < argc; ++i)
        arguments.ports.append(QByteArray(argv[i]).toInt());

    const QMap<QByteArray, void (*)(const Arguments &)> modes{
        {"lives", liveFiveTimes}, {"descriptors", manyDescriptors}, {"reuse", reusedDescriptor},
        {"values", values},       {"interrupts", interruptedWaits},
    };
    modes.value(arguments.mode)(arguments);
    return EXIT_SUCCESS;
}
