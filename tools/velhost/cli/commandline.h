#pragma once

#include "cli/command.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// What the program is asked for.
struct Request
{
    enum class Action { Help, Version, Run };
    Action action = Action::Run;
    /// The one to run, or to show the help of; a null pointer asks for the help of all.
    const Command *command = nullptr;
    Arguments arguments;
};

/// Reads the arguments, the program's name first. Options may stand before and after the command.
/// Returns nothing when they are wrong; `error` then says what to change. The request points into
/// `commands`.
std::optional<Request> parseCommandLine(const QStringList &arguments,
                                        const QList<Command> &commands, QString *error);
