#pragma once

#include "cli/command.h"

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// What the user chose of a device search.
struct SearchOptions
{
    /// Texts of the plug-in's search parameters by column name.
    QMap<QString, QString> parameters;
    /// The network to ask; nothing for those of the interface.
    std::optional<QString> subnet;
    /// A large network may be asked.
    bool isForced = false;
};

/// The options of `discover`.
QList<Option> discoverOptions();

/// What they say. What the texts of the parameters mean only the plug-in's columns tell.
SearchOptions searchOptions(const Arguments &arguments);
