#pragma once

#include "cli/command.h"

/// `read` reads the devices cycle by cycle and prints each cycle. ErrorFound when a device or an
/// item had an error in any of them, or a value was not the expected one. SIGINT, SIGTERM or SIGHUP
/// ends it after the running cycle, or immediately between two cycles: Interrupted, Terminated or
/// HungUp.
Command readCommand();
