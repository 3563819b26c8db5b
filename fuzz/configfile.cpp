// The simulator's configuration, and as the same file one of memory. The fields: the file, and the
// file "values" beside it.

#include "input.h"
#include "require.h"
#include "writefile.h"

#include <files/config.h>
#include <files/memoryfile.h>
#include <files/memoryobject.h>

#include <QTemporaryDir>

#include <algorithm>
#include <memory>
#include <vector>

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

// The controllers of a configuration, set up as the program does it.
struct Simulated
{
    explicit Simulated(const QList<Setup> &setups)
    {
        for (const Setup &setup : setups) {
            owned.push_back(std::make_unique<Controller>(setup.profile));
            Controller *controller = owned.back().get();
            for (const GeneratedValue &generated : setup.generators)
                controller->memory.generate(generated.address, generated.generator);
            named.append({setup.place.name, {}, controller});
        }
    }

    std::vector<std::unique_ptr<Controller>> owned;
    NamedControllers named;
};

void checkGenerators(const Setup &setup, Memory *memory)
{
    for (const qint64 elapsed : {0LL, 1LL, 999LL, 86400000LL, 1000000000001LL}) {
        memory->setClock([=] { return elapsed; });
        for (const GeneratedValue &generated : setup.generators)
            require(memory->value(generated.address)
                        <= maximumValue(generated.address.device->kind),
                    "a generated value fits its word or bit");
    }
}

void checkSetup(const Setup &setup, Controller *controller)
{
    checkGenerators(setup, &controller->memory);
    for (const StoredValue &stored : setup.memory) {
        controller->memory.setValue(stored.address, stored.value);
        requireSame(controller->memory.value(stored.address), stored.value,
                    "a value of the file is in the memory");
    }
    requireSame(controller->memory.stored().size(), setup.memory.size(),
                "a file has each address once");
    for (const QByteArray &fault : setup.faults)
        requireSame(controller->faults.add(fault), QString(), "a fault of the file is one");
}

void checkSavedMemory(const QList<Setup> &setups, const NamedControllers &controllers)
{
    requireSame(saveMemory(folder().memory, controllers), QString(), "memory can be saved");
    const Simulated again(setups);
    requireSame(loadMemory(folder().memory, again.named), QStringList(),
                "memory that was saved can be loaded");
    for (int i = 0; i < controllers.size(); ++i)
        requireSame(memoryText(again.named.at(i).controller->memory.stored(), {}),
                    memoryText(controllers.at(i).controller->memory.stored(), {}),
                    "memory that was saved is loaded as it was");
}

void checkSetups(const QList<Setup> &setups)
{
    require(!setups.isEmpty() && setups.size() <= maximumControllers,
            "a configuration without errors has controllers");
    QList<QByteArray> names;
    for (const Setup &setup : setups) {
        require(!setup.place.name.isEmpty() && !names.contains(setup.place.name),
                "a controller has a name of its own");
        names.append(setup.place.name);
        require(!setup.place.address.isNull(), "a controller has an address");
    }
    const Simulated simulated(setups);
    for (int i = 0; i < setups.size(); ++i)
        checkSetup(setups.at(i), simulated.named.at(i).controller);
    checkSavedMemory(setups, simulated.named);
}

void checkMemoryFile()
{
    const QString &file = folder().configuration;
    Controller controller;
    const QStringList errors = loadMemory(file, {{"a", {}, &controller}});
    checkErrors(errors, file);
    require(errors.isEmpty() || controller.memory.stored().isEmpty(),
            "a file with an error stores nothing");
}

} // namespace

void check(Input input)
{
    const QByteArray configuration = input.field();
    require(writeFile(folder().configuration, configuration), "the file can be written");
    require(writeFile(folder().values, input.rest()), "the values can be written");
    QStringList errors;
    const QString &file = folder().configuration;
    const QList<Setup> setups = readConfig(file, {"", QHostAddress::LocalHost, 0, {}}, &errors);
    checkErrors(errors, file);
    if (errors.isEmpty())
        checkSetups(setups);
    else
        require(setups.isEmpty(), "a configuration with an error has no controllers");
    checkMemoryFile();
}
