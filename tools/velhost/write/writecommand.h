#pragma once

#include "cli/job.h"
#include "host/host.h"
#include <common/console.h>

#include <vel/records.h>
#include <vel/velinterface.h>

#include <QList>

/// Writes the job's assignments and prints what came of them: each read before and after, or with
/// `--no-verify` written only. ErrorFound when a write failed or did not read back as written.
ExitCode runWrite(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
                  const Host &host);
