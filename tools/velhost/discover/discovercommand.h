#pragma once

#include "cli/job.h"
#include <common/console.h>

#include <vel/hostbackend.h>

/// Carries out the device search that the plug-in declares parameters for, prints the controllers
/// and, where the job asks for it, writes them to a plant file.
ExitCode runDiscover(const Job &job, const PluginRegistration &registration);
