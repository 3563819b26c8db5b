#pragma once

#include "controller/setup.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What the command line asks for.
struct Options
{
    enum class Action { Serve, ShowHelp, ShowVersion, RefuseUsage };

    Action action = Action::Serve;
    /// Where the controllers listen. With a configuration, this is one place, for those controllers
    /// to which it gives none; with a plant, that of the first controller.
    QList<Place> places;
    /// The port of `places` was asked for. Without it, the devices of a plant keep theirs.
    bool hasPort = false;
    /// Files; empty: none.
    QString config;
    QString plant;
    QString writePlant;
    QString replay;
    QString load;
    QString dump;
    /// The port of the control protocol; nothing: there is none.
    std::optional<quint16> control;
    bool trace = false;
    bool replayDelays = false;
    /// The faults at the start, as they were given and in their order.
    QStringList faults;
    /// The values at the start, each ADDRESS=VALUE as it was given, in their order.
    QStringList values;
    /// What is wrong, for `RefuseUsage`.
    QString text;
};

/// Reads the command line; `arguments` begins with the program's name.
Options parseOptions(const QStringList &arguments);
