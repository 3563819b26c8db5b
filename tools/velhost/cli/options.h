#pragma once

#include "cli/command.h"

// The options of plantOptions().
inline const QString ipOption = QStringLiteral("ip");
inline const QString deviceOption = QStringLiteral("device");
inline const QString itemOption = QStringLiteral("item");
// Those of traceOptions().
inline const QString traceOption = QStringLiteral("trace");
inline const QString traceFileOption = QStringLiteral("trace-file");

/// What every command with a plant takes, to name a part of one or something in its place.
QList<Option> plantOptions();

/// Whether the command loads the plug-in.
bool hasPlugin(const Command &command);

/// All options of a command but `--help` and `--version`, its own first.
QList<Option> optionsOf(const Command &command);

/// `--interval`, for the commands that read repeatedly.
Option intervalOption();

/// `--only-changes`, for the same commands; the addition stands behind its help.
Option onlyChangesOption(const QString &addition = {});

/// `--trace` and `--trace-file`, for the commands that exchange something with controllers.
QList<Option> traceOptions();

/// Whether `--only-changes` was given.
bool printsOnlyChanges(const Arguments &arguments);

/// The milliseconds from the start of one cycle to the start of the next.
int intervalMs(const Arguments &arguments);
