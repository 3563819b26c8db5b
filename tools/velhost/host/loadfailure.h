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

/// Why the path is no readable file; nothing when it is one.
std::optional<LoadFailure> pathFailure(const QFileInfo &file);

/// Why the loader refused a readable file: found in its header, else in its metadata, else in the
/// text of the loader. That text must be English, see main().
LoadFailure loaderFailure(const QFileInfo &file, const QJsonObject &metadata,
                          const QString &loaderText);
