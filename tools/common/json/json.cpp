#include <common/json/json.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

JsonMember::JsonMember(const char *memberKey, const QJsonValue &value)
    : key(QString::fromLatin1(memberKey)), json(jsonText(value))
{
}

JsonMember::JsonMember(const char *memberKey, const QList<JsonMember> &members)
    : key(QString::fromLatin1(memberKey)), json(jsonObject(members))
{
}

QString jsonText(const QJsonValue &value)
{
    // QJsonDocument takes objects and lists only: the value is put in a list, and the brackets are
    // removed.
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

QString jsonObject(const QList<JsonMember> &members)
{
    QStringList texts;
    for (const JsonMember &member : members)
        texts.append(jsonText(member.key) + u':' + member.json);
    return u'{' + texts.join(u',') + u'}';
}

QString jsonLine(const char *type, const QList<JsonMember> &members)
{
    const QList<JsonMember> typeMember{{"type", QLatin1String(type)}};
    return jsonObject(typeMember + members) + u'\n';
}
