#pragma once

#include "cli/job.h"
#include <common/console.h>

#include <vel/hostbackend.h>

/// Prints the problems of the plant file: as JSON on standard output, else on standard error.
void printProblems(const CommandLine &commandLine, const QList<Problem> &problems);

/// Prints everything that is wrong with the job's plant, judged by what the plug-in declares and by
/// what an address, a port and a time-out can be. WrongUsage when anything is.
ExitCode runCheck(const Job &job, const PluginRegistration &registration);
