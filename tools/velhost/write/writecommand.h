#pragma once

#include "cli/command.h"

/// `write` writes the assignments and prints what came of them: each read before and after, or with
/// `--no-verify` written only. ErrorFound when a write failed or did not read back as written;
/// WrongUsage when a device is not on this machine and `--yes` is not given.
Command writeCommand();
