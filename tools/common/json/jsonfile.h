#pragma once

#include <common/json/jsonnode.h>

#include <QByteArray>

/// The object or list in `json`; one that does not exist when it is not valid JSON. A key that an
/// object has twice is a problem too.
JsonNode parseJson(const QByteArray &json, QList<Problem> *problems);

/// The same for a file of at most 16 MiB. `kind` is what the file should be, for example "plant
/// file".
JsonNode readJsonFile(const QString &fileName, const QString &kind, QList<Problem> *problems);
