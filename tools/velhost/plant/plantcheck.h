#pragma once

#include "plant/plant.h"

#include <vel/hostbackend.h>

#include <QList>

/// Everything that is wrong with the plant, as far as it shows without a call of the plug-in.
/// Checks it against the columns of the plug-in and the rules for addresses, ports and time-outs.
/// `found` has the problems of reading the file: they come first, and their places are not checked
/// again.
QList<Problem> plantProblems(const Plant &draft, const PluginRegistration &registration,
                             const QList<Problem> &found);
