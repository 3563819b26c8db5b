#include "check/checkcommand.h"

#include "cli/plantarguments.h"
#include "plant/plantcheck.h"

namespace {

ExitCode report(const Arguments &arguments, const QList<Problem> &problems)
{
    const bool isJson = arguments.format == OutputFormat::Json;
    if (isJson)
        print(stdout, problemsJson(arguments.plantFile, problems));
    else
        printError(problemLines(arguments.plantFile, problems));
    if (!problems.isEmpty())
        return WrongUsage;
    if (!isJson)
        print(stdout, arguments.plantFile + u": no problems\n");
    return AllWell;
}

ExitCode runCheck(const Arguments &arguments)
{
    QList<Problem> problems;
    const std::optional<Plant> draft = readPlantDraft(arguments.plantFile, &problems);
    if (!draft)
        return report(arguments, problems);
    // The plug-in gets the interfaces, which it offers in a column, but no device to connect to.
    Plant empty;
    empty.networkInterfaces = draft->networkInterfaces;
    return runSession(sessionSetup(arguments, empty), [&](const Session &session) {
        return report(arguments, plantProblems(*draft, session.registration, problems));
    });
}

} // namespace

Command checkCommand()
{
    return {QStringLiteral("check"),
            Operands::Plant,
            QStringLiteral("show everything that is wrong with the plant file"),
            {QStringLiteral("table"), QStringLiteral("json")},
            {},
            {},
            runCheck};
}
