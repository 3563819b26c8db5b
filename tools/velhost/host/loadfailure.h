#pragma once

#include <QFileInfo>
#include <QJsonObject>
#include <QString>

#include <optional>

/// Why a plug-in cannot be loaded: what is wrong with it and what to do.
struct LoadFailure
{
    QString fault;
    QString remedy;
};

/// What keeps the path from naming a file that can be read; nothing when it does.
std::optional<LoadFailure> pathFailure(const QFileInfo &file);

/// Why the loader refused the file, which can be read: by its first bytes, by its metadata, and
/// where both are well by what the loader's text means. That text must be English, see main().
LoadFailure loaderFailure(const QFileInfo &file, const QJsonObject &metadata,
                          const QString &loaderText);
