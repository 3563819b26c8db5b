#include "files/plantfile.h"

#include "files/memoryobject.h"
#include "memory/datatype.h"

#include <common/json/jsonfile.h>
#include <common/outputfile.h>
#include <common/wholenumber.h>

#include <QJsonDocument>
#include <QRegularExpression>

namespace {

constexpr qint64 second = 1000;
constexpr int mostWords = 1000; // of one command
const QString devicesKey = QStringLiteral("devices");
const QString parametersKey = QStringLiteral("parameters");
const QString portKey = QStringLiteral("port");

/// An object that may be missing.
QJsonObject readOptional(const QJsonObject &object, const QString &key, const QString &place,
                         QList<Problem> *errors)
{
    const QJsonValue value = object.value(key);
    return value.isUndefined() ? QJsonObject() : readObject(value, member(place, key), errors);
}

/// Numbers that may be negative and those with a point swing, others count, and so does the number
/// in a text.
QByteArray movingValue(const DataType &type, int words, qint64 elapsed)
{
    const qint64 swing = sine(0, 30000, 60 * second)(elapsed);
    const qint64 count = ramp(0, 65535, 65536 * second)(elapsed);
    if (type.words == 0)
        return QByteArray::number(count)
            .rightJustified(9, '0')
            .replace(0, 4, "LOT ")
            .right(2 * words);
    if (type.base == 0)
        return QByteArray::number(static_cast<double>(swing) / 100, 'f', 2);
    // So that the upper word of two moves, too.
    const qint64 factor = type.words > 1 ? 1000 : 1;
    return QByteArray::number((type.minimum < 0 ? swing : count) * factor, type.base);
}

/// Moves the words that an item reads, or the bits, for which there is no type. What a word does
/// already is left alone.
void moveWords(Address first, const DataType *type, int words, qint64 start, Memory *memory)
{
    for (int i = 0; i < words; ++i) {
        const Address address{first.device, first.index + static_cast<quint32>(i)};
        if (memory->isGenerated(address))
            continue;
        memory->generate(address, [=](qint64 elapsed) -> qint64 {
            if (!type)
                return square(0, 65535, 2 * second)(start + elapsed);
            return wordsOf(*type, movingValue(*type, words, start + elapsed))->value(i);
        });
    }
}

/// How many words "D200-10" and "D200-209" read.
int wordCount(const QString &address)
{
    static const QRegularExpression form(QStringLiteral("([0-9]+)-([0-9]+)$"));
    const QRegularExpressionMatch match = form.match(address);
    const int first = match.captured(1).toInt();
    const int last = match.captured(2).toInt();
    return last > first ? last - first + 1 : last;
}

void readItem(const QJsonObject &parameters, qint64 start, const QString &place, Memory *memory,
              QList<Problem> *errors)
{
    static const QRegularExpression separator(QStringLiteral("[.-]"));
    const QString addressPlace = member(place, QStringLiteral("memory_address"));
    const QString text = parameters.value(QStringLiteral("memory_address")).toString();
    const auto address = readAddress(text.section(separator, 0, 0), addressPlace, errors);
    const QString device = parameters.value(QStringLiteral("memory_type")).toString();
    const QString name = parameters.value(QStringLiteral("data_type")).toString();
    const bool isBit = device == u"Bit device" || device == u"0" || name.isEmpty() || name == u"BIT"
                       || name == u"0";
    const int number = name.toInt();
    const DataType *type = number > 0 ? dataType(number) : dataType(name.toUtf8());
    if (!isBit && !type)
        addError(member(place, QStringLiteral("data_type")),
                 QStringLiteral("'%1' is no type of words; use one of: BIT, %2")
                     .arg(name, QString::fromLatin1(dataTypeNames())),
                 errors);
    if (!address || (!isBit && !type))
        return;
    const int length = isBit ? 1 : type->words;
    const int words = length > 0 ? length : wordCount(text);
    const int most = std::min(mostWords, static_cast<int>(countToEnd(*address)));
    if (words < 1 || words > most)
        addError(addressPlace,
                 QStringLiteral("'%1' is for %2 words; 1 to %3 can be read from there on")
                     .arg(text)
                     .arg(words)
                     .arg(most),
                 errors);
    else
        moveWords(*address, isBit ? nullptr : type, words, start, memory);
}

quint16 readPort(const QJsonObject &parameters, const QString &place, QList<Problem> *errors)
{
    const QString text = parameters.value(portKey).toString(QStringLiteral("8501"));
    const std::optional<int> port = wholeNumber(text, 1, 65535);
    if (!port)
        addError(member(place, portKey),
                 QStringLiteral("'%1' is no port; write one from 1 to 65535, or --port").arg(text),
                 errors);
    return static_cast<quint16>(port.value_or(0));
}

std::shared_ptr<Controller> readDevice(const QJsonValue &value, const QString &place, bool hasPort,
                                       QList<Problem> *errors)
{
    const QJsonObject device = readObject(value, place, errors);
    const QString itemsPlace = member(place, QStringLiteral("items"));
    const QJsonArray items = readList(device.value(QStringLiteral("items")), itemsPlace, errors);
    const QJsonObject parameters = readOptional(device, parametersKey, place, errors);
    const QJsonObject defaults
        = readOptional(device, QStringLiteral("itemDefaults"), place, errors);
    auto controller = std::make_shared<Controller>();
    if (hasPort)
        controller->place.port = readPort(parameters, member(place, parametersKey), errors);
    for (int i = 0; i < items.size(); ++i) {
        const QString itemPlace = element(itemsPlace, i);
        const QJsonObject item = readObject(items.at(i), itemPlace, errors);
        QJsonObject all = defaults;
        const QJsonObject own = readOptional(item, parametersKey, itemPlace, errors);
        for (auto parameter = own.begin(); parameter != own.end(); ++parameter)
            all.insert(parameter.key(), parameter.value());
        readItem(all, i * second, member(itemPlace, parametersKey), &controller->memory, errors);
    }
    return controller;
}

} // namespace

Controllers readPlant(const QString &fileName, bool hasPorts, QJsonObject *plant,
                      QList<Problem> *problems)
{
    const auto json = readJsonBytes(fileName, QStringLiteral("plant file"), problems);
    const auto root = json ? parseJson(*json, problems) : std::nullopt;
    if (root)
        *plant = readObject(*root, {}, problems);
    if (!problems->isEmpty())
        return {};
    Controllers controllers;
    const QJsonArray devices = readList(plant->value(devicesKey), devicesKey, problems);
    for (int i = 0; i < devices.size(); ++i)
        controllers.append(readDevice(devices.at(i), element(devicesKey, i), hasPorts, problems));
    if (problems->isEmpty() && devices.isEmpty())
        addError(devicesKey, QStringLiteral("must have one device at least"), problems);
    return controllers;
}

QString writePlant(const QString &fileName, QJsonObject plant, const Controllers &controllers)
{
    QJsonArray devices = plant.value(devicesKey).toArray();
    for (int i = 0; i < devices.size(); ++i) {
        const QString endpoint = QString::fromLatin1(controllers.at(i)->endpoint);
        QJsonObject device = devices.at(i).toObject();
        QJsonObject parameters = device.value(parametersKey).toObject();
        parameters.insert(portKey, endpoint.section(u':', 1));
        device.insert(parametersKey, parameters);
        device.insert(QStringLiteral("ip"), endpoint.section(u':', 0, 0));
        devices.replace(i, device);
    }
    plant.insert(devicesKey, devices);
    return writeOutputFile(fileName, QJsonDocument(plant).toJson());
}
