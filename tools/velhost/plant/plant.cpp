#include "plant/plant.h"

#include <common/json/json.h>
#include <common/json/jsonfile.h>

#include <QRegularExpression>

#include <limits>

// With any error the caller must not use the plant.

namespace {

ParameterTexts readParameters(const JsonNode &node)
{
    ParameterTexts result;
    if (!node.exists() || !node.expectObject())
        return result;
    const QStringList keys = node.value.toObject().keys();
    for (const QString &key : keys) {
        const JsonNode parameter = node[key];
        if (parameter.value.isString())
            result.insert(key, parameter.value.toString());
        else if (parameter.value.isNull())
            result.insert(key, std::nullopt);
        else if (parameter.value.isDouble())
            parameter.fail(QStringLiteral("expected a text or null, found a number; write \"%1\"")
                               .arg(jsonText(parameter.value)));
        else
            parameter.failAs(QStringLiteral("a text or null"));
    }
    return result;
}

/// The text with the environment variable NAME in place of each `${NAME}`.
QString withEnvironment(QString text, const JsonNode &node)
{
    static const QRegularExpression reference(QStringLiteral("\\$\\{([^}]*)\\}"));
    QRegularExpressionMatchIterator matches = reference.globalMatch(QString(text));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString value = qEnvironmentVariable(match.captured(1).toUtf8().constData());
        if (value.isEmpty())
            node.fail(QStringLiteral("the environment variable \"%1\" is not set or empty; set it "
                                     "before the program starts")
                          .arg(match.captured(1)));
        text.replace(match.captured(), value);
    }
    return text;
}

ParameterTexts readDeviceParameters(const JsonNode &node)
{
    ParameterTexts result = readParameters(node);
    const auto port = result.find(QStringLiteral("port"));
    if (port != result.end() && *port)
        *port = withEnvironment(**port, node[port.key()]);
    return result;
}

/// The distance from an expected value that there must be.
double readTolerance(const JsonNode &node, bool isExpected)
{
    const double tolerance = node.value.toDouble();
    if (node.exists() && !isExpected)
        node.fail(QStringLiteral("there is no \"expect\" that it belongs to"));
    else if (node.exists() && !node.value.isDouble())
        node.failAs(QStringLiteral("a number"));
    else if (tolerance < 0)
        node.fail(QStringLiteral("expected 0 or more, found %1").arg(jsonText(node.value)));
    return tolerance;
}

PlantItem readItem(const JsonNode &node)
{
    if (!node.expectObject())
        return {{}, {}, {}, node.place};
    node.checkKeys("name parameters expect tolerance");
    PlantItem item{node["name"].name(), readParameters(node["parameters"]), {}, node.place};
    const JsonNode expect = node["expect"];
    if (expect.exists())
        item.expect = expect.text();
    item.tolerance = readTolerance(node["tolerance"], expect.exists());
    return item;
}

QList<PlantItem> readItems(const JsonNode &node)
{
    QList<PlantItem> items;
    QStringList names;
    const QList<JsonNode> elements = node.elements();
    for (const JsonNode &element : elements) {
        items.append(readItem(element));
        names.append(items.last().name);
    }
    node.checkUnique(names, QStringLiteral("name"));
    return items;
}

PlantDevice readDevice(const JsonNode &node)
{
    if (!node.expectObject())
        return {-1, {}, {}, {}, {}, {}, node.place};
    node.checkKeys("id name ip parameters itemDefaults items");
    const qint64 mostId = std::numeric_limits<int>::max();
    return {static_cast<int>(node["id"].whole(0, mostId).value_or(-1)),
            node["name"].name(),
            withEnvironment(node["ip"].text(), node["ip"]),
            readDeviceParameters(node["parameters"]),
            readItems(node["items"]),
            readParameters(node["itemDefaults"]),
            node.place};
}

QList<PlantDevice> readDevices(const JsonNode &node)
{
    QList<PlantDevice> devices;
    QStringList ids;
    QStringList names;
    const QList<JsonNode> elements = node.elements();
    for (const JsonNode &element : elements) {
        devices.append(readDevice(element));
        const int id = devices.last().id;
        ids.append(id >= 0 ? QString::number(id) : QString());
        names.append(devices.last().name);
    }
    node.checkUnique(ids, QStringLiteral("id"));
    node.checkUnique(names, QStringLiteral("name"));
    return devices;
}

/// Nothing of a file that is no JSON.
std::optional<Plant> plantOf(const JsonNode &root)
{
    if (!root.exists())
        return {};
    if (!root.expectObject())
        return Plant();
    root.checkKeys("$schema networkInterfaces devices");
    if (root["$schema"].exists())
        root["$schema"].text();
    Plant plant;
    const QList<JsonNode> interfaces = root["networkInterfaces"].optionalElements();
    for (const JsonNode &networkInterface : interfaces)
        plant.networkInterfaces.append(networkInterface.name());
    plant.devices = readDevices(root["devices"]);
    return plant;
}

} // namespace

std::optional<Plant> parsePlantDraft(const QByteArray &json, QList<Problem> *problems)
{
    return plantOf(parseJson(json, problems));
}

std::optional<Plant> readPlantDraft(const QString &fileName, QList<Problem> *problems)
{
    return plantOf(readJsonFile(fileName, QStringLiteral("plant file"), problems));
}
