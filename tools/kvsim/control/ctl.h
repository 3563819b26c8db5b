#pragma once

#include <common/console.h>

/// Speaks to the control port of a simulator that runs on this machine: "kvsim ctl [--port NUMBER]
/// COMMAND...". `arguments` are those behind "ctl". Prints the answer, unless it is "ok".
/// ErrorFound after an error answer, or when there is no simulator.
ExitCode runCtl(const QStringList &arguments);
