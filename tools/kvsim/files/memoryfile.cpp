#include "files/memoryfile.h"

#include "files/memoryobject.h"

#include <common/json/jsonfile.h>
#include <common/outputfile.h>

namespace {

void readController(const JsonNode &node, Controller *controller)
{
    if (!node.expectObject())
        return;
    node.checkKeys("name memory");
    const QString name = node["name"].text();
    const QString expected = QString::fromUtf8(controller->place.name);
    if (node["name"].value.isString() && name != expected)
        node["name"].fail(QStringLiteral("'%1' is not the controller in this place; expected '%2'")
                              .arg(name, expected));
    readMemory(node["memory"], &controller->memory);
}

void readControllers(const JsonNode &root, const Controllers &controllers)
{
    if (!root.expectObject())
        return;
    root.checkKeys("controllers");
    const JsonNode node = root["controllers"];
    const QList<JsonNode> list = node.elements();
    if (node.value.isArray() && list.size() != controllers.size())
        node.fail(QStringLiteral("expected %1, as many as are simulated, found %2")
                      .arg(controllers.size())
                      .arg(list.size()));
    else
        for (int i = 0; i < list.size(); ++i)
            readController(list.at(i), controllers.at(i).get());
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
    const JsonNode root = readJsonFile(fileName, QStringLiteral("file of memory"), &problems);
    if (root.exists())
        readControllers(root, controllers);
    return problems;
}

QString saveMemory(const QString &fileName, const Controllers &controllers)
{
    QList<QByteArray> texts;
    for (const auto &controller : controllers)
        texts.append(controllerText(*controller));
    return writeOutputFile(fileName, "{\"controllers\": [\n" + texts.join(",\n") + "\n]}\n");
}
