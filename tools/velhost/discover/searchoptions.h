#pragma once

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
    /// A large network may be asked, and a file that is already there replaced.
    bool isForced = false;
};
