#pragma once

#include <vel/databasecolumnstructure.h>

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QVector>

#include <array>

// The host's records. The host owns every record and hands it to the plug-in by pointer or
// reference, so the order and the types of the fields are the host's and must not change. A field
// that the plug-in does not use is called `unused` and its number in the record.

/// How an item maps to something else in the host. Its fields are not known, so a list of mappings
/// may only be copied as a whole.
struct Mapping
{
};

/// One file of a device. Only its first fields are known.
struct FileInstancePlugin
{
    quint32 unused1 = 0;
    QString unused2;
};

/// One configured data item.
struct ItemInstancePlugin
{
    quint32 unused1 = 0;
    QString name;
    QString unused3;
    QString unused4;
    QString unused5;
    quint32 unused6 = 0;
    quint32 unused7 = 0;
    quint32 unused8 = 0;
    quint32 unused9 = 0;
    QString unused10;
    quint32 unused11 = 0;
    quint32 unused12 = 0;
    quint32 unused13 = 0;
    quint32 unused14 = 0;
    quint32 unused15 = 0;
    QString unused16;
    quint32 unused17 = 0;
    QVector<QString> unused18;
    quint32 unused19 = 0;
    quint32 unused20 = 0;
    quint32 unused21 = 0;
    quint32 unused22 = 0;
    quint32 unused23 = 0;
    quint32 unused24 = 0;
    QString lastError;
    /// The item's parameters by column name; the values are text.
    QMap<QString, QString> parameters;
    QList<Mapping> mappings;

    /// Replaces the last error text of the item.
    void setLastError(QString text) { lastError = std::move(text); }
};

/// One configured device, that is one controller.
struct DeviceInstancePlugin
{
    /// Unique per device.
    int id = 0;
    QString unused2;
    QString name;
    QString unused4;
    quint32 unused5 = 0;
    quint32 unused6 = 0;
    std::array<quint32, 2> unused7{};
    /// The controller's IPv4 address as dotted text.
    QString ipAddress;
    quint32 unused9 = 0;
    QString lastError;
    bool unused11 = false;
    bool unused12 = false;
    /// The device's parameters by column name; the values are text.
    QMap<QString, QString> parameters;
    QList<ItemInstancePlugin> items;
    QList<FileInstancePlugin> files;

    /// Replaces the last error text of the device.
    void setLastError(QString text) { lastError = std::move(text); }
};

/// The host's record of the plug-in. The plug-in reads none of it, but a data item contains one.
struct PluginInstancePlugin
{
    quint32 unused1 = 0;
    QString unused2;
    QString unused3;
    QString unused4;
    QString unused5;
    QString unused6;
    quint32 unused7 = 0;
    quint32 unused8 = 0;
    QList<DatabaseColumnStructure> unused9;
    QList<DatabaseColumnStructure> unused10;
    QList<DatabaseColumnStructure> unused11;
    QList<DatabaseColumnStructure> unused12;
    QList<DatabaseColumnStructure> unused13;
    QList<DatabaseColumnStructure> unused14;
    QList<DatabaseColumnStructure> unused15;
    QList<DatabaseColumnStructure> unused16;
    QList<DeviceInstancePlugin> unused17;
    QList<ItemInstancePlugin> unused18;
    QList<FileInstancePlugin> unused19;
    quint32 unused20 = 0;
};

/// One value to read or to write.
struct DataItem
{
    /// The entry "value" holds the value as text: the one to send on a write, the result after a
    /// read.
    QMap<QString, QString> values;
    QDateTime timestamp;
    /// The item to serve.
    ItemInstancePlugin item;
    PluginInstancePlugin plugin;
    ItemInstancePlugin secondItem;
    DeviceInstancePlugin device;
    quint32 unused7 = 0;
    quint32 unused8 = 0;
    quint32 unused9 = 0;
    quint32 unused10 = 0;
    quint32 unused11 = 0;
};

/// One device with the items of one cycle, in the order in which they are served.
struct LogList : DeviceInstancePlugin
{
    QList<DataItem> dataItems;
};

/// One network interface of the machine. Only its first field is known.
struct NetworkInterfaceInstance
{
    /// The system's name, for example "eth0".
    QString name;
};
