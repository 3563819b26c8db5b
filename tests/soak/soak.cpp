#include "soakeddevice.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPluginLoader>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include <malloc.h>
#include <unistd.h>

// soak EXCHANGES [SEED]: drives the plug-in against several simulated controllers until they have
// seen so many commands, applies faults at random, and judges every value. The seed repeats the
// choice of faults. Exit code: 0 all is well, 1 a wrong value, growth, or a device that does not
// recover. Run it with GLIBC_TUNABLES=glibc.malloc.tcache_count=0: memory that the allocator keeps
// for its threads would count as grown.

namespace {

constexpr int deviceCount = 4;
// What the allocator and the tables of the soak itself may take more.
constexpr qint64 heapTolerance = 65536;
constexpr qint64 residentTolerance = 1048576;
// So many exchanges that every kind of fault strikes.
constexpr quint64 allKindsStrike = 50000;

struct Resources
{
    int descriptors = 0;
    qint64 heap = 0;
    qint64 resident = 0;
};

qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("/proc/self/statm: %s", qPrintable(file.errorString()));
    return file.readAll().split(' ').at(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

Resources resources()
{
    const struct mallinfo2 heap = ::mallinfo2();
    const int descriptors
        = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
    return {descriptors, static_cast<qint64>(heap.uordblks + heap.hblkhd), residentBytes()};
}

class Soak
{
public:
    explicit Soak(quint32 seed) : m_random(seed)
    {
        for (int id = 1; id <= deviceCount; ++id) {
            m_devices.push_back(std::make_unique<SoakedDevice>(id));
            m_host.configuredDevices.append(m_devices.back()->record());
        }
        if (m_plugin == nullptr || !m_plugin->init())
            qFatal("%s", qPrintable(m_loader.errorString()));
    }

    quint64 exchanges() const
    {
        quint64 sum = 0;
        for (const auto &device : m_devices)
            sum += device->exchanges();
        return sum;
    }

    // False when it ended earlier: too much is wrong, or nothing reaches a controller any more.
    bool runUntil(quint64 wanted)
    {
        constexpr int mostIdleCycles = 100;
        constexpr qint64 mostWrong = 20;
        quint64 seen = 0;
        for (int idle = 0; exchanges() < wanted; ++idle) {
            if (idle == mostIdleCycles || m_tally.wrong >= mostWrong)
                return false;
            if (std::exchange(seen, exchanges()) != seen)
                idle = 0;
            runCycle(true);
        }
        return true;
    }

    // Without new faults until all is well; false when it does not come to that.
    bool calm()
    {
        constexpr int mostCycles = 100;
        for (int i = 0; i < mostCycles; ++i) {
            runCycle(false);
            if (std::all_of(m_devices.cbegin(), m_devices.cend(),
                            [](const auto &device) { return device->isWell(); }))
                return true;
        }
        return false;
    }

    const Tally &tally() const { return m_tally; }

private:
    void runCycle(bool strike)
    {
        for (const auto &device : m_devices)
            device->runCycle(m_plugin, &m_host, strike, &m_random, &m_tally);
    }

    std::vector<std::unique_ptr<SoakedDevice>> m_devices;
    RecordingBackend m_host;
    QPluginLoader m_loader{QStringLiteral(KEYENCE_PLUGIN_FILE)};
    VELInterface *m_plugin = qobject_cast<VELInterface *>(m_loader.instance());
    std::mt19937 m_random;
    Tally m_tally;
};

void print(const Soak &soak)
{
    const Tally &tally = soak.tally();
    quint64 applied = 0;
    for (const quint64 count : tally.applied)
        applied += count;
    std::printf("exchanges %llu, faults applied %llu\n",
                static_cast<unsigned long long>(soak.exchanges()),
                static_cast<unsigned long long>(applied));
    std::printf("values good %lld, missing with an error %lld, wrong as documented for the fault "
                "%lld, wrong %lld\n",
                tally.good, tally.missing, tally.explained, tally.wrong);
    std::printf("worst recovery: %d cycles\n", tally.worstRecovery);
    for (auto it = tally.applied.cbegin(); it != tally.applied.cend(); ++it)
        std::printf("fault %-20s %8llu\n", it.key().constData(),
                    static_cast<unsigned long long>(it.value()));
    for (auto it = tally.errors.cbegin(); it != tally.errors.cend(); ++it)
        std::printf("error %-50s %8lld\n", qPrintable(it.key()), it.value());
}

bool hasGrown(const char *what, qint64 before, qint64 after, qint64 tolerance)
{
    std::printf("%-18s %10lld, at the end %10lld\n", what, before, after);
    return after > before + tolerance;
}

bool hasGrown(const Resources &before, const Resources &after)
{
    const bool descriptors = hasGrown("open descriptors", before.descriptors, after.descriptors, 0);
#ifdef __SANITIZE_ADDRESS__
    std::printf("memory is not compared: the sanitizer keeps what was freed\n");
    return descriptors;
#else
    const bool heap = hasGrown("bytes on the heap", before.heap, after.heap, heapTolerance);
    return hasGrown("bytes resident", before.resident, after.resident, residentTolerance) || heap
           || descriptors;
#endif
}

// Whether each kind has struck; of a short run it is not asked.
bool allHaveStruck(const Soak &soak, quint64 wanted)
{
    bool all = !soak.tally().applied.isEmpty();
    for (const PlannedFault &fault : plannedFaults) {
        if (wanted >= allKindsStrike && soak.tally().applied.value(fault.text) == 0) {
            std::printf("fault %s never struck\n", fault.text);
            all = false;
        }
    }
    return all;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const quint64 wanted = argc > 1 ? QByteArray(argv[1]).toULongLong() : 0;
    bool isNumber = true;
    const quint32 seed = argc > 2 ? QByteArray(argv[2]).toUInt(&isNumber) : std::random_device()();
    if (wanted == 0 || argc > 3 || !isNumber) {
        std::fprintf(stderr, "usage: soak EXCHANGES [SEED]\n");
        return EXIT_FAILURE;
    }
    std::printf("seed %u\n", seed);
    Soak soak(seed);
    bool recovered = soak.runUntil(wanted / 5) && soak.calm();
    const Resources before = resources();
    recovered = recovered && soak.runUntil(wanted) && soak.calm();
    const Resources after = resources();
    print(soak);
    const bool grown = hasGrown(before, after);
    const bool struck = allHaveStruck(soak, wanted);
    const bool good = recovered && struck && !grown && soak.tally().wrong == 0;
    if (!recovered)
        std::printf("ended early, or a device does not recover\n");
    std::printf("%s\n", good ? "all is well" : "NOT well");
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
