#pragma once

#include <vel/records.h>

#include <QString>

/// A device record for a controller on loopback.
inline DeviceInstancePlugin deviceRecord(int id, const QString &name, int port,
                                         int timeoutMs = 2000)
{
    DeviceInstancePlugin device;
    device.id = id;
    device.name = name;
    device.ipAddress = QStringLiteral("127.0.0.1");
    device.parameters = {
        {QStringLiteral("port"), QString::number(port)},
        {QStringLiteral("timeout"), QString::number(timeoutMs)},
    };
    return device;
}

/// An item of a cycle with its value. The types are numbers as text.
inline DataItem dataItem(const QString &name, const QString &address, const QString &memoryType,
                         const QString &dataType, const QString &value = {})
{
    DataItem item;
    item.item.name = name;
    item.item.parameters = {
        {QStringLiteral("memory_address"), address},
        {QStringLiteral("memory_type"), memoryType},
        {QStringLiteral("data_type"), dataType},
    };
    item.values = {{QStringLiteral("value"), value}};
    return item;
}

/// The list of one cycle.
inline LogList logList(const DeviceInstancePlugin &device, const QList<DataItem> &items)
{
    LogList list;
    static_cast<DeviceInstancePlugin &>(list) = device;
    list.dataItems = items;
    return list;
}

/// The value that the item holds.
inline QString valueOf(const DataItem &item)
{
    return item.values.value(QStringLiteral("value"));
}
