#include "watch/watchedplant.h"

#include <QHash>

#include <algorithm>

namespace {

using Items = std::vector<WatchedItem>;

bool hasFailed(const WatchedItem &item)
{
    return !item.last.error.isEmpty();
}

/// The first of the items behind the last one that was read.
Items::const_iterator firstOfLost(const Items &items)
{
    return std::find_if_not(items.rbegin(), items.rend(), hasFailed).base();
}

/// Behind the last item that was read, the first error is the cause, and the most frequent other
/// one its consequence. Errors that are no more than one stand for themselves.
void findConsequences(WatchedDevice *device)
{
    const auto cause = firstOfLost(device->items);
    QHash<QString, int> counts;
    for (auto item = cause; item != device->items.cend(); ++item)
        ++counts[reasonOf(item->last)];
    if (cause != device->items.cend())
        counts.remove(reasonOf(cause->last));
    const auto most = std::max_element(counts.cbegin(), counts.cend());
    if (most == counts.cend() || *most == 1)
        return;
    device->consequence = most.key();
    device->consequences = *most;
    for (auto item = device->items.begin() + (cause - device->items.cbegin());
         item != device->items.end(); ++item)
        item->isConsequence = reasonOf(item->last) == device->consequence;
}

void addItemReport(const ItemReport &report, bool isRead, qint64 cycle, qint64 nowMs,
                   WatchedItem *item)
{
    if (itemProblem(report) != itemProblem(item->last))
        item->problemCycle = cycle;
    item->last = report;
    item->suspects += report.suspect.isEmpty() ? 0 : 1;
    item->isConsequence = false;
    if (!isRead) {
        ++item->errors;
        return;
    }
    if (report.expected)
        ++item->wrong;
    if (item->value != report.value) {
        item->changes += item->value ? 1 : 0;
        item->valueCycle = cycle;
    }
    item->value = report.value;
    item->valueMs = nowMs;
}

} // namespace

std::vector<WatchedDevice> watchedDevices(const QList<DeviceInstancePlugin> &records)
{
    std::vector<WatchedDevice> devices;
    for (const DeviceInstancePlugin &record : records) {
        WatchedDevice device;
        device.name = record.name;
        device.address = record.ipAddress;
        const QString port = record.parameters.value(QStringLiteral("port"));
        if (!port.isEmpty())
            device.address += u':' + port;
        for (const ItemInstancePlugin &itemRecord : record.items) {
            WatchedItem item;
            item.last.item = itemRecord.name;
            device.items.push_back(item);
        }
        devices.push_back(device);
    }
    return devices;
}

void addReport(const DeviceReport &report, qint64 nowMs, WatchedDevice *device)
{
    if (report.error != device->error)
        device->errorCycle = report.cycle;
    device->error = report.error;
    device->time = report.time;
    device->latencies.add(report.microseconds);
    if (report.error.isEmpty())
        device->lastGoodMs = nowMs;
    else
        ++device->failedCycles;
    for (std::size_t i = 0; i < device->items.size(); ++i) {
        WatchedItem &item = device->items.at(i);
        const ItemReport &itemReport = report.values.at(static_cast<int>(i));
        const bool isRead = report.error.isEmpty() && itemReport.error.isEmpty();
        addItemReport(itemReport, isRead, report.cycle, nowMs, &item);
    }
    device->consequence.clear();
    device->consequences = 0;
    if (report.error.isEmpty())
        findConsequences(device);
}

bool WatchedDevice::isWell() const
{
    return error.isEmpty() && std::none_of(items.begin(), items.end(), hasFailed);
}

ItemReport WatchedDevice::outageCause() const
{
    if (!error.isEmpty())
        return {time, {}, {}, error};
    const auto wasRead = [](const WatchedItem &item) {
        return hasFailed(item) && item.value && !item.isConsequence;
    };
    auto cause = std::find_if(items.begin(), items.end(), wasRead);
    const auto lost = firstOfLost(items);
    if (cause == items.end() && (consequences > 0 || lost == items.begin()))
        cause = lost;
    return cause == items.end() ? ItemReport() : cause->last;
}
