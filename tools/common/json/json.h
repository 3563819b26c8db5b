#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>

/// One member of a JSON object.
struct JsonMember
{
    JsonMember(const char *memberKey, const QString &text);
    JsonMember(const char *memberKey, const QJsonValue &value);
    JsonMember(const char *memberKey, const QList<JsonMember> &members);

    QString key;
    /// The value as JSON text.
    QString json;
};

/// The value as compact JSON text.
QString jsonText(const QJsonValue &value);
QString jsonText(const QString &text);

/// An object with its members in the order given, which QJsonObject would sort.
QString jsonObject(const QList<JsonMember> &members);

/// A line of a program's JSON output: an object whose first member is its "type".
QString jsonLine(const char *type, const QList<JsonMember> &members);
