#pragma once

#include "cli/job.h"
#include "host/logoutput.h"
#include <common/console.h>

#include <vel/hostbackend.h>
#include <vel/records.h>
#include <vel/velinterface.h>

#include <QList>

/// Reads the devices cycle by cycle until the job's time is over or a signal comes, shows what
/// arrives and at the end what was counted. ErrorFound when a device or an item had an error in any
/// cycle or a value was not the expected one. SIGINT or SIGTERM ends it as they end a read.
ExitCode runWatch(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
                  const PluginRegistration &registration, LogOutput *log);
