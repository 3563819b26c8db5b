#include "plant/plant.h"

#include <common/json/json.h>
#include <common/json/jsonfile.h>
#include <common/json/jsonplace.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

#include <limits>

// The functions with a `place` are as those of jsonplace.h. With any error the caller must not use
// the plant.

namespace {

int readId(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    const qint64 most = std::numeric_limits<int>::max();
    return static_cast<int>(readWhole(value, 0, most, place, errors).value_or(-1));
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

/// The text with the environment variable NAME in place of each `${NAME}`.
QString withEnvironment(QString text, const QString &place, QList<Problem> *errors)
{
    static const QRegularExpression reference(QStringLiteral("\\$\\{([^}]*)\\}"));
    QRegularExpressionMatchIterator matches = reference.globalMatch(QString(text));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString value = qEnvironmentVariable(match.captured(1).toUtf8().constData());
        if (value.isEmpty())
            addError(place,
                     QStringLiteral("the environment variable \"%1\" is not set or empty; set it "
                                    "before the program starts")
                         .arg(match.captured(1)),
                     errors);
        text.replace(match.captured(), value);
    }
    return text;
}

ParameterTexts readDeviceParameters(const QJsonValue &value, const QString &place,
                                    QList<Problem> *errors)
{
    ParameterTexts result = readParameters(value, place, errors);
    const auto port = result.find(QStringLiteral("port"));
    if (port != result.end() && *port)
        *port = withEnvironment(**port, member(place, port.key()), errors);
    return result;
}

/// The distance from an expected value that there must be.
double readTolerance(const QJsonObject &item, const QString &place, QList<Problem> *errors)
{
    const QJsonValue tolerance = item.value(u"tolerance");
    if (!item.contains(u"expect"))
        addError(place, QStringLiteral("there is no \"expect\" that it belongs to"), errors);
    else if (!tolerance.isDouble())
        addWrongKind(tolerance, QStringLiteral("a number"), place, errors);
    else if (tolerance.toDouble() < 0)
        addError(place, QStringLiteral("expected 0 or more, found %1").arg(jsonText(tolerance)),
                 errors);
    return tolerance.toDouble();
}

PlantItem readItem(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return {{}, {}, {}, place};
    const QString name = QStringLiteral("name");
    const QString parameters = QStringLiteral("parameters");
    const QString expect = QStringLiteral("expect");
    const QString tolerance = QStringLiteral("tolerance");
    checkKeys(object, {name, parameters, expect, tolerance}, place, errors);
    PlantItem item{readName(object.value(name), member(place, name), errors),
                   readParameters(object.value(parameters), member(place, parameters), errors),
                   {},
                   place};
    if (object.contains(expect))
        item.expect = readText(object.value(expect), member(place, expect), errors);
    if (object.contains(tolerance))
        item.tolerance = readTolerance(object, member(place, tolerance), errors);
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
        return {-1, {}, {}, {}, {}, {}, place};
    const QString id = QStringLiteral("id");
    const QString name = QStringLiteral("name");
    const QString ip = QStringLiteral("ip");
    const QString parameters = QStringLiteral("parameters");
    const QString itemDefaults = QStringLiteral("itemDefaults");
    const QString items = QStringLiteral("items");
    checkKeys(object, {id, name, ip, parameters, itemDefaults, items}, place, errors);
    return {readId(object.value(id), member(place, id), errors),
            readName(object.value(name), member(place, name), errors),
            withEnvironment(readText(object.value(ip), member(place, ip), errors),
                            member(place, ip), errors),
            readDeviceParameters(object.value(parameters), member(place, parameters), errors),
            readItems(object.value(items), member(place, items), errors),
            readParameters(object.value(itemDefaults), member(place, itemDefaults), errors),
            place};
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

Plant readPlant(const QJsonValue &root, QList<Problem> *errors)
{
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

} // namespace

std::optional<Plant> parsePlantDraft(const QByteArray &json, QList<Problem> *problems)
{
    const std::optional<QJsonValue> root = parseJson(json, problems);
    return root ? std::make_optional(readPlant(*root, problems)) : std::nullopt;
}

std::optional<Plant> readPlantDraft(const QString &fileName, QList<Problem> *problems)
{
    const std::optional<QByteArray> json
        = readJsonBytes(fileName, QStringLiteral("plant file"), problems);
    return json ? parsePlantDraft(*json, problems) : std::nullopt;
}
