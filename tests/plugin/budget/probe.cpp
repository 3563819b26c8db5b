#include "allocations.h"
#include "hostrecords.h"
#include "recordingbackend.h"

#include <vel/velinterface.h>

#include <QPluginLoader>

#include <csignal>
#include <cstdio>
#include <cstdlib>

// The host of tst_budget: PLUG-IN PORT read|write ADDRESS MEMORY-TYPE DATA-TYPE VALUE ITEMS. Serves
// a list without items and one with so many, each of them once before and once between two stops,
// for the test to count. Prints the allocations of both.

namespace {

void serve(VELInterface &plugin, bool isWrite, LogList &list)
{
    if (isWrite)
        plugin.writeData(&list);
    else
        plugin.readData(&list);
}

// Does something between two stops.
template<typename Action>
long allocationsOf(Action action)
{
    std::raise(SIGSTOP);
    const long before = allocationCount();
    action();
    const long count = allocationCount() - before;
    std::raise(SIGSTOP);
    return count;
}

} // namespace

int main(int /*argc*/, char **argv)
{
    const auto argument = [argv](int number) { return QString::fromLatin1(argv[number]); };
    const DeviceInstancePlugin device
        = deviceRecord(1, QStringLiteral("budget"), argument(2).toInt());
    RecordingBackend host;
    host.configuredDevices = {device};
    QPluginLoader loader(argument(1));
    auto *plugin = qobject_cast<VELInterface *>(loader.instance());
    if (plugin == nullptr || !plugin->init()) {
        std::fprintf(stderr, "%s\n", qPrintable(loader.errorString()));
        return EXIT_FAILURE;
    }

    const bool isWrite = argument(3) == QLatin1String("write");
    LogList none = logList(device, {});
    LogList all = none;
    for (int i = argument(8).toInt(); i > 0; --i)
        all.dataItems.append(
            dataItem(QStringLiteral("item"), argument(4), argument(5), argument(6), argument(7)));
    // The first time, functions are looked up, and tables are filled.
    serve(*plugin, isWrite, none);
    serve(*plugin, isWrite, all);
    allocationsOf([] {});
    const long ofNone = allocationsOf([&] { serve(*plugin, isWrite, none); });
    const long ofAll = allocationsOf([&] { serve(*plugin, isWrite, all); });
    std::printf("%ld %ld\n", ofNone, ofAll);
    return host.errorLog.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
