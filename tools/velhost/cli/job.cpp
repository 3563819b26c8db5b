#include "cli/job.h"

#include "check/checkcommand.h"
#include "discover/search/searcharea.h"
#include <common/console.h>
#include <common/ipv4address.h>

namespace {

/// Why the assignments must be confirmed first; empty when all of them stay on this machine.
QString unconfirmedTargets(const Plant &plant, const QList<Assignment> &assignments)
{
    QStringList targets;
    for (const Assignment &assignment : assignments) {
        const PlantDevice &device = plant.devices.at(assignment.device);
        if (!isLoopback(device.ip))
            targets.append(QStringLiteral("\"%1\" (%2)").arg(device.name, device.ip));
    }
    targets.removeDuplicates();
    if (targets.isEmpty())
        return {};
    return QStringLiteral("write would change devices that are not on this machine: %1; add --yes "
                          "to write to them")
        .arg(targets.join(QStringLiteral(", ")));
}

/// The plug-in gets the interfaces, from which it makes a selection, but no device to connect to.
std::optional<Job> prepareCheck(const CommandLine &commandLine)
{
    Job job{commandLine, {}, {}, {}, {}};
    const std::optional<Plant> draft = readPlantDraft(commandLine.plantFile, &job.problems);
    if (!draft) {
        printProblems(commandLine, job.problems);
        return {};
    }
    job.draft = *draft;
    job.plant.networkInterfaces = draft->networkInterfaces;
    return job;
}

/// The plug-in gets the machine's interfaces and no device.
Job prepareDiscover(const CommandLine &commandLine)
{
    Job job{commandLine, {}, {}, {}, {}};
    const QList<InterfaceNetwork> networks = machineNetworks();
    for (const InterfaceNetwork &network : networks)
        job.plant.networkInterfaces.append(network.interface);
    job.plant.networkInterfaces.removeDuplicates();
    return job;
}

} // namespace

std::optional<Job> prepareJob(const CommandLine &commandLine)
{
    if (commandLine.command == Command::Check)
        return prepareCheck(commandLine);
    if (commandLine.command == Command::Discover)
        return prepareDiscover(commandLine);
    Job job{commandLine, {}, {}, {}, {}};
    QStringList errors;
    if (!commandLine.plantFile.isEmpty()) {
        const std::optional<Plant> plant = readPlantFile(commandLine.plantFile, &errors);
        if (!plant) {
            printError(errors);
            return {};
        }
        job.plant = *plant;
    }
    for (const QString &argument : commandLine.assignments) {
        QString error;
        if (const auto assignment = parseAssignment(argument, job.plant, &error))
            job.assignments.append(*assignment);
        else
            errors.append(error);
    }
    if (errors.isEmpty() && commandLine.command == Command::Write && !commandLine.isConfirmed) {
        const QString reason = unconfirmedTargets(job.plant, job.assignments);
        if (!reason.isEmpty())
            errors.append(reason);
    }
    printError(errors);
    return errors.isEmpty() ? std::optional(job) : std::nullopt;
}
