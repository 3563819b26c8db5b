#include "cli/plantarguments.h"

#include "cli/options.h"
#include "plant/addressitems.h"

#include <common/json/problem.h>

namespace {

/// Removes the parts with other names than the wanted ones. Returns the names that there were.
template<typename Part>
QStringList keep(const QStringList &wanted, QList<Part> *parts)
{
    QStringList known;
    QList<Part> kept;
    for (const Part &part : std::as_const(*parts)) {
        known.append(part.name);
        if (wanted.isEmpty() || wanted.contains(part.name))
            kept.append(part);
    }
    *parts = kept;
    return known;
}

void checkNames(const QStringList &wanted, QStringList known, const QString &option,
                QList<Problem> *problems)
{
    known.removeDuplicates();
    for (const QString &name : wanted) {
        if (!known.contains(name))
            addError({},
                     QStringLiteral("%1: there is no \"%2\"; there is: %3")
                         .arg(option, name, known.join(QStringLiteral(", "))),
                     problems);
    }
}

/// Leaves of the plant what is named, and no device without an item that is; an empty list leaves
/// all. Adds a problem for each name that is not there.
void select(const QStringList &devices, const QStringList &items, Plant *plant,
            QList<Problem> *problems)
{
    checkNames(devices, keep(devices, &plant->devices), QStringLiteral("--device"), problems);
    QStringList known;
    QList<PlantDevice> left;
    for (PlantDevice &device : plant->devices) {
        known += keep(items, &device.items);
        if (items.isEmpty() || !device.items.isEmpty())
            left.append(device);
    }
    plant->devices = left;
    checkNames(items, known, QStringLiteral("--item"), problems);
}

} // namespace

std::optional<Plant> readDraft(const Arguments &arguments, QList<Problem> *problems)
{
    if (arguments.has(ipOption)) {
        QStringList addresses = arguments.operands;
        for (QString &text : addresses)
            text = text.section(u'=', 0, 0);
        return plantOfAddresses(arguments.value(ipOption), addresses, problems);
    }
    std::optional<Plant> plant = readPlantDraft(arguments.plantFile, problems);
    if (plant)
        select(arguments.options.value(deviceOption), arguments.options.value(itemOption), &*plant,
               problems);
    return plant;
}

std::optional<Plant> readPlant(const Arguments &arguments)
{
    if (arguments.plantFile.isEmpty())
        return Plant();
    QList<Problem> problems;
    std::optional<Plant> plant = readDraft(arguments, &problems);
    printError(problemLines(arguments.plantFile, problems));
    return problems.isEmpty() ? std::move(plant) : std::nullopt;
}

std::optional<QList<Assignment>> readAssignments(const Arguments &arguments,
                                                 const QStringList &texts, const Plant &plant)
{
    QList<Assignment> assignments;
    QStringList errors;
    for (const QString &text : texts) {
        const QString address = text.section(u'=', 0, 0);
        QString target = text;
        if (arguments.has(ipOption))
            target.replace(0, address.size(), arguments.plantFile + u'/' + itemName(address));
        QString error;
        if (const auto assignment = parseAssignment(target, plant, &error))
            assignments.append(*assignment);
        else
            errors.append(error);
    }
    printError(errors);
    return errors.isEmpty() ? std::optional(assignments) : std::nullopt;
}

SessionSetup sessionSetup(const Arguments &arguments, const Plant &plant)
{
    SessionSetup setup{arguments.value(QStringLiteral("plugin")), arguments.format, plant,
                       arguments.plantFile};
    setup.wire = {arguments.has(traceOption) || arguments.has(traceFileOption),
                  arguments.has(traceOption), arguments.value(traceFileOption)};
    return setup;
}
