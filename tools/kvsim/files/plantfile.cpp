#include "files/plantfile.h"

#include "files/memoryobject.h"
#include "memory/datatype.h"

#include <common/json/jsonfile.h>
#include <common/outputfile.h>
#include <common/wholenumber.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

namespace {

constexpr qint64 second = 1000;
constexpr int mostWords = 1000; // of one command
const QString devicesKey = QStringLiteral("devices");
const QString parametersKey = QStringLiteral("parameters");
const QString portKey = QStringLiteral("port");

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

void readItem(const JsonNode &parameters, qint64 start, Memory *memory)
{
    static const QRegularExpression separator(QStringLiteral("[.-]"));
    const JsonNode addressNode = parameters["memory_address"];
    const QString text = addressNode.value.toString();
    const auto address = readAddress(text.section(separator, 0, 0), addressNode);
    const QString device = parameters["memory_type"].value.toString();
    const JsonNode typeNode = parameters["data_type"];
    const QString name = typeNode.value.toString();
    const bool isBit = device == u"Bit device" || device == u"0" || name.isEmpty() || name == u"BIT"
                       || name == u"0";
    const int number = name.toInt();
    const DataType *type = number > 0 ? dataType(number) : dataType(name.toUtf8());
    if (!isBit && !type)
        typeNode.fail(QStringLiteral("'%1' is no type of words; use one of: BIT, %2")
                          .arg(name, QString::fromLatin1(dataTypeNames())));
    if (!address || (!isBit && !type))
        return;
    const int length = isBit ? 1 : type->words;
    const int words = length > 0 ? length : wordCount(text);
    const int most = std::min(mostWords, static_cast<int>(countToEnd(*address)));
    if (words < 1 || words > most)
        addressNode.fail(QStringLiteral("'%1' is for %2 words; 1 to %3 can be read from there on")
                             .arg(text)
                             .arg(words)
                             .arg(most));
    else
        moveWords(*address, isBit ? nullptr : type, words, start, memory);
}

quint16 readPort(const JsonNode &node)
{
    const QString text = node.value.toString(QStringLiteral("8501"));
    const std::optional<int> port = wholeNumber(text, 1, 65535);
    if (!port)
        node.fail(
            QStringLiteral("'%1' is no port; write one from 1 to 65535, or --port").arg(text));
    return static_cast<quint16>(port.value_or(0));
}

/// A member that may be missing, but is an object.
QJsonObject readOptional(const JsonNode &node)
{
    return node.exists() && node.expectObject() ? node.value.toObject() : QJsonObject();
}

std::shared_ptr<Controller> readDevice(const JsonNode &device, bool hasPort)
{
    auto controller = std::make_shared<Controller>();
    if (!device.expectObject())
        return controller;
    const QList<JsonNode> items = device["items"].elements();
    const JsonNode parameters = device[parametersKey];
    if (hasPort && (!parameters.exists() || parameters.expectObject()))
        controller->place.port = readPort(parameters[portKey]);
    const QJsonObject defaults = readOptional(device["itemDefaults"]);
    for (int i = 0; i < items.size(); ++i) {
        if (!items.at(i).expectObject())
            continue;
        JsonNode all = items.at(i)[parametersKey];
        const QJsonObject own = readOptional(all);
        QJsonObject merged = defaults;
        for (auto parameter = own.begin(); parameter != own.end(); ++parameter)
            merged.insert(parameter.key(), parameter.value());
        all.value = merged;
        readItem(all, i * second, &controller->memory);
    }
    return controller;
}

} // namespace

Controllers readPlant(const QString &fileName, bool hasPorts, QJsonObject *plant,
                      QList<Problem> *problems)
{
    const JsonNode root = readJsonFile(fileName, QStringLiteral("plant file"), problems);
    if (!root.exists() || !root.expectObject() || !problems->isEmpty())
        return {};
    *plant = root.value.toObject();
    const JsonNode node = root[devicesKey];
    const QList<JsonNode> devices = node.elements();
    Controllers controllers;
    for (const JsonNode &device : devices)
        controllers.append(readDevice(device, hasPorts));
    if (problems->isEmpty() && devices.isEmpty())
        node.fail(QStringLiteral("must have one device at least"));
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
