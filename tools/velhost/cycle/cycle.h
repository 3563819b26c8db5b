#pragma once

#include "cycle/report.h"
#include "host/session.h"
#include "plant/assignment.h"

#include <vel/records.h>

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

/// The lists for reading: one for each device, with all its items.
QList<LogList> readLists(const QList<DeviceInstancePlugin> &devices);

/// The lists for writing: one for each device that has an assignment, in the order of the
/// assignments. The indexes of the assignments must refer to `devices`.
QList<LogList> writeLists(const QList<DeviceInstancePlugin> &devices,
                          const QList<Assignment> &assignments);

/// What the list holds. An item without a time stamp has that of the report.
DeviceReport reportOf(const LogList &list, qint64 cycle);

/// Clears the errors of the last cycle, lets the plug-in read the list and reports the result. The
/// items keep the values of the last cycle until the plug-in replaces them. The device has an error
/// when the plug-in set one or readData() returned false.
DeviceReport readDevice(const Session &session, LogList *list, qint64 cycle);

/// The same with the list of the device that has this index in the plant. Sets `expected` for each
/// value that is not the one that the plant file expects.
DeviceReport readPlantDevice(const Session &session, int device, LogList *list, qint64 cycle);

/// Lets the plug-in write the list and reports the result as readDevice() does. The plug-in can
/// report a refused value in the host's error log only, so an entry there during the call is an
/// error of the device, too.
DeviceReport writeDevice(const Session &session, LogList *list, qint64 cycle);

/// The result of reading one item: a value or an error.
struct ItemRead
{
    QDateTime time;
    std::optional<QString> value;
    QString error;
};

/// Reads the item with that index in the device's record, in a cycle of its own.
ItemRead readItem(const Session &session, const DeviceInstancePlugin &device, int item);

/// Writes the item in a cycle of its own. Returns the error, if possible the last entry in the
/// error log; empty on success.
QString writeError(const Session &session, const DeviceInstancePlugin &device,
                   const Assignment &assignment);
