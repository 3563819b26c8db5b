#pragma once

#include "cli/commandline.h"
#include "plant/assignment.h"
#include "plant/plant.h"

#include <QList>

#include <optional>

/// Everything that can be judged before a plug-in is loaded.
struct Job
{
    CommandLine commandLine;
    Plant plant;
    QList<Assignment> assignments;
    /// For `check`, whose `plant` has no devices: the plant as far as it can be understood, and
    /// what is wrong with the rest.
    Plant draft;
    QList<Problem> problems;
};

/// Reads the plant file and the assignments. Returns nothing when anything is wrong with them, or
/// when `write` names a device that is not on this machine and `--yes` is not given; the reasons
/// are then on standard error.
std::optional<Job> prepareJob(const CommandLine &commandLine);
