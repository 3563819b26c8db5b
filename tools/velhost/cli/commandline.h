#pragma once

#include "cli/command.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// What the user asks the program to do.
struct Request
{
    enum class Action { Help, Version, Run };
    Action action = Action::Run;
    /// The command to run or to show the help of; a null pointer for the help of all commands.
    const Command *command = nullptr;
    Arguments arguments;
};

/// Reads the arguments, which begin with the program's name. Options may stand before and after the
/// command. Returns nothing when an argument is wrong; `error` then says what to change. The
/// request points into `commands`.
std::optional<Request> parseCommandLine(const QStringList &arguments,
                                        const QList<Command> &commands, QString *error);
