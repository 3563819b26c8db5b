#pragma once

#include "cycle/output.h"
#include "discover/searchoptions.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What the program is to do.
enum class Command { Help, Version, Columns, Read, Watch, Write, Plan, Check, Discover, Explain };

/// The program's arguments, checked.
struct CommandLine
{
    Command command = Command::Help;
    /// Empty: the default plug-in.
    QString pluginFile;
    /// May be empty for `columns` and `explain`; for `discover` the file to write, empty for none.
    QString plantFile;
    OutputFormat format = OutputFormat::Table;
    /// Read cycles, 1 or more.
    int cycles = 1;
    /// Milliseconds from the start of one cycle to the start of the next, 0 or more.
    int intervalMs = 1000;
    /// Seconds after which `watch` ends; 0: it goes on.
    int forSeconds = 0;
    /// `read` and `watch` print an item only when it differs from what was printed last.
    bool onlyChanges = false;
    /// What `plan` takes an exchange to last at best, in milliseconds, 0 or more.
    int rttMs = 1;
    /// The arguments of `write` or the options `--write` of `plan`, each DEVICE/ITEM=VALUE.
    QStringList assignments;
    /// What `explain` is to explain; "-" is standard input.
    QString text;
    /// `write` may change devices that are not on this machine.
    bool isConfirmed = false;
    /// `write` reads before and after.
    bool verifies = true;
    SearchOptions search;
};

/// Reads the arguments, the program's name first. Options may stand before and after the command.
/// Returns nothing when they are wrong; `error` then says what to change.
std::optional<CommandLine> parseCommandLine(const QStringList &arguments, QString *error);
