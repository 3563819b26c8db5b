#pragma once

#include "cli/command.h"

/// `write` writes the assignments and prints each result at once. It reads each item before and
/// after the write, unless `--no-verify` is given. ErrorFound when a write failed or did not read
/// back as written; WrongUsage when a device is not on this machine and `--yes` is not given, or a
/// value is empty and `--allow-empty` is not. A signal ends it after the running item; what was not
/// written is then printed, too.
Command writeCommand();
