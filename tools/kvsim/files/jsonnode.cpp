#include "files/jsonnode.h"

#include <common/json/jsonfile.h>

bool JsonNode::expectObject() const
{
    readObject(value, place, errors);
    return value.isObject();
}

void JsonNode::checkKeys(const char *known) const
{
    ::checkKeys(value.toObject(), QString::fromLatin1(known).split(u' '), place, errors);
}

JsonNode JsonNode::operator[](const QString &key) const
{
    return {value.toObject().value(key), member(place, key), errors};
}

QList<JsonNode> JsonNode::elements() const
{
    const QJsonArray list = readList(value, place, errors);
    QList<JsonNode> nodes;
    for (int i = 0; i < list.size(); ++i)
        nodes.append({list.at(i), element(place, i), errors});
    return nodes;
}

QList<JsonNode> JsonNode::optionalElements() const
{
    return exists() ? elements() : QList<JsonNode>();
}

JsonNode readJsonFile(const QString &fileName, const QString &kind, QList<Problem> *errors)
{
    const std::optional<QByteArray> json = readJsonBytes(fileName, kind, errors);
    const std::optional<QJsonValue> root = json ? parseJson(*json, errors) : std::nullopt;
    return {root.value_or(QJsonValue(QJsonValue::Undefined)), {}, errors};
}
