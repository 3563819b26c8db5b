#include "watch/watchedplant.h"

namespace {

void addItemReport(const ItemReport &report, bool isRead, qint64 cycle, qint64 nowMs,
                   WatchedItem *item)
{
    if (itemProblem(report) != itemProblem(item->last))
        item->problemCycle = cycle;
    item->last = report;
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
    for (int i = 0; i < records.size(); ++i) {
        const DeviceInstancePlugin &record = records.at(i);
        WatchedDevice device;
        device.name = record.name;
        for (int j = 0; j < record.items.size(); ++j) {
            WatchedItem item;
            item.last.item = record.items.at(j).name;
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
}
