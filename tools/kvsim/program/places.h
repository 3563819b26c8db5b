#pragma once

#include "controller/controller.h"

/// Why so many controllers cannot listen at consecutive addresses, or ports, from `first` on, and
/// what to write instead; an empty text when they can.
QString placesError(const Place &first, int count, bool consecutivePorts);

/// Places controllers one after the other from `first` on, for which there is no placesError().
/// With port 0 the first one takes a free port. Those that have a port keep it; those that have no
/// name get their number from 1.
void placeControllers(const Place &first, bool consecutivePorts, const Controllers &controllers);
