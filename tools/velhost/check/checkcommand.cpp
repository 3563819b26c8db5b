#include "check/checkcommand.h"

#include "check/dryrun.h"
#include "cli/plantarguments.h"
#include "plan/recorder.h"
#include "plant/plantcheck.h"

#include <common/json/problem.h>

namespace {

QString summary(const QList<Problem> &problems)
{
    if (problems.isEmpty())
        return QStringLiteral("no problems");
    return problems.size() == 1 ? QStringLiteral("no errors, 1 warning")
                                : QStringLiteral("no errors, %1 warnings").arg(problems.size());
}

void printProblems(const Arguments &arguments, const QList<Problem> &problems)
{
    if (arguments.format == OutputFormat::Json)
        print(stdout, problemsJson(arguments.plantFile, problems));
    else
        printError(problemLines(arguments.plantFile, problems));
}

ExitCode report(const Arguments &arguments, const QList<Problem> &problems)
{
    printProblems(arguments, problems);
    if (hasError(problems))
        return WrongUsage;
    if (arguments.format != OutputFormat::Json)
        print(stdout, arguments.plantFile + u": " + summary(problems) + u'\n');
    return AllWell;
}

ExitCode runCheck(const Arguments &arguments)
{
    QList<Problem> problems;
    const std::optional<Plant> draft = readDraft(arguments, &problems);
    if (!draft)
        return report(arguments, problems);
    Recorder recorder;
    // No device of the plant is contacted: the plug-in gets the recorder in place of each.
    SessionSetup setup = sessionSetup(arguments, devicesOnly(*draft));
    setup.redirection
        = [&](const DeviceInstancePlugin &device) { return redirected(device, recorder.port()); };
    bool isChecked = false;
    const ExitCode result = runSession(setup, [&](const Session &session) {
        isChecked = true;
        problems = plantProblems(*draft, session.registration, problems);
        if (recorder.port() == 0)
            addWarning({},
                       QStringLiteral("items were not checked: velhost cannot listen on 127.0.0.1"),
                       &problems);
        else
            problems += dryRunProblems(session, *draft, &recorder, problems);
        return report(arguments, problems);
    });
    if (!isChecked) {
        addWarning({}, QStringLiteral("items were not checked: no plug-in"), &problems);
        printProblems(arguments, problems);
    }
    return result;
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
