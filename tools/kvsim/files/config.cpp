#include "files/config.h"

#include "files/generatorobject.h"
#include "files/memoryobject.h"

#include <common/json/jsonfile.h>

#include <QFileInfo>
#include <QRegularExpression>

namespace {

/// A text that may be missing. `wrong` tells what is wrong with one that is not right.
QString readOptionalText(const JsonNode &node, const QString &byDefault,
                         bool (*isRight)(const QString &text), const QString &wrong)
{
    if (!node.exists())
        return byDefault;
    const QString text = node.text();
    if (node.value.isString() && !isRight(text))
        node.fail(wrong.arg(text));
    return text;
}

bool isName(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^[A-Za-z][A-Za-z0-9_-]*$"));
    return form.match(text).hasMatch();
}

bool isAddress(const QString &text)
{
    return QHostAddress().setAddress(text);
}

bool isModel(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^[0-9]{1,5}$"));
    return form.match(text).hasMatch();
}

std::optional<Range> readRange(const JsonNode &node)
{
    const QString text = node.text();
    const QStringList ends = text.split(u'-');
    const std::optional<Range> range
        = ends.size() <= 2 ? parseRange(ends.first().toUtf8(), ends.last().toUtf8()) : std::nullopt;
    if (!range && node.value.isString())
        node.fail(QStringLiteral("'%1' is no range; write one such as DM100-DM199, or an address")
                      .arg(text));
    return range;
}

QVector<Range> readRanges(const JsonNode &node)
{
    const QList<JsonNode> list = node.optionalElements();
    QVector<Range> ranges;
    for (const JsonNode &entry : list) {
        if (const std::optional<Range> range = readRange(entry))
            ranges.append(*range);
    }
    return ranges;
}

void readFaults(const JsonNode &node, FaultEngine *faults)
{
    const QList<JsonNode> list = node.optionalElements();
    for (const JsonNode &entry : list) {
        const QByteArray fault = entry.text().toUtf8();
        const QString error = entry.value.isString() ? faults->add(fault) : QString();
        if (!error.isEmpty())
            entry.fail(error);
    }
}

void readGenerators(const JsonNode &node, const QString &folder, Memory *memory)
{
    if (!node.exists() || !node.expectObject())
        return;
    const QStringList keys = node.value.toObject().keys();
    for (const QString &key : keys) {
        const JsonNode entry = node[key];
        const std::optional<Address> address = readAddress(key, entry);
        if (!address)
            continue;
        if (memory->isGenerated(*address))
            entry.fail(QStringLiteral("%1 has a generator already; leave one of the two out")
                           .arg(QString::fromLatin1(addressText(*address))));
        memory->generate(*address, readGenerator(entry, address->device->kind, folder));
    }
}

std::shared_ptr<Controller> readController(const JsonNode &node, int index, const QString &folder,
                                           const Place &byDefault)
{
    auto controller = std::make_shared<Controller>();
    if (!node.expectObject())
        return controller;
    node.checkKeys("name address port model memory readOnly missing generators faults");
    const QString name = readOptionalText(
        node["name"], QString::number(index + 1), isName,
        QStringLiteral("'%1' is no name; write a letter and then letters, digits, - or _"));
    const QString address
        = readOptionalText(node["address"], byDefault.address.toString(), isAddress,
                           QStringLiteral("'%1' is no IP address; write one such as 127.0.0.1"));
    const JsonNode port = node["port"];
    const qint64 number = port.exists() ? port.whole(0, 65535).value_or(0) : byDefault.port;
    controller->place = {name.toLatin1(), QHostAddress(address), static_cast<quint16>(number), {}};
    Profile &profile = controller->profile;
    const QString model = readOptionalText(
        node["model"], QString::fromLatin1(profile.model), isModel,
        QStringLiteral("'%1' is no model code; write 1 to 5 digits, for example \"55\""));
    profile.model = model.toLatin1();
    profile.readOnly = readRanges(node["readOnly"]);
    profile.missing = readRanges(node["missing"]);
    readGenerators(node["generators"], folder, &controller->memory);
    readMemory(node["memory"], &controller->memory);
    readFaults(node["faults"], &controller->faults);
    return controller;
}

/// Two controllers cannot listen at the same place.
void checkPlaces(const Controllers &controllers, const JsonNode &node)
{
    QStringList names;
    QStringList endpoints;
    for (const auto &controller : controllers) {
        const Place &place = controller->place;
        names.append(QString::fromLatin1(place.name));
        const bool known = place.port != 0 && !place.address.isNull();
        endpoints.append(known ? QString::fromLatin1(endpointText(place.address, place.port))
                               : QString());
    }
    node.checkUnique(names, QStringLiteral("name"));
    node.checkUnique(endpoints, QStringLiteral("port"));
}

} // namespace

Controllers readConfig(const QString &fileName, const Place &place, QList<Problem> *problems)
{
    const JsonNode root = readJsonFile(fileName, QStringLiteral("configuration"), problems);
    if (!root.exists() || !root.expectObject())
        return {};
    root.checkKeys("controllers");
    const JsonNode node = root["controllers"];
    const QList<JsonNode> list = node.elements();
    if (node.value.isArray() && (list.isEmpty() || list.size() > maximumControllers))
        node.fail(QStringLiteral("expected 1 to %1 controllers").arg(maximumControllers));
    const QString folder = QFileInfo(fileName).absolutePath();
    Controllers controllers;
    for (int i = 0; i < list.size(); ++i)
        controllers.append(readController(list.at(i), i, folder, place));
    checkPlaces(controllers, node);
    return controllers;
}
