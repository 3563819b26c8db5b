// A plant file, checked against the columns of the plug-in as `velhost check` does it.

#include "input.h"
#include "itemdata.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "require.h"

#include <common/json/problem.h>
#include <plant/assignment.h>
#include <plant/plantcheck.h>
#include <plant/records.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

const PluginRegistration &registration()
{
    static const PluginRegistration declared = [] {
        RecordingBackend host;
        Keyence plugin;
        plugin.init();
        return host.registrations.constFirst();
    }();
    return declared;
}

void checkProblems(const QList<Problem> &problems)
{
    const QString file = QStringLiteral("plant.json");
    for (const Problem &problem : problems) {
        require(!problem.text.isEmpty(), "a problem says something");
        require(problem.position.isEmpty() || problem.place.isEmpty(),
                "a problem has one kind of place");
    }
    const QList<QByteArray> lines = problemsJson(file, problems).toUtf8().split('\n');
    requireSame(lines.size(), problems.size() + 1, "each problem is one line of JSON");
    for (int i = 0; i < problems.size(); ++i)
        requireSame(QJsonDocument::fromJson(lines.at(i))
                        .object()
                        .value(QStringLiteral("message"))
                        .toString(),
                    problems.at(i).text, "a line of JSON has its problem's text");
}

// What the check lets pass, the plug-in serves: it finds an end point, and a device in each
// address.
void checkRecords(const Plant &plant)
{
    QList<Problem> errors;
    const QList<DeviceInstancePlugin> devices = deviceRecords(plant, registration(), &errors);
    require(errors.isEmpty(), "parameters that were checked resolve");
    requireSame(devices.size(), plant.devices.size(), "every device has its record");
    for (int i = 0; i < devices.size(); ++i) {
        const DeviceInstancePlugin &device = devices.at(i);
        requireSame(ethernetPLC::validate(device.ipAddress,
                                          device.parameters.value(QStringLiteral("port"))),
                    Errors::Ok, "the plug-in takes the end point of a device that was checked");
        requireSame(device.items.size(), plant.devices.at(i).items.size(),
                    "every item has its record");
        for (const ItemInstancePlugin &item : device.items) {
            const QString address = item.parameters.value(QStringLiteral("memory_address"));
            require(readItemAddress(address).form != ItemAddress::Form::None,
                    "the plug-in reads the address of an item that was checked");
        }
    }
}

// An assignment to an item is one to it, or to another whose name is longer or as long.
void checkAssignments(const Plant &plant)
{
    for (const PlantDevice &device : plant.devices) {
        for (const PlantItem &item : device.items) {
            const QString target = device.name + u'/' + item.name + u'=';
            QString error;
            const std::optional<Assignment> found = parseAssignment(target + u'5', plant, &error);
            require(found.has_value() == error.isEmpty(), "an assignment fits or says why not");
            if (!found)
                continue;
            const PlantDevice &other = plant.devices.at(found->device);
            const QString whole
                = other.name + u'/' + other.items.at(found->item).name + u'=' + found->value;
            requireSame(whole, QString(target + u'5'), "an assignment is taken apart as it is");
            require(whole.size() - found->value.size() >= target.size(),
                    "an assignment is to the longest name");
        }
    }
}

} // namespace

void check(Input input)
{
    QList<Problem> found;
    const std::optional<Plant> draft = parsePlantDraft(input.rest(), &found);
    checkProblems(found);
    if (!draft) {
        requireSame(found.size(), 1, "a text that is no JSON has one problem");
        const Problem &problem = found.constFirst();
        const bool isOfWholeFile = problem.text.startsWith(QLatin1String("is empty"))
                                   || problem.text.startsWith(QLatin1String("is UTF-16"));
        require(problem.position.isEmpty() == isOfWholeFile,
                "a text that is no JSON has its place, or is wrong as a whole");
        return;
    }
    const QList<Problem> all = plantProblems(*draft, registration(), found);
    checkProblems(all.mid(found.size()));
    require(all.size() >= found.size(), "a check keeps the problems of reading");
    if (found.isEmpty())
        checkAssignments(*draft);
    if (all.isEmpty())
        checkRecords(*draft);
}
