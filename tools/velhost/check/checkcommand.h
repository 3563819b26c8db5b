#pragma once

#include "cli/command.h"

/// `check` prints everything that is wrong with a plant file: as JSON on standard output, else on
/// standard error. WrongUsage when anything is.
Command checkCommand();
