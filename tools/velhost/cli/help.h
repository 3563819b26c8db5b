#pragma once

#include "cli/command.h"

/// The help of the whole program, which its manual page is made of, too.
QString helpText(const QList<Command> &commands);

/// The help of one command.
QString helpText(const Command &command);
