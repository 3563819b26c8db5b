#include "files/memoryfile.h"

#include "files/memoryobject.h"

#include <common/json/jsonfile.h>
#include <common/outputfile.h>

namespace {

const QString fileOfMemory = QStringLiteral("file of memory");
const QString controllersKey = QStringLiteral("controllers");
const QString nameKey = QStringLiteral("name");
const QString memoryKey = QStringLiteral("memory");

void readController(const QJsonValue &value, const QString &place, Controller *controller,
                    QList<Problem> *errors)
{
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return;
    checkKeys(object, {nameKey, memoryKey}, place, errors);
    const QString name = readText(object.value(nameKey), member(place, nameKey), errors);
    const QString expected = QString::fromUtf8(controller->place.name);
    if (object.value(nameKey).isString() && name != expected)
        addError(member(place, nameKey),
                 QStringLiteral("'%1' is not the controller in this place; expected '%2'")
                     .arg(name, expected),
                 errors);
    readMemory(object.value(memoryKey), member(place, memoryKey), &controller->memory, errors);
}

void readControllers(const QJsonValue &root, const Controllers &controllers, QList<Problem> *errors)
{
    const QJsonObject object = readObject(root, {}, errors);
    if (!root.isObject())
        return;
    checkKeys(object, {controllersKey}, {}, errors);
    const QJsonArray list = readList(object.value(controllersKey), controllersKey, errors);
    if (!object.value(controllersKey).isArray())
        return;
    if (list.size() != controllers.size())
        addError(controllersKey,
                 QStringLiteral("expected %1, as many as are simulated, found %2")
                     .arg(controllers.size())
                     .arg(list.size()),
                 errors);
    else
        for (int i = 0; i < list.size(); ++i)
            readController(list.at(i), element(controllersKey, i), controllers.at(i).get(), errors);
}

QByteArray controllerText(const Controller &controller)
{
    const QByteArray memory = memoryText(controller.memory.stored(), "    ");
    const QByteArray content = memory.isEmpty() ? QByteArray() : '\n' + memory + "\n  ";
    return R"(  {"name": ")" + controller.place.name + R"(", "memory": {)" + content + "}}";
}

} // namespace

QList<Problem> loadMemory(const QString &fileName, const Controllers &controllers)
{
    QList<Problem> problems;
    const std::optional<QByteArray> json = readJsonBytes(fileName, fileOfMemory, &problems);
    const std::optional<QJsonValue> root = json ? parseJson(*json, &problems) : std::nullopt;
    if (root)
        readControllers(*root, controllers, &problems);
    return problems;
}

QString saveMemory(const QString &fileName, const Controllers &controllers)
{
    QList<QByteArray> texts;
    for (const auto &controller : controllers)
        texts.append(controllerText(*controller));
    return writeOutputFile(fileName, "{\"controllers\": [\n" + texts.join(",\n") + "\n]}\n");
}
