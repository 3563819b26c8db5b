#pragma once

#include <QString>
#include <QStringList>

#include <cstdio>

/// How a program ends, as its help promises it. Each program uses those that it needs.
enum ExitCode {
    AllWell = 0,
    ErrorFound = 1,
    WrongUsage = 2,
    NotLoaded = 3,
    Interrupted = 130,
    Terminated = 143
};

/// Writes the text at once, so that it is there when the program is stopped during a wait. False
/// after a failure, which leaves its mark on the stream; `errno` tells why.
bool print(FILE *stream, const QString &text);

/// Writes to standard output for a caller that waits for the text and must learn that it cannot
/// come: AllWell or, after a message, ErrorFound.
ExitCode printOutput(const QString &text);

/// Writes what --help shows, the program's resource help.txt, of which the manual page is made,
/// too.
ExitCode printHelp();

/// Writes a message of the program itself to standard error, what cannot be seen written out.
void printError(const QString &text);

/// As printError() for each of the texts.
void printError(const QStringList &texts);
