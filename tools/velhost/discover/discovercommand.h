#pragma once

#include "cli/command.h"

/// `discover` carries out the device search that the plug-in declares parameters for, prints the
/// controllers and writes them to a plant file where one is named. ErrorFound when there is none or
/// the search has gaps; a signal ends it as it ends `read`.
Command discoverCommand();
