#pragma once

#include "plant/plant.h"

#include <vel/hostbackend.h>

#include <QList>

/// Everything that is wrong with the plant, of which as much is here as can be understood, judged
/// by what the plug-in declares and by what an address, a port and a time-out can be. `found` has
/// the problems of reading it: they come first, and their places are not looked at again.
QList<Problem> plantProblems(const Plant &draft, const PluginRegistration &registration,
                             const QList<Problem> &found);
