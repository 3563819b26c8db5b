#pragma once

#include <QString>
#include <QStringList>

#include <cstdio>

/// How the program ends, as the help and docs/velhost.md promise it.
enum ExitCode {
    AllWell = 0,
    ErrorFound = 1,
    WrongUsage = 2,
    NotLoaded = 3,
    Interrupted = 130,
    Terminated = 143
};

/// Writes the text at once, so that it is there when the program is stopped during a wait. A
/// failure leaves its mark on the stream.
void print(FILE *stream, const QString &text);

/// Writes a message of the program itself to standard error, what cannot be seen written out.
void printError(const QString &text);

/// As printError() for each of the texts.
void printError(const QStringList &texts);
