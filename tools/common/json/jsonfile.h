#pragma once

#include <common/json/problem.h>

#include <QByteArray>
#include <QJsonValue>

#include <optional>

/// The bytes of a file of at most 16 MiB. Nothing when it cannot be read or is larger, `problems`
/// then says so; `kind` is what the file should be, for example "plant file".
std::optional<QByteArray> readJsonBytes(const QString &fileName, const QString &kind,
                                        QList<Problem> *problems);

/// The object or list that `json` holds; nothing when it is no JSON. A key that an object has twice
/// is a problem too.
std::optional<QJsonValue> parseJson(const QByteArray &json, QList<Problem> *problems);
