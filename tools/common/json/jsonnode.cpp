#include <common/json/jsonnode.h>

#include <QHash>
#include <QJsonArray>
#include <QMap>

#include <cmath>

namespace {

QString kindOf(const QJsonValue &value)
{
    static const QMap<QJsonValue::Type, QString> kinds{
        {QJsonValue::Null, QStringLiteral("null")},
        {QJsonValue::Bool, QStringLiteral("true or false")},
        {QJsonValue::Double, QStringLiteral("a number")},
        {QJsonValue::String, QStringLiteral("a text")},
        {QJsonValue::Array, QStringLiteral("a list")},
        {QJsonValue::Object, QStringLiteral("an object")}};
    return kinds.value(value.type(), QStringLiteral("nothing"));
}

QString elementPlace(const QString &listPlace, int index)
{
    return listPlace + u'[' + QString::number(index) + u']';
}

} // namespace

QString member(const QString &place, const QString &key)
{
    return place.isEmpty() ? key : QString(place + u'.' + key);
}

void JsonNode::failAs(const QString &expected) const
{
    fail(exists() ? QStringLiteral("expected %1, found %2").arg(expected, kindOf(value))
                  : QStringLiteral("missing; expected %1").arg(expected));
}

QString JsonNode::text() const
{
    if (!value.isString())
        failAs(QStringLiteral("a text"));
    return value.toString();
}

QString JsonNode::name() const
{
    QString name = text();
    if (value.isString() && name.isEmpty())
        fail(QStringLiteral("must not be empty; write a name"));
    return name;
}

std::optional<qint64> JsonNode::whole(qint64 minimum, qint64 maximum) const
{
    const double number = value.toDouble();
    if (!value.isDouble())
        failAs(QStringLiteral("a number"));
    else if (number < static_cast<double>(minimum) || number > static_cast<double>(maximum)
             || std::floor(number) != number)
        fail(QStringLiteral("expected a whole number from %1 to %2").arg(minimum).arg(maximum));
    else
        return static_cast<qint64>(number);
    return {};
}

bool JsonNode::expectObject() const
{
    if (!value.isObject())
        failAs(QStringLiteral("an object"));
    return value.isObject();
}

void JsonNode::checkKeys(const char *known) const
{
    const QStringList knownKeys = QString::fromLatin1(known).split(u' ');
    const QStringList keys = value.toObject().keys();
    for (const QString &key : keys) {
        if (!knownKeys.contains(key))
            (*this)[key].fail(QStringLiteral("unknown key; known here: %1")
                                  .arg(knownKeys.join(QStringLiteral(", "))));
    }
}

JsonNode JsonNode::operator[](const QString &key) const
{
    return {value.toObject().value(key), member(place, key), errors};
}

QList<JsonNode> JsonNode::elements() const
{
    if (!value.isArray())
        failAs(QStringLiteral("a list"));
    const QJsonArray list = value.toArray();
    QList<JsonNode> nodes;
    for (int i = 0; i < list.size(); ++i)
        nodes.append({list.at(i), elementPlace(place, i), errors});
    return nodes;
}

QList<JsonNode> JsonNode::optionalElements() const
{
    return exists() ? elements() : QList<JsonNode>();
}

void JsonNode::checkUnique(const QStringList &texts, const QString &key) const
{
    QHash<QString, int> firstIndex;
    for (int i = 0; i < texts.size(); ++i) {
        const QString &text = texts.at(i);
        const int first = firstIndex.value(text, i);
        firstIndex.insert(text, first);
        if (first != i && !text.isEmpty())
            addError(member(elementPlace(place, i), key),
                     QStringLiteral("\"%1\" is already the %2 of %3; write another one")
                         .arg(text, key, elementPlace(place, first)),
                     errors);
    }
}
