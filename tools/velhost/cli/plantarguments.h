#pragma once

#include "cli/command.h"
#include "host/session.h"
#include "plant/assignment.h"
#include "plant/plant.h"

#include <QList>
#include <QStringList>

#include <optional>

/// Reads the plant file of the arguments; without one, returns a plant without devices. Returns
/// nothing after it has printed the errors of the file.
std::optional<Plant> readPlant(const Arguments &arguments);

/// Reads DEVICE/ITEM=VALUE texts. Returns nothing after it has printed the error of each wrong one.
std::optional<QList<Assignment>> readAssignments(const QStringList &texts, const Plant &plant);

/// The setup of a session with that plant and the plug-in and format of the arguments.
SessionSetup sessionSetup(const Arguments &arguments, const Plant &plant);
