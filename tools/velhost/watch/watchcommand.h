#pragma once

#include "cli/command.h"

/// `watch` reads the devices cycle by cycle until its time is over or a signal comes, shows what
/// arrives and at the end what was counted. ErrorFound when a device or an item had an error in any
/// cycle or a value was not the expected one. A signal ends it as it ends `read`.
Command watchCommand();
