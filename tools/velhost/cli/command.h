#pragma once

#include "host/outputformat.h"

#include <common/console.h>

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

/// An option of the command line.
struct Option
{
    struct Range
    {
        int minimum = 0;
        int maximum = 0;
    };

    /// Without the dashes.
    QString name;
    /// The name of its value in the help; empty for a flag.
    QString value;
    QString help;
    /// The range of its whole number; nothing when its value is another text.
    std::optional<Range> range = {};
    bool mayRepeat = false;
};

/// The arguments of a command besides its options.
enum class Operands {
    None,
    Plant,               ///< the plant file, unless `--plant` names it
    PlantAndAssignments, ///< the same, then DEVICE/ITEM=VALUE once or more
    Text,                ///< one text, and no plug-in
    File                 ///< one file, and no plug-in
};

/// The arguments of the user, already checked against the command.
struct Arguments
{
    /// Empty when none was given and the command needs none. With --ip its value, as the name of
    /// the plant in messages.
    QString plantFile;
    OutputFormat format = OutputFormat::Table;
    /// The assignments, the addresses, the text or the file.
    QStringList operands;
    /// The values of the options that were given; an empty list for a flag.
    QMap<QString, QStringList> options;

    bool has(const QString &option) const { return options.contains(option); }
    QString value(const QString &option) const { return options.value(option).value(0); }
    /// The number that was given, or `otherwise`. Only for options with a range.
    int number(const QString &option, int otherwise) const
    {
        return has(option) ? value(option).toInt() : otherwise;
    }
};

/// One command of the program. Its own folder defines it; program/commands.cpp lists all commands.
struct Command
{
    QString name;
    Operands operands = Operands::None;
    /// What it does, for the help.
    QString summary;
    /// The values of `--format`.
    QStringList formats;
    /// The options of this command alone, without the general ones.
    QList<Option> options;
    /// For the help, each a purpose and a command line.
    QList<QStringList> examples;
    ExitCode (*run)(const Arguments &arguments) = nullptr;
};
