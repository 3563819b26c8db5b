#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>

/// One member of a JSON object: its key and its value as JSON text.
struct JsonMember
{
    QString key;
    QString json;
};

/// The value as compact JSON text.
QString jsonText(const QJsonValue &value);

/// An object with its members in the order given, which QJsonObject would sort.
QString jsonObject(const QList<JsonMember> &members);
