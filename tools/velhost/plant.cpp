#include "plant.h"

#include "duplicatekey.h"
#include "json.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

// Every function that takes a `place` adds its faults to `errors` under that place and goes on with
// an empty value: one run finds all faults of a file. The caller throws the plant away when there
// is one.

namespace {

constexpr qint64 maximumFileSize = 16LL * 1024 * 1024;

QString kindOf(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("true or false");
    case QJsonValue::Double:
        return QStringLiteral("a number");
    case QJsonValue::String:
        return QStringLiteral("a text");
    case QJsonValue::Array:
        return QStringLiteral("a list");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("nothing");
}

QString member(const QString &place, const QString &key)
{
    return place.isEmpty() ? key : QString(place + u'.' + key);
}

QString element(const QString &place, int index)
{
    return QStringLiteral("%1[%2]").arg(place).arg(index);
}

void addError(const QString &place, const QString &text, QList<Problem> *errors)
{
    errors->append({{}, place, text});
}

void addWrongKind(const QJsonValue &found, const QString &expected, const QString &place,
                  QList<Problem> *errors)
{
    const QString text = found.isUndefined()
                             ? QStringLiteral("missing; expected %1").arg(expected)
                             : QStringLiteral("expected %1, found %2").arg(expected, kindOf(found));
    addError(place, text, errors);
}

QString readText(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    if (!value.isString())
        addWrongKind(value, QStringLiteral("a text"), place, errors);
    return value.toString();
}

QString readName(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    QString name = readText(value, place, errors);
    if (value.isString() && name.isEmpty())
        addError(place, QStringLiteral("must not be empty; write a name"), errors);
    return name;
}

int readId(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    const int id = value.toInt(-1);
    if (!value.isDouble())
        addWrongKind(value, QStringLiteral("a number"), place, errors);
    else if (id < 0)
        addError(place,
                 QStringLiteral("expected a whole number from 0 to %1")
                     .arg(std::numeric_limits<int>::max()),
                 errors);
    return id;
}

QJsonArray readList(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    if (!value.isArray())
        addWrongKind(value, QStringLiteral("a list"), place, errors);
    return value.toArray();
}

QJsonObject readObject(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    if (!value.isObject())
        addWrongKind(value, QStringLiteral("an object"), place, errors);
    return value.toObject();
}

void checkKeys(const QJsonObject &object, const QStringList &known, const QString &place,
               QList<Problem> *errors)
{
    const QStringList keys = object.keys();
    for (const QString &key : keys) {
        if (!known.contains(key))
            addError(
                member(place, key),
                QStringLiteral("unknown key; known here: %1").arg(known.join(QStringLiteral(", "))),
                errors);
    }
}

/// Looks for a text that stands twice. `texts` are the elements' own at `key`; an empty one is no
/// text, its fault is known already.
void checkUnique(const QStringList &texts, const QString &key, const QString &place,
                 QList<Problem> *errors)
{
    QMap<QString, int> firstIndex;
    for (int i = 0; i < texts.size(); ++i) {
        const QString &text = texts.at(i);
        if (text.isEmpty())
            continue;
        if (firstIndex.contains(text))
            addError(member(element(place, i), key),
                     QStringLiteral("\"%1\" is already the %2 of %3; write another one")
                         .arg(text, key, element(place, firstIndex.value(text))),
                     errors);
        else
            firstIndex.insert(text, i);
    }
}

ParameterTexts readParameters(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    if (value.isUndefined())
        return {};
    ParameterTexts result;
    const QJsonObject object = readObject(value, place, errors);
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        const QJsonValue parameter = entry.value();
        if (parameter.isString())
            result.insert(entry.key(), parameter.toString());
        else if (parameter.isNull())
            result.insert(entry.key(), std::nullopt);
        else if (parameter.isDouble())
            addError(member(place, entry.key()),
                     QStringLiteral("expected a text or null, found a number; write \"%1\"")
                         .arg(jsonText(parameter)),
                     errors);
        else
            addWrongKind(parameter, QStringLiteral("a text or null"), member(place, entry.key()),
                         errors);
    }
    return result;
}

PlantItem readItem(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return {};
    const QString name = QStringLiteral("name");
    const QString parameters = QStringLiteral("parameters");
    const QString expect = QStringLiteral("expect");
    checkKeys(object, {name, parameters, expect}, place, errors);
    PlantItem item{readName(object.value(name), member(place, name), errors),
                   readParameters(object.value(parameters), member(place, parameters), errors)};
    if (object.contains(expect))
        item.expect = readText(object.value(expect), member(place, expect), errors);
    return item;
}

QList<PlantItem> readItems(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    const QJsonArray array = readList(value, place, errors);
    QList<PlantItem> items;
    QStringList names;
    for (int i = 0; i < array.size(); ++i) {
        items.append(readItem(array.at(i), element(place, i), errors));
        names.append(items.last().name);
    }
    checkUnique(names, QStringLiteral("name"), place, errors);
    return items;
}

PlantDevice readDevice(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return {};
    const QString id = QStringLiteral("id");
    const QString name = QStringLiteral("name");
    const QString ip = QStringLiteral("ip");
    const QString parameters = QStringLiteral("parameters");
    const QString items = QStringLiteral("items");
    checkKeys(object, {id, name, ip, parameters, items}, place, errors);
    return {readId(object.value(id), member(place, id), errors),
            readName(object.value(name), member(place, name), errors),
            readText(object.value(ip), member(place, ip), errors),
            readParameters(object.value(parameters), member(place, parameters), errors),
            readItems(object.value(items), member(place, items), errors)};
}

QList<PlantDevice> readDevices(const QJsonValue &value, const QString &place,
                               QList<Problem> *errors)
{
    const QJsonArray array = readList(value, place, errors);
    QList<PlantDevice> devices;
    QStringList ids;
    QStringList names;
    for (int i = 0; i < array.size(); ++i) {
        devices.append(readDevice(array.at(i), element(place, i), errors));
        const int id = devices.last().id;
        ids.append(id >= 0 ? QString::number(id) : QString());
        names.append(devices.last().name);
    }
    checkUnique(ids, QStringLiteral("id"), place, errors);
    checkUnique(names, QStringLiteral("name"), place, errors);
    return devices;
}

QStringList readNetworkInterfaces(const QJsonValue &value, const QString &place,
                                  QList<Problem> *errors)
{
    if (value.isUndefined())
        return {};
    const QJsonArray array = readList(value, place, errors);
    QStringList names;
    for (int i = 0; i < array.size(); ++i)
        names.append(readName(array.at(i), element(place, i), errors));
    return names;
}

Plant readPlant(const QJsonDocument &document, QList<Problem> *errors)
{
    const QJsonValue root
        = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    const QJsonObject object = readObject(root, {}, errors);
    if (!root.isObject())
        return {};
    const QString networkInterfaces = QStringLiteral("networkInterfaces");
    const QString devices = QStringLiteral("devices");
    const QString schema = QStringLiteral("$schema");
    checkKeys(object, {schema, networkInterfaces, devices}, {}, errors);
    if (object.contains(schema))
        readText(object.value(schema), schema, errors);
    return {readNetworkInterfaces(object.value(networkInterfaces), networkInterfaces, errors),
            readDevices(object.value(devices), devices, errors)};
}

/// The line and the column of an offset in bytes, both from 1, as LINE:COLUMN; columns count
/// characters.
QString lineAndColumn(const QByteArray &json, int offset)
{
    const QByteArray before = json.left(offset);
    const int line = before.count('\n') + 1;
    const int column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
    return QStringLiteral("%1:%2").arg(line).arg(column);
}

/// The plant as far as it can be understood; nothing when the text is no JSON.
std::optional<Plant> parseDraft(const QByteArray &json, QList<Problem> *problems)
{
    QJsonParseError syntax{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &syntax);
    if (syntax.error != QJsonParseError::NoError) {
        problems->append(
            {lineAndColumn(json, syntax.offset), {}, u"not valid JSON: " + syntax.errorString()});
        return {};
    }
    const QList<DuplicateKey> duplicates = findDuplicateKeys(json);
    for (const DuplicateKey &duplicate : duplicates)
        problems->append(
            {lineAndColumn(json, duplicate.offset),
             {},
             QStringLiteral("the key \"%1\" is given twice in one object; leave one out")
                 .arg(duplicate.key)});
    return readPlant(document, problems);
}

/// The file's bytes; nothing when it cannot be read or is too large, `problem` then says so.
std::optional<QByteArray> readBytes(const QString &fileName, QString *problem)
{
    QFile file(fileName);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QByteArray json = isOpen ? file.read(maximumFileSize + 1) : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        *problem = u"cannot be read: " + file.errorString();
        return {};
    }
    if (json.size() > maximumFileSize) {
        *problem = QStringLiteral("larger than 16 MiB, so it is no plant file");
        return {};
    }
    return json;
}

} // namespace

std::optional<Plant> parsePlant(const QByteArray &json, const QString &fileName,
                                QStringList *errors)
{
    QList<Problem> problems;
    std::optional<Plant> plant = parseDraft(json, &problems);
    errors->append(problemLines(fileName, problems));
    return problems.isEmpty() ? std::move(plant) : std::nullopt;
}

std::optional<Plant> readPlantDraft(const QString &fileName, QList<Problem> *problems)
{
    QString problem;
    if (const std::optional<QByteArray> json = readBytes(fileName, &problem))
        return parseDraft(*json, problems);
    problems->append({{}, {}, problem});
    return {};
}

std::optional<Plant> readPlantFile(const QString &fileName, QStringList *errors)
{
    QString problem;
    if (const std::optional<QByteArray> json = readBytes(fileName, &problem))
        return parsePlant(*json, fileName, errors);
    errors->append(fileName + u": " + problem);
    return {};
}
