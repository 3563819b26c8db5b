#pragma once

#include <QStringList>

/// Speaks to the control port of a simulator that runs on this machine: "kvsim ctl [--port NUMBER]
/// COMMAND...". `arguments` are those behind "ctl". Prints the answer, unless it is "ok", and
/// returns the program's exit code: Success, Failure (an error answer, or no simulator) or
/// WrongUsage.
int runCtl(const QStringList &arguments);
