#pragma once

#include <QString>
#include <QStringList>

#include <cstdio>

/// The exit codes that the help documents. Each program uses some of them.
enum ExitCode {
    AllWell = 0,
    ErrorFound = 1,
    WrongUsage = 2,
    NotLoaded = 3,
    HungUp = 129,
    Interrupted = 130,
    Terminated = 143
};

/// Writes the text and flushes the stream, so that nothing is lost when the program is stopped
/// while it waits. Returns false on failure; the error flag of the stream is then set, and `errno`
/// has the reason.
bool print(FILE *stream, const QString &text);

/// Writes to standard output. Returns AllWell, or ErrorFound after a message when it fails: for
/// texts that the caller of the program waits for.
ExitCode printOutput(const QString &text);

/// Writes the program's resource help.txt, for --help. The manual page is made of what is written.
ExitCode printHelp();

/// Writes a message of the program itself to standard error, as visible() makes it.
void printError(const QString &text);

/// Calls printError() for each text.
void printError(const QStringList &texts);
