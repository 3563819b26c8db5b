#pragma once

#include <common/json/problem.h>

#include <QByteArray>
#include <QJsonValue>

#include <optional>

/// Reads a file of at most 16 MiB. Returns nothing and adds a problem when it cannot be read or is
/// larger. `kind` is what the file should be, for example "plant file".
std::optional<QByteArray> readJsonBytes(const QString &fileName, const QString &kind,
                                        QList<Problem> *problems);

/// The object or list in `json`; nothing when it is not valid JSON. A key that an object has twice
/// is a problem too.
std::optional<QJsonValue> parseJson(const QByteArray &json, QList<Problem> *problems);
