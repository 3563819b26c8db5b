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

    /// Without the two dashes.
    QString name;
    /// How the help names its value; empty for a flag.
    QString value;
    QString help;
    /// The whole numbers that it takes; nothing where it takes other texts.
    std::optional<Range> range = {};
    bool mayRepeat = false;
};

/// What a command takes besides options.
enum class Operands {
    None,
    Plant,               ///< the plant file, unless `--plant` names it
    PlantAndAssignments, ///< the same, then DEVICE/ITEM=VALUE once or more
    Text                 ///< one text, and no plug-in
};

/// What the user typed for a command, checked by what the command takes.
struct Arguments
{
    /// Empty: the default plug-in.
    QString pluginFile;
    /// Empty where none is needed and none was given.
    QString plantFile;
    OutputFormat format = OutputFormat::Table;
    /// The assignments or the text.
    QStringList operands;
    /// The values of the command's own options that were given; of a flag an empty list.
    QMap<QString, QStringList> options;

    bool has(const QString &option) const { return options.contains(option); }
    QString value(const QString &option) const { return options.value(option).value(0); }
    /// The number that was given, `otherwise` without the option, which must have a range.
    int number(const QString &option, int otherwise) const
    {
        return has(option) ? value(option).toInt() : otherwise;
    }
};

/// One command of the program. Its own room makes it; program/commands.cpp lists all of them.
struct Command
{
    QString name;
    Operands operands = Operands::None;
    /// What it does, for the help.
    QString summary;
    /// What `--format` may ask for.
    QStringList formats;
    /// Those that not every command has.
    QList<Option> options;
    /// For the help: what for, then the command line.
    QList<QStringList> examples;
    ExitCode (*run)(const Arguments &arguments) = nullptr;
};
