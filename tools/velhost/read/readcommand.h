#pragma once

#include "cli/commandline.h"
#include <common/console.h>

#include <vel/records.h>
#include <vel/velinterface.h>

#include <QList>

/// Reads the devices cycle by cycle and prints each cycle. ErrorFound when a device or an item had
/// an error in any of them. SIGINT or SIGTERM ends it after the running cycle, or at once between
/// two: Interrupted or Terminated.
ExitCode runRead(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices,
                 const CommandLine &commandLine);
