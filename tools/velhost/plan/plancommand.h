#pragma once

#include "cli/job.h"
#include "host/host.h"
#include "plan/recorder.h"
#include <common/console.h>

#include <vel/records.h>
#include <vel/velinterface.h>

#include <QList>

/// Lets the plug-in read every item and write the job's assignments against the recorder, and
/// prints what it sent and what a read cycle costs. `devices` are the plant's own records; the
/// plug-in must have got them as PlanHost gives them. ErrorFound when an item or a device has an
/// error.
ExitCode runPlan(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
                 const Host &host, Recorder *recorder);
