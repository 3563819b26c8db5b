#pragma once

#include "cli/command.h"

#include <QList>

/// All commands of the program, in the order of its help.
QList<Command> allCommands();
