#include "plant/records.h"

#include "plant/parameters.h"

namespace {

QList<ItemInstancePlugin> itemRecords(const QList<PlantItem> &items,
                                      const QList<DatabaseColumnStructure> &columns,
                                      const QString &place, QList<Problem> *errors)
{
    QList<ItemInstancePlugin> records;
    for (int i = 0; i < items.size(); ++i) {
        const QString parameters = QStringLiteral("%1[%2].parameters").arg(place).arg(i);
        ItemInstancePlugin record;
        record.name = items.at(i).name;
        record.parameters = resolveParameters(items.at(i).parameters, columns,
                                              QStringLiteral("item"), parameters, errors);
        records.append(record);
    }
    return records;
}

} // namespace

QList<DeviceInstancePlugin>
deviceRecords(const Plant &plant, const PluginRegistration &registration, QList<Problem> *errors)
{
    QList<DeviceInstancePlugin> records;
    for (int i = 0; i < plant.devices.size(); ++i) {
        const PlantDevice &device = plant.devices.at(i);
        const QString place = QStringLiteral("devices[%1]").arg(i);
        DeviceInstancePlugin record;
        record.id = device.id;
        record.name = device.name;
        record.ipAddress = device.ip;
        record.parameters
            = resolveParameters(device.parameters, registration.deviceColumns,
                                QStringLiteral("device"), place + u".parameters", errors);
        record.items
            = itemRecords(device.items, registration.itemColumns, place + u".items", errors);
        records.append(record);
    }
    return records;
}
