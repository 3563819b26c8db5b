#pragma once

#include "cycle/report.h"
#include "host/host.h"
#include "plant/assignment.h"

#include <vel/records.h>
#include <vel/velinterface.h>

#include <QList>

/// The lists for reading: one for each device, with all its items.
QList<LogList> readLists(const QList<DeviceInstancePlugin> &devices);

/// The lists for writing: one for each device that has an assignment, in the order of the
/// assignments. The indexes of the assignments must refer to `devices`.
QList<LogList> writeLists(const QList<DeviceInstancePlugin> &devices,
                          const QList<Assignment> &assignments);

/// Clears the errors of the last cycle, lets the plug-in read the list and reports the result. The
/// items keep the values of the last cycle until the plug-in replaces them. The device has an error
/// when the plug-in set one or readData() returned false.
DeviceReport readDevice(VELInterface *plugin, LogList *list, qint64 cycle);

/// Lets the plug-in write the list and reports the result as readDevice() does. The plug-in can
/// report a refused value in the host's error log only, so an entry there during the call is an
/// error of the device, too.
DeviceReport writeDevice(VELInterface *plugin, LogList *list, qint64 cycle, const Host &host);
