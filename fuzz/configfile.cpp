// The simulator's configuration, and as the same file one of memory. The fields: the file, and the
// file "values" beside it.

#include "input.h"
#include "require.h"
#include "writefile.h"

#include <files/config.h>
#include <files/memoryfile.h>
#include <files/memoryobject.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace {

struct Folder
{
    QTemporaryDir folder;
    QString configuration = folder.filePath(QStringLiteral("configuration"));
    QString values = folder.filePath(QStringLiteral("values"));
    QString memory = folder.filePath(QStringLiteral("memory"));
};

const Folder &folder()
{
    static const Folder one;
    return one;
}

void checkErrors(const QStringList &errors, const QString &file)
{
    for (const QString &error : errors)
        require(error.startsWith(file + u':') && error.size() > file.size() + 2,
                "an error names its file and says something");
}

Controllers readControllers(QList<Problem> *problems)
{
    return readConfig(folder().configuration, {"", QHostAddress::LocalHost, 0, {}}, problems);
}

// Whatever the time is, what the generators of one controller make can be read.
void checkGenerators(const QJsonObject &generators, Memory *memory)
{
    for (const qint64 elapsed : {0LL, 1LL, 999LL, 86400000LL, 1000000000001LL}) {
        memory->setClock([=] { return elapsed; });
        for (auto entry = generators.begin(); entry != generators.end(); ++entry) {
            const std::optional<Address> address = parseAddress(entry.key().toUtf8());
            require(address && memory->isGenerated(*address), "a generator of the file is there");
            require(memory->value(*address) <= maximumValue(address->device->kind),
                    "a generated value fits its word or bit");
        }
    }
}

void checkSavedMemory(const Controllers &controllers)
{
    requireSame(saveMemory(folder().memory, controllers), QString(), "memory can be saved");
    QList<Problem> problems;
    const Controllers again = readControllers(&problems);
    for (const auto &controller : again) {
        const QVector<StoredValue> stored = controller->memory.stored();
        for (const StoredValue &cell : stored)
            controller->memory.setValue(cell.address, cell.value ^ 1U);
    }
    require(loadMemory(folder().memory, again).isEmpty(), "memory that was saved can be loaded");
    for (int i = 0; i < controllers.size(); ++i)
        requireSame(memoryText(again.at(i)->memory.stored(), {}),
                    memoryText(controllers.at(i)->memory.stored(), {}),
                    "memory that was saved is loaded as it was");
}

void checkControllers(const Controllers &controllers, const QJsonObject &configuration)
{
    require(!controllers.isEmpty() && controllers.size() <= maximumControllers,
            "a configuration without errors has controllers");
    const QJsonArray objects = configuration.value(QStringLiteral("controllers")).toArray();
    QList<QByteArray> names;
    for (int i = 0; i < controllers.size(); ++i) {
        const Place &place = controllers.at(i)->place;
        require(!place.name.isEmpty() && !names.contains(place.name),
                "a controller has a name of its own");
        names.append(place.name);
        require(!place.address.isNull(), "a controller has an address");
        checkGenerators(objects.at(i).toObject().value(QStringLiteral("generators")).toObject(),
                        &controllers.at(i)->memory);
    }
    checkSavedMemory(controllers);
}

} // namespace

void check(Input input)
{
    const QByteArray configuration = input.field();
    require(writeFile(folder().configuration, configuration), "the file can be written");
    require(writeFile(folder().values, input.rest()), "the values can be written");
    const QString &file = folder().configuration;
    QList<Problem> problems;
    const Controllers controllers = readControllers(&problems);
    checkErrors(problemLines(file, problems), file);
    if (problems.isEmpty())
        checkControllers(controllers, QJsonDocument::fromJson(configuration).object());
    const auto one = std::make_shared<Controller>();
    one->place.name = "a";
    checkErrors(problemLines(file, loadMemory(file, {one})), file);
}
