#include <common/json/json.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

// More than the line of an item has.
constexpr int usualSize = 256;

/// Whether the text stands in JSON as it is. A single surrogate does not.
bool isPlain(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= u' ' && character != u'"' && character != u'\\'
               && !character.isSurrogate();
    });
}

} // namespace

JsonMember::JsonMember(const char *memberKey, const QString &text)
    : key(QString::fromLatin1(memberKey)), json(jsonText(text))
{
}

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

QString jsonText(const QString &text)
{
    // QJsonDocument makes a tree of several allocations for each text; most need no more than
    // quotes.
    return isPlain(text) ? u'"' + text + u'"' : jsonText(QJsonValue(text));
}

QString jsonObject(const QList<JsonMember> &members)
{
    QString object(u'{');
    object.reserve(usualSize);
    for (const JsonMember &member : members) {
        if (object.size() > 1)
            object += u',';
        object += jsonText(member.key) + u':' + member.json;
    }
    return object + u'}';
}

QString jsonLine(const char *type, const QList<JsonMember> &members)
{
    const QString comma = members.isEmpty() ? QString() : QStringLiteral(",");
    return u"{\"type\":" + jsonText(QString::fromLatin1(type)) + comma
           + jsonObject(members).midRef(1) + u'\n';
}
