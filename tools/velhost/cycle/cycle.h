#pragma once

#include "cycle/report.h"
#include "host/host.h"
#include "plant/assignment.h"

#include <vel/records.h>
#include <vel/velinterface.h>

#include <QList>

/// The lists of a read: one for each device, with all its items.
QList<LogList> readLists(const QList<DeviceInstancePlugin> &devices);

/// The lists of a write: one for each device that is named, in the order of its first assignment,
/// with the named items in the order given. The assignments' indexes must be those of `devices`.
QList<LogList> writeLists(const QList<DeviceInstancePlugin> &devices,
                          const QList<Assignment> &assignments);

/// Clears the errors of the last cycle, lets the plug-in read the list and reports what it left
/// there. The items keep the values of the last cycle until the plug-in replaces them. The device
/// has an error when the plug-in set one or readData() returned false.
DeviceReport readDevice(VELInterface *plugin, LogList *list, qint64 cycle);

/// Lets the plug-in write the list, as readDevice() does. A plug-in has no other way to tell of a
/// refused value than the host's error log, so an entry there during the call is an error of the
/// device, too.
DeviceReport writeDevice(VELInterface *plugin, LogList *list, qint64 cycle, const Host &host);
