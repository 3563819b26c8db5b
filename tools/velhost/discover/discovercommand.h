#pragma once

#include "cli/command.h"

/// `discover` searches for controllers with the search parameters that the plug-in declares. It
/// prints the controllers and writes them to a plant file if one is named. ErrorFound when there is
/// none or the search is incomplete. A signal ends it as it ends `read`.
Command discoverCommand();
