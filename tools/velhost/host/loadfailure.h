#pragma once

#include <QFileInfo>
#include <QJsonObject>
#include <QString>

// Why a plug-in cannot be loaded: what is wrong with it and what to do.

/// Why the path is no readable file; empty when it is one.
QString pathFailure(const QFileInfo &file);

/// Why the loader refused a readable file: found in its header, else in its metadata, else in the
/// text of the loader. That text must be English, see main().
QString loaderFailure(const QFileInfo &file, const QJsonObject &metadata,
                      const QString &loaderText);
