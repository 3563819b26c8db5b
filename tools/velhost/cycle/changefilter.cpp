#include "cycle/changefilter.h"

QList<DeviceReport> ChangeFilter::filter(const QList<DeviceReport> &devices)
{
    QList<DeviceReport> changes;
    for (const DeviceReport &device : devices) {
        Printed &printed = m_printed[device.device];
        DeviceReport change = device;
        change.values.clear();
        change.errorEnded = device.error.isEmpty() && !printed.error.isEmpty();
        if (device.error == printed.error)
            change.error.clear();
        printed.error = device.error;
        for (const ItemReport &item : device.values) {
            const auto last = printed.items.find(item.item);
            const bool isSame = last != printed.items.end() && last->value == item.value
                                && last->error == item.error && (item.isOld || !last->isOld);
            if (isSame) {
                last->isOld = item.isOld;
                continue;
            }
            printed.items.insert(item.item, item);
            change.values.append(item);
        }
        changes.append(change);
    }
    return changes;
}
