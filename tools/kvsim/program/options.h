#pragma once

#include "controller/place.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What the command line asks for.
struct Options
{
    bool help = false;
    bool version = false;
    /// Where the first controller listens; with a configuration, those that it gives no place.
    Place place;
    /// The port of `place` was asked for. Without it, the devices of a plant keep theirs.
    bool hasPort = false;
    int controllers = 1;
    /// They have consecutive ports, not addresses.
    bool consecutivePorts = false;
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
};

/// Reads the command line; `arguments` begins with the program's name. Returns an empty text, or
/// what is wrong.
QString parseOptions(const QStringList &arguments, Options *options);
