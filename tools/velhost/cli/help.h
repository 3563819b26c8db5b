#pragma once

#include "cli/command.h"

/// The help of the whole program. The manual page is made of the same text.
QString helpText(const QList<Command> &commands);

/// The help of one command.
QString helpText(const Command &command);
