#pragma once

#include "cli/command.h"

/// All options of a command but `--help` and `--version`, its own first.
QList<Option> optionsOf(const Command &command);

/// `--interval`, for the commands that read repeatedly.
Option intervalOption();

/// `--only-changes`, for the same commands; the addition stands behind its help.
Option onlyChangesOption(const QString &addition = {});

/// Whether `--only-changes` was given.
bool printsOnlyChanges(const Arguments &arguments);

/// The milliseconds from the start of one cycle to the start of the next.
int intervalMs(const Arguments &arguments);
