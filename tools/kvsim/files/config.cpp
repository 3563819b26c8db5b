#include "files/config.h"

#include "controller/endpoint.h"
#include "controller/faultengine.h"
#include "files/generatorobject.h"
#include "files/memoryobject.h"

#include <common/json/jsonfile.h>

#include <QFileInfo>
#include <QRegularExpression>

namespace {

const QString configurationFile = QStringLiteral("configuration");

QByteArray readControllerName(const QJsonObject &object, int index, const QString &place,
                              QList<Problem> *errors)
{
    const QString key = QStringLiteral("name");
    if (!object.contains(key))
        return QByteArray::number(index + 1);
    const QString name = readText(object.value(key), member(place, key), errors);
    static const QRegularExpression form(QStringLiteral("^[A-Za-z][A-Za-z0-9_-]*$"));
    if (object.value(key).isString() && !form.match(name).hasMatch())
        addError(member(place, key),
                 QStringLiteral("'%1' is no name; write a letter and then letters, digits, - or _")
                     .arg(name),
                 errors);
    return name.toLatin1();
}

QHostAddress readHostAddress(const QJsonObject &object, const QHostAddress &byDefault,
                             const QString &place, QList<Problem> *errors)
{
    const QString key = QStringLiteral("address");
    if (!object.contains(key))
        return byDefault;
    const QString text = readText(object.value(key), member(place, key), errors);
    QHostAddress address;
    if (!address.setAddress(text) && object.value(key).isString())
        addError(member(place, key),
                 QStringLiteral("'%1' is no IP address; write one such as 127.0.0.1").arg(text),
                 errors);
    return address;
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

QByteArray readModel(const QJsonObject &object, const QString &place, QList<Problem> *errors)
{
    const QString key = QStringLiteral("model");
    if (!object.contains(key))
        return Profile().model;
    const QString model = readText(object.value(key), member(place, key), errors);
    static const QRegularExpression form(QStringLiteral("^[0-9]{1,5}$"));
    if (object.value(key).isString() && !form.match(model).hasMatch())
        addError(member(place, key),
                 QStringLiteral("'%1' is no model code; write 1 to 5 digits, for example \"55\"")
                     .arg(model),
                 errors);
    return model.toLatin1();
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

QVector<Range> readRanges(const QJsonObject &object, const QString &key, const QString &place,
                          QList<Problem> *errors)
{
    if (!object.contains(key))
        return {};
    const QString listPlace = member(place, key);
    const QJsonArray list = readList(object.value(key), listPlace, errors);
    QVector<Range> ranges;
    for (int i = 0; i < list.size(); ++i) {
        const QString text = readText(list.at(i), element(listPlace, i), errors);
        if (!list.at(i).isString())
            continue;
        if (const std::optional<Range> range = readRange(text, element(listPlace, i), errors))
            ranges.append(*range);
    }
    return ranges;
}

QList<QByteArray> readFaults(const QJsonObject &object, const QString &place,
                             QList<Problem> *errors)
{
    const QString key = QStringLiteral("faults");
    if (!object.contains(key))
        return {};
    const QString listPlace = member(place, key);
    const QJsonArray list = readList(object.value(key), listPlace, errors);
    FaultEngine engine;
    QList<QByteArray> faults;
    for (int i = 0; i < list.size(); ++i) {
        faults.append(readText(list.at(i), element(listPlace, i), errors).toUtf8());
        const QString error = list.at(i).isString() ? engine.add(faults.constLast()) : QString();
        if (!error.isEmpty())
            addError(element(listPlace, i), error, errors);
    }
    return faults;
}

QVector<GeneratedValue> readGenerators(const QJsonObject &object, const QString &folder,
                                       const QString &place, Memory *memory, QList<Problem> *errors)
{
    const QString key = QStringLiteral("generators");
    if (!object.contains(key))
        return {};
    const QString here = member(place, key);
    const QJsonObject entries = readObject(object.value(key), here, errors);
    QVector<GeneratedValue> generators;
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
        const std::optional<Generator> generator
            = readGenerator(entry.value(), address->device->kind, folder, entryPlace, errors);
        memory->generate(*address, generator.value_or(Generator()));
        if (generator)
            generators.append({*address, *generator});
    }
    return generators;
}

Setup readController(const QJsonValue &value, int index, const QString &folder,
                     const Place &byDefault, QList<Problem> *errors)
{
    const QString place = element(QStringLiteral("controllers"), index);
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return {};
    checkKeys(object,
              {QStringLiteral("name"), QStringLiteral("address"), QStringLiteral("port"),
               QStringLiteral("model"), QStringLiteral("memory"), QStringLiteral("readOnly"),
               QStringLiteral("missing"), QStringLiteral("generators"), QStringLiteral("faults")},
              place, errors);
    Setup setup;
    setup.place.name = readControllerName(object, index, place, errors);
    setup.place.address = readHostAddress(object, byDefault.address, place, errors);
    setup.place.port = readPort(object, byDefault.port, place, errors);
    setup.profile.model = readModel(object, place, errors);
    setup.profile.readOnly = readRanges(object, QStringLiteral("readOnly"), place, errors);
    setup.profile.missing = readRanges(object, QStringLiteral("missing"), place, errors);
    Memory generated;
    setup.generators = readGenerators(object, folder, place, &generated, errors);
    const QString memory = QStringLiteral("memory");
    setup.memory = readMemory(object.value(memory), member(place, memory), generated, errors);
    setup.faults = readFaults(object, place, errors);
    return setup;
}

/// Two controllers cannot listen at the same place.
void checkPlaces(const QList<Setup> &setups, QList<Problem> *errors)
{
    QStringList names;
    QStringList endpoints;
    for (const Setup &setup : setups) {
        const Place &place = setup.place;
        names.append(QString::fromLatin1(place.name));
        const bool known = place.port != 0 && !place.address.isNull();
        endpoints.append(known ? QString::fromLatin1(endpointText(place.address, place.port))
                               : QString());
    }
    const QString controllers = QStringLiteral("controllers");
    checkUnique(names, QStringLiteral("name"), controllers, errors);
    checkUnique(endpoints, QStringLiteral("port"), controllers, errors);
}

QList<Setup> readControllers(const QJsonValue &root, const QString &folder, const Place &byDefault,
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
    QList<Setup> setups;
    for (int i = 0; i < list.size(); ++i)
        setups.append(readController(list.at(i), i, folder, byDefault, errors));
    checkPlaces(setups, errors);
    return setups;
}

} // namespace

QList<Setup> readConfig(const QString &fileName, const Place &place, QStringList *errors)
{
    QList<Problem> problems;
    const std::optional<QByteArray> json = readJsonBytes(fileName, configurationFile, &problems);
    const std::optional<QJsonValue> root = json ? parseJson(*json, &problems) : std::nullopt;
    QList<Setup> setups;
    if (root)
        setups = readControllers(*root, QFileInfo(fileName).absolutePath(), place, &problems);
    errors->append(problemLines(fileName, problems));
    return problems.isEmpty() ? setups : QList<Setup>();
}
