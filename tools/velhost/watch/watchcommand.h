#pragma once

#include "cli/command.h"

/// `watch` reads the devices cycle by cycle until its time is over or a signal comes. It shows the
/// values and at the end a summary. ErrorFound when a device or an item had an error in any cycle
/// or a value was not the expected one. A signal ends it as it ends `read`.
Command watchCommand();
