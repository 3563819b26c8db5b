#pragma once

#include "cli/command.h"
#include "host/session.h"
#include "plant/assignment.h"
#include "plant/plant.h"

#include <QList>
#include <QStringList>

#include <optional>

/// Reads what the arguments name of a plant, even with errors: adds them to `problems`. Returns
/// nothing when the plant file cannot be read.
std::optional<Plant> readDraft(const Arguments &arguments, QList<Problem> *problems);

/// The same; without a plant in the arguments, returns one without devices. Returns nothing after
/// it has printed the errors.
std::optional<Plant> readPlant(const Arguments &arguments);

/// Reads DEVICE/ITEM=VALUE texts, or ADDRESS=VALUE where the plant is made of addresses. Returns
/// nothing after it has printed the error of each wrong one.
std::optional<QList<Assignment>> readAssignments(const Arguments &arguments,
                                                 const QStringList &texts, const Plant &plant);

/// The setup of a session with that plant and the plug-in and format of the arguments.
SessionSetup sessionSetup(const Arguments &arguments, const Plant &plant);
