#pragma once

#include <QString>

/// What the program tells its caller.
enum ExitCode { Success = 0, Failure = 1, WrongUsage = 2 };

/// Prints "kvsim: " and the text to standard error, what cannot be seen written out; returns
/// `code`.
int fail(ExitCode code, const QString &text);

/// Prints to standard output at once. Success, or Failure after an error was printed.
int print(const QString &text);

/// Prints what --help shows, which the manual page is made of, too; as print().
int printHelp();
