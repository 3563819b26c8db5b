#pragma once

#include "cli/commandline.h"
#include <common/console.h>

#include <QByteArray>

/// Prints what the command line's text means, by the catalogue in `json`; a text of "-" is read
/// from standard input, at most 1 MiB. ErrorFound when it is not known: the nearest known texts are
/// then told.
ExitCode runExplain(const CommandLine &commandLine, const QByteArray &json);
