#pragma once

#include "cli/command.h"

/// `write` writes the assignments and prints the results. It reads each item before and after the
/// write, unless `--no-verify` is given. ErrorFound when a write failed or did not read back as
/// written; WrongUsage when a device is not on this machine and `--yes` is not given.
Command writeCommand();
