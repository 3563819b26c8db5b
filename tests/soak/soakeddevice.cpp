#include "soakeddevice.h"

#include "hostrecords.h"
#include "text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr int timeoutMs = 50;

struct Item
{
    const char *address;
    const char *memoryType;
    const char *dataType;
    const char *expected;
};

// Memory that nobody wrote: word n holds n, the bits of channel n are the digits of n.
constexpr std::array<Item, 8> readItems = {{
    {"DM7", "1", "3", "7"},
    {"D100", "1", "1", "100"},
    {"DM40000", "1", "1", "-25536"},
    {"DM200", "1", "4", "13172936"}, // 200 + 201 * 65536
    {"W1F", "1", "3", "31"},
    {"DM300.2", "1", "0", "1"}, // 300 is 100101100 in binary digits
    {"DM301.4", "1", "0", "0"}, // 301 is 100101101
    {"R601", "0", "0", "1"},    // 6 is 110
}};

// Each of them changes with every cycle.
constexpr std::array<Item, 3> writeItems = {{
    {"DM5000", "1", "3", ""},
    {"DM5001.3", "1", "0", ""},
    {"MR105", "0", "0", ""},
}};
constexpr int writtenBit = 1 << 3;
constexpr int wordAroundBit = 5001;

// Ends a connection whose answers are behind.
constexpr PlannedFault restartConnection{"close=before", Harm::None};

template<typename Items>
QList<DataItem> dataItems(const Items &items, const QString &value)
{
    QList<DataItem> list;
    for (const Item &item : items)
        list.append(dataItem(text(item.address), text(item.address), text(item.memoryType),
                             text(item.dataType), value));
    return list;
}

// What the simulator calls the word, or the bit of a bit device, that the item touches first.
QByteArray touchedBy(const Item &item)
{
    return QByteArray(item.address).split('.').constFirst();
}

template<typename Items>
int indexOf(const Items &items, const QByteArray &touched)
{
    const auto found = std::find_if(items.begin(), items.end(), [&touched](const Item &item) {
        return touched == touchedBy(item);
    });
    return static_cast<int>(found - items.begin());
}

void countErrors(const RecordingBackend &host, Tally *tally)
{
    for (const QString &entry : host.errorLog)
        ++tally->errors[entry.section(text("> :"), -1)];
}

} // namespace

SoakedDevice::SoakedDevice(int id)
    : m_record(deviceRecord(id, text("Soaked"), m_simulator.port(), timeoutMs))
{
    if (!m_simulator.isListening())
        qFatal("%s", qPrintable(m_simulator.errorString()));
    m_simulator.setWord("DM5000", 0);
}

void SoakedDevice::runCycle(VELInterface *plugin, RecordingBackend *host, bool strike,
                            std::mt19937 *random, Tally *tally)
{
    const auto oneOf = [random](unsigned int count) { return (*random)() % count == 0; };
    if (m_shifted && m_fault == nullptr && (!strike || oneOf(4)))
        addFault(&restartConnection, touchedBy(readItems.front()));
    if (strike && isWell() && oneOf(8)) {
        const std::size_t item = (*random)() % (readItems.size() + writeItems.size());
        const PlannedFault &fault = plannedFaults[(*random)() % plannedFaults.size()];
        addFault(&fault, touchedBy(item < readItems.size() ? readItems[item]
                                                           : writeItems[item - readItems.size()]));
    }
    ++m_cycle;
    m_allGood = true;
    read(plugin, host, tally);
    write(plugin, host, tally);
    // Otherwise the simulator keeps them all.
    m_simulator.takeCommands();
    if (m_struck) {
        endFault(tally);
    } else if (m_recovery >= 0) {
        ++m_recovery;
        if (m_allGood) {
            tally->worstRecovery = std::max(tally->worstRecovery, m_recovery);
            m_recovery = -1;
        }
    }
}

// A fault that strikes a client needs a new one.
void SoakedDevice::addFault(const PlannedFault *fault, const QByteArray &address)
{
    m_fault = fault;
    m_struckAddress = address;
    const QByteArray selector = '@' + address + "@nth=1";
    if (!fault->strikesClient) {
        put(fault->text + selector);
        return;
    }
    put(fault->text + QByteArray("@nth=1"));
    put("close=before" + selector);
}

void SoakedDevice::put(const QByteArray &fault)
{
    const QString refusal = m_simulator.addFault(fault);
    if (!refusal.isEmpty())
        qFatal("%s", qPrintable(refusal));
}

// Whether the fault has struck since this was asked last.
bool SoakedDevice::noteStrike()
{
    if (m_fault == nullptr || m_struck)
        return false;
    m_struck = m_simulator.faultCounts().constFirst().applied > 0;
    return m_struck;
}

// The plug-in connects before the first item only: what it has read since came by the new
// connection.
void SoakedDevice::noteConnection()
{
    const quint64 clients = m_simulator.counters().clients;
    if (clients != m_clients)
        m_shifted = false;
    m_clients = clients;
}

void SoakedDevice::endFault(Tally *tally)
{
    const QVector<FaultCount> counts = m_simulator.faultCounts();
    for (const FaultCount &count : counts)
        tally->applied[count.text.left(count.text.indexOf('@'))] += count.applied;
    m_simulator.clearFaults();
    if (m_fault->harm != Harm::Stream)
        m_recovery = 0;
    m_fault = nullptr;
    m_struck = false;
}

bool SoakedDevice::isExplained(bool struck, int index, int struckIndex) const
{
    if (m_shifted)
        return true;
    if (!struck || m_fault->harm == Harm::None)
        return false;
    return m_fault->harm == Harm::Item ? index == struckIndex : index >= struckIndex;
}

void SoakedDevice::count(bool good, bool missing, bool explained, const QString &what, Tally *tally)
{
    m_allGood = m_allGood && good;
    if (good) {
        ++tally->good;
    } else if (missing) {
        ++tally->missing;
    } else if (explained) {
        ++tally->explained;
    } else {
        ++tally->wrong;
        std::printf("wrong: device %d, cycle %d, %s, fault %s\n", m_record.id, m_cycle,
                    qPrintable(what), m_fault == nullptr ? "none" : m_fault->text);
    }
}

void SoakedDevice::read(VELInterface *plugin, RecordingBackend *host, Tally *tally)
{
    const QString untouched = text("untouched");
    LogList list = logList(m_record, dataItems(readItems, untouched));
    host->errorLog.clear();
    plugin->readData(&list);
    countErrors(*host, tally);
    noteConnection();
    const bool struck = noteStrike();
    const int struckIndex = indexOf(readItems, m_struckAddress);
    for (int i = 0; i < list.dataItems.size(); ++i) {
        const DataItem &item = list.dataItems.at(i);
        const QString value = valueOf(item);
        const bool hasError = !item.item.lastError.isEmpty() || !list.lastError.isEmpty();
        const QString expected = text(readItems[static_cast<std::size_t>(i)].expected);
        count(value == expected && !hasError, value == untouched && hasError,
              isExplained(struck, i, struckIndex), item.item.name + text(" holds ") + value, tally);
    }
    m_shifted = m_shifted || (struck && m_fault->harm == Harm::Stream);
}

// Whether a write is good is seen in the controller's memory. While answers are behind, the plug-in
// is done before the controller is, and the word around a bit may be an older one.
void SoakedDevice::write(VELInterface *plugin, RecordingBackend *host, Tally *tally)
{
    LogList list = logList(m_record, dataItems(writeItems, QString::number(m_cycle % 2)));
    const int number = m_cycle % 65536;
    list.dataItems[0].values[text("value")] = QString::number(number);
    const int before = m_simulator.word("DM5000");
    const bool wasShifted = m_shifted;
    host->errorLog.clear();
    plugin->writeData(&list);
    countErrors(*host, tally);
    noteConnection();
    const bool struck = noteStrike();
    const int struckIndex = indexOf(writeItems, m_struckAddress);
    const bool hasErrors = !host->errorLog.isEmpty();
    const auto isSo
        = [&](int index) { return wasShifted || isExplained(struck, index, struckIndex); };

    const int word = m_simulator.word("DM5000");
    count(word == number, hasErrors && word == before, isSo(0), text("DM5000 is %1").arg(word),
          tally);

    const int around = m_simulator.word("DM5001");
    const bool othersKept = (around & ~writtenBit) == (wordAroundBit & ~writtenBit);
    const bool bit = (around & writtenBit) != 0;
    count(othersKept && bit == (m_cycle % 2 != 0), othersKept && hasErrors, isSo(1),
          text("DM5001 is %1").arg(around), tally);
    if (!othersKept)
        m_simulator.setWord("DM5001", wordAroundBit);

    const int bitDevice = m_simulator.word("MR105");
    count(bitDevice == m_cycle % 2, hasErrors, isSo(2), text("MR105 is %1").arg(bitDevice), tally);
    m_shifted = m_shifted || (struck && m_fault->harm == Harm::Stream);
}
