#pragma once

#include "cli/command.h"

/// `check` prints everything that is wrong with a plant file: as JSON to standard output, else to
/// standard error. WrongUsage when anything is wrong, AllWell also with warnings.
Command checkCommand();
