#include <common/json/json.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

QString jsonText(const QJsonValue &value)
{
    // A document is an object or a list: the value goes in a list, whose brackets are cut off.
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
