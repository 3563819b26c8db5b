#include "files/config.h"

#include "files/generatorobject.h"
#include "files/memoryobject.h"

#include <common/json/jsonfile.h>

#include <QFileInfo>
#include <QRegularExpression>

namespace {

const QString configurationFile = QStringLiteral("configuration");

/// A text that may be missing. `wrong` tells what is wrong with one that is not right.
QString readOptionalText(const QJsonObject &object, const QString &key, const QString &byDefault,
                         bool (*isRight)(const QString &text), const QString &wrong,
                         const QString &place, QList<Problem> *errors)
{
    if (!object.contains(key))
        return byDefault;
    const QString text = readText(object.value(key), member(place, key), errors);
    if (object.value(key).isString() && !isRight(text))
        addError(member(place, key), wrong.arg(text), errors);
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

quint16 readPort(const QJsonObject &object, quint16 byDefault, const QString &place,
                 QList<Problem> *errors)
{
    const QString key = QStringLiteral("port");
    if (!object.contains(key))
        return byDefault;
    return static_cast<quint16>(
        readWhole(object.value(key), 0, 65535, member(place, key), errors).value_or(0));
}

std::optional<Range> readRange(const QString &text, const QString &place, QList<Problem> *errors)
{
    const QStringList ends = text.split(u'-');
    const std::optional<Range> range
        = ends.size() <= 2 ? parseRange(ends.first().toUtf8(), ends.last().toUtf8()) : std::nullopt;
    if (!range)
        addError(place,
                 QStringLiteral("'%1' is no range; write one such as DM100-DM199, or an address")
                     .arg(text),
                 errors);
    return range;
}

/// Hands over each text of a list that may be missing, and its place.
void readTexts(const QJsonObject &object, const QString &key, const QString &place,
               QList<Problem> *errors,
               const std::function<void(const QString &text, const QString &at)> &take)
{
    if (!object.contains(key))
        return;
    const QString listPlace = member(place, key);
    const QJsonArray list = readList(object.value(key), listPlace, errors);
    for (int i = 0; i < list.size(); ++i) {
        const QString text = readText(list.at(i), element(listPlace, i), errors);
        if (list.at(i).isString())
            take(text, element(listPlace, i));
    }
}

QVector<Range> readRanges(const QJsonObject &object, const QString &key, const QString &place,
                          QList<Problem> *errors)
{
    QVector<Range> ranges;
    readTexts(object, key, place, errors, [&](const QString &text, const QString &at) {
        if (const std::optional<Range> range = readRange(text, at, errors))
            ranges.append(*range);
    });
    return ranges;
}

void readFaults(const QJsonObject &object, const QString &place, FaultEngine *faults,
                QList<Problem> *errors)
{
    readTexts(object, QStringLiteral("faults"), place, errors,
              [&](const QString &text, const QString &at) {
                  const QString error = faults->add(text.toUtf8());
                  if (!error.isEmpty())
                      addError(at, error, errors);
              });
}

void readGenerators(const QJsonObject &object, const QString &folder, const QString &place,
                    Memory *memory, QList<Problem> *errors)
{
    const QString key = QStringLiteral("generators");
    if (!object.contains(key))
        return;
    const QString here = member(place, key);
    const QJsonObject entries = readObject(object.value(key), here, errors);
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        const QString entryPlace = member(here, entry.key());
        const std::optional<Address> address = readAddress(entry.key(), entryPlace, errors);
        if (!address)
            continue;
        if (memory->isGenerated(*address))
            addError(entryPlace,
                     QStringLiteral("%1 has a generator already; leave one of the two out")
                         .arg(QString::fromLatin1(addressText(*address))),
                     errors);
        memory->generate(*address, readGenerator(entry.value(), address->device->kind, folder,
                                                 entryPlace, errors));
    }
}

std::shared_ptr<Controller> readController(const QJsonValue &value, int index,
                                           const QString &folder, const Place &byDefault,
                                           QList<Problem> *errors)
{
    auto controller = std::make_shared<Controller>();
    const QString place = element(QStringLiteral("controllers"), index);
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return controller;
    checkKeys(object,
              {QStringLiteral("name"), QStringLiteral("address"), QStringLiteral("port"),
               QStringLiteral("model"), QStringLiteral("memory"), QStringLiteral("readOnly"),
               QStringLiteral("missing"), QStringLiteral("generators"), QStringLiteral("faults")},
              place, errors);
    const QString name = readOptionalText(
        object, QStringLiteral("name"), QString::number(index + 1), isName,
        QStringLiteral("'%1' is no name; write a letter and then letters, digits, - or _"), place,
        errors);
    const QString address = readOptionalText(
        object, QStringLiteral("address"), byDefault.address.toString(), isAddress,
        QStringLiteral("'%1' is no IP address; write one such as 127.0.0.1"), place, errors);
    const quint16 port = readPort(object, byDefault.port, place, errors);
    controller->place = {name.toLatin1(), QHostAddress(address), port, {}};
    Profile &profile = controller->profile;
    profile.model
        = readOptionalText(object, QStringLiteral("model"), QString::fromLatin1(profile.model),
                           isModel,
                           QStringLiteral("'%1' is no model code; write 1 to 5 digits, for example "
                                          "\"55\""),
                           place, errors)
              .toLatin1();
    profile.readOnly = readRanges(object, QStringLiteral("readOnly"), place, errors);
    profile.missing = readRanges(object, QStringLiteral("missing"), place, errors);
    readGenerators(object, folder, place, &controller->memory, errors);
    const QString memory = QStringLiteral("memory");
    readMemory(object.value(memory), member(place, memory), &controller->memory, errors);
    readFaults(object, place, &controller->faults, errors);
    return controller;
}

/// Two controllers cannot listen at the same place.
void checkPlaces(const Controllers &all, QList<Problem> *errors)
{
    QStringList names;
    QStringList endpoints;
    for (const auto &controller : all) {
        const Place &place = controller->place;
        names.append(QString::fromLatin1(place.name));
        const bool known = place.port != 0 && !place.address.isNull();
        endpoints.append(known ? QString::fromLatin1(endpointText(place.address, place.port))
                               : QString());
    }
    const QString controllers = QStringLiteral("controllers");
    checkUnique(names, QStringLiteral("name"), controllers, errors);
    checkUnique(endpoints, QStringLiteral("port"), controllers, errors);
}

Controllers readControllers(const QJsonValue &root, const QString &folder, const Place &byDefault,
                            QList<Problem> *errors)
{
    const QJsonObject object = readObject(root, {}, errors);
    if (!root.isObject())
        return {};
    const QString key = QStringLiteral("controllers");
    checkKeys(object, {key}, {}, errors);
    const QJsonArray list = readList(object.value(key), key, errors);
    if (object.value(key).isArray() && (list.isEmpty() || list.size() > maximumControllers))
        addError(key, QStringLiteral("expected 1 to %1 controllers").arg(maximumControllers),
                 errors);
    Controllers controllers;
    for (int i = 0; i < list.size(); ++i)
        controllers.append(readController(list.at(i), i, folder, byDefault, errors));
    checkPlaces(controllers, errors);
    return controllers;
}

} // namespace

Controllers readConfig(const QString &fileName, const Place &place, QList<Problem> *problems)
{
    const std::optional<QByteArray> json = readJsonBytes(fileName, configurationFile, problems);
    const std::optional<QJsonValue> root = json ? parseJson(*json, problems) : std::nullopt;
    if (!root)
        return {};
    return readControllers(*root, QFileInfo(fileName).absolutePath(), place, problems);
}
