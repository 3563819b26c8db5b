#pragma once

#include "cli/command.h"
#include "host/session.h"
#include "plant/assignment.h"
#include "plant/plant.h"

#include <QList>
#include <QStringList>

#include <optional>

/// The plant that the arguments name, one without devices where they name none. Returns nothing
/// when it has a fault, which is then on standard error.
std::optional<Plant> readPlant(const Arguments &arguments);

/// The assignments of DEVICE/ITEM=VALUE texts. Returns nothing when one is wrong; what is wrong
/// with each is then on standard error.
std::optional<QList<Assignment>> readAssignments(const QStringList &texts, const Plant &plant);

/// A session with that plant as the arguments want it.
SessionSetup sessionSetup(const Arguments &arguments, const Plant &plant);
