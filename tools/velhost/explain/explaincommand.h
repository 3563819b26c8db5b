#pragma once

#include "cli/command.h"

/// `explain` prints what a text means; a text of "-" is read from standard input, at most 1 MiB.
/// ErrorFound when it is not known: the nearest known texts are then told.
Command explainCommand();
