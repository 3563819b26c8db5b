#pragma once

#include "cli/command.h"

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// The options of a search.
struct SearchOptions
{
    /// The plug-in's search parameters that were given, by column name.
    QMap<QString, QString> parameters;
    /// The network to ask; nothing for the networks of the interface.
    std::optional<QString> subnet;
    /// Whether a large network may be asked.
    bool isForced = false;
};

/// The options of `discover`.
QList<Option> discoverOptions();

/// Reads these options. The parameters are still texts: only the plug-in's columns define them.
SearchOptions searchOptions(const Arguments &arguments);
