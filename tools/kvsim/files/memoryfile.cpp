#include "files/memoryfile.h"

#include "files/memoryobject.h"

#include <common/json/jsonfile.h>
#include <common/outputfile.h>

namespace {

const QString fileOfMemory = QStringLiteral("file of memory");
const QString controllersKey = QStringLiteral("controllers");
const QString nameKey = QStringLiteral("name");
const QString memoryKey = QStringLiteral("memory");

QVector<StoredValue> readController(const QJsonValue &value, const NamedController &controller,
                                    const QString &place, QList<Problem> *errors)
{
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return {};
    checkKeys(object, {nameKey, memoryKey}, place, errors);
    const QString name = readText(object.value(nameKey), member(place, nameKey), errors);
    const QString expected = QString::fromUtf8(controller.name);
    if (object.value(nameKey).isString() && name != expected)
        addError(member(place, nameKey),
                 QStringLiteral("'%1' is not the controller in this place; expected '%2'")
                     .arg(name, expected),
                 errors);
    return readMemory(object.value(memoryKey), member(place, memoryKey),
                      controller.controller->memory, errors);
}

QList<QVector<StoredValue>>
readControllers(const QJsonValue &root, const NamedControllers &controllers, QList<Problem> *errors)
{
    const QJsonObject object = readObject(root, {}, errors);
    if (!root.isObject())
        return {};
    checkKeys(object, {controllersKey}, {}, errors);
    const QJsonArray list = readList(object.value(controllersKey), controllersKey, errors);
    if (object.value(controllersKey).isArray() && list.size() != controllers.size()) {
        addError(controllersKey,
                 QStringLiteral("expected %1, as many as are simulated, found %2")
                     .arg(controllers.size())
                     .arg(list.size()),
                 errors);
        return {};
    }
    QList<QVector<StoredValue>> memories;
    for (int i = 0; i < list.size(); ++i)
        memories.append(
            readController(list.at(i), controllers.at(i), element(controllersKey, i), errors));
    return memories;
}

QByteArray controllerText(const NamedController &named)
{
    const QByteArray memory = memoryText(named.controller->memory.stored(), "    ");
    const QByteArray content = memory.isEmpty() ? QByteArray() : '\n' + memory + "\n  ";
    return R"(  {"name": ")" + named.name + R"(", "memory": {)" + content + "}}";
}

} // namespace

QStringList loadMemory(const QString &fileName, const NamedControllers &controllers)
{
    QList<Problem> problems;
    const std::optional<QByteArray> json = readJsonBytes(fileName, fileOfMemory, &problems);
    const std::optional<QJsonValue> root = json ? parseJson(*json, &problems) : std::nullopt;
    QList<QVector<StoredValue>> memories;
    if (root)
        memories = readControllers(*root, controllers, &problems);
    if (!problems.isEmpty())
        return problemLines(fileName, problems);
    for (int i = 0; i < memories.size(); ++i) {
        for (const StoredValue &stored : memories.at(i))
            controllers.at(i).controller->memory.setValue(stored.address, stored.value);
    }
    return {};
}

QString saveMemory(const QString &fileName, const NamedControllers &controllers)
{
    QList<QByteArray> texts;
    for (const NamedController &named : controllers)
        texts.append(controllerText(named));
    return writeOutputFile(fileName, "{\"controllers\": [\n" + texts.join(",\n") + "\n]}\n");
}
