#include "loadedplugin.h"
#include "loopback.h"
#include "minimalserver.h"
#include "sidebyside.h"

#include <cstdlib>
#include <vector>

#include <malloc.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

// What many devices cost: the time of an item, the start, and the memory of each.

namespace {

constexpr int most = 1000;
constexpr int itemsADevice = 10;

QList<DeviceInstancePlugin> deviceRecords(int count, int port)
{
    QList<DeviceInstancePlugin> records;
    for (int id = 1; id <= count; ++id)
        records.append(deviceRecord(id, QStringLiteral("bench"), port));
    return records;
}

// Devices served one after the other, as the host does it, against a bare loop over as many
// connections.
void compareExchanges(int devices)
{
    constexpr int exchangesARun = 10000;
    const MinimalServer server;
    const QList<DeviceInstancePlugin> records = deviceRecords(devices, server.port());
    const LoadedPlugin plugin(records);
    std::vector<LogList> lists;
    std::vector<int> connections;
    for (const DeviceInstancePlugin &device : records) {
        lists.push_back(wordList(device, itemsADevice));
        connections.push_back(connectedTo(server.port()));
    }
    const int cycles = exchangesARun / devices / itemsADevice;
    const auto readAll = [&] {
        for (int i = 0; i < cycles; ++i) {
            for (LogList &list : lists)
                plugin->readData(&list);
        }
    };
    const auto exchangeAll = [&] {
        for (int i = 0; i < cycles; ++i) {
            for (const int connection : connections)
                exchangeBare(connection, itemsADevice);
        }
    };
    const std::vector<Times> times
        = inTurns({{"plug-in", readAll}, {"bare loop", exchangeAll}}, exchangesARun);
    requireWords(lists.back());
    for (const int connection : connections)
        ::close(connection);
    printFigure("devices: plug-in", devices, times[0]);
    printFigure("devices: bare loop", devices, times[1]);
    printFigure("devices: bare loop / plug-in", devices, ratios(times[1], times[0]));
}

// Resets all connections that wait at the listener, so that none of them keeps its port for a
// while.
void resetWaiting(int listener)
{
    for (;;) {
        const int connection = ::accept(listener, nullptr, nullptr);
        if (connection < 0)
            return;
        const linger atOnce{1, 0};
        ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        ::close(connection);
    }
}

// init() against as many bare connects. The system completes the connections at the listener, so
// that no server takes time of its own.
void compareStarts()
{
    int port = 0;
    const int listener = listenOnLoopback(most, &port);
    const LoadedPlugin plugin(deviceRecords(most, port));
    plugin->stopPlugin();
    resetWaiting(listener);
    std::vector<int> connections;
    const Variant init{"init()", [&] { plugin->init(); },
                       [&] {
                           resetWaiting(listener);
                           plugin->stopPlugin();
                       }};
    const Variant connects{"connect",
                           [&] {
                               for (int i = 0; i < most; ++i)
                                   connections.push_back(connectedTo(port));
                           },
                           [&] {
                               resetWaiting(listener);
                               for (const int connection : connections)
                                   ::close(connection);
                               connections.clear();
                           }};
    const std::vector<Times> times = inTurns({init, connects}, most);
    ::close(listener);
    printFigure("start: init()", most, times[0]);
    printFigure("start: connect", most, times[1]);
    printFigure("start: init() / connect", most, ratios(times[0], times[1]));
}

double heapInUse()
{
    const struct mallinfo2 information = ::mallinfo2();
    return static_cast<double>(information.uordblks + information.hblkhd);
}

// Bytes on the heap for each device that is connected, and after its items were read. What the host
// keeps is not counted.
void measureMemory()
{
    const MinimalServer server;
    const QList<DeviceInstancePlugin> records = deviceRecords(most, server.port());
    std::vector<LogList> lists;
    for (const DeviceInstancePlugin &device : records)
        lists.push_back(wordList(device, itemsADevice));
    const LoadedPlugin plugin(records);
    for (LogList &list : lists)
        plugin->readData(&list);
    const double withAll = heapInUse();
    plugin->stopPlugin();
    printFigure("memory: bytes a device", most, {(withAll - heapInUse()) / most});
}

} // namespace

int main()
{
    allowManyDescriptors();
    stayOnOneProcessor();
    printHeader();
    for (const int devices : {1, 10, 100, most})
        compareExchanges(devices);
    compareStarts();
    measureMemory();
    return EXIT_SUCCESS;
}
