#pragma once

#include "cli/command.h"

/// The options of a command, its own first, without `--help` and `--version`.
QList<Option> optionsOf(const Command &command);

/// `--interval`, of the commands that read again and again.
Option intervalOption();

/// `--only-changes`, of the same commands.
Option onlyChangesOption();

/// Whether that was given.
bool printsOnlyChanges(const Arguments &arguments);

/// The milliseconds from the start of one cycle to the start of the next.
int intervalMs(const Arguments &arguments);
