#include "cli/plantarguments.h"

std::optional<Plant> readPlant(const Arguments &arguments)
{
    if (arguments.plantFile.isEmpty())
        return Plant();
    QStringList errors;
    const std::optional<Plant> plant = readPlantFile(arguments.plantFile, &errors);
    printError(errors);
    return plant;
}

std::optional<QList<Assignment>> readAssignments(const QStringList &texts, const Plant &plant)
{
    QList<Assignment> assignments;
    QStringList errors;
    for (const QString &text : texts) {
        QString error;
        if (const auto assignment = parseAssignment(text, plant, &error))
            assignments.append(*assignment);
        else
            errors.append(error);
    }
    printError(errors);
    return errors.isEmpty() ? std::optional(assignments) : std::nullopt;
}

SessionSetup sessionSetup(const Arguments &arguments, const Plant &plant)
{
    return {arguments.pluginFile, arguments.format, plant, arguments.plantFile};
}
