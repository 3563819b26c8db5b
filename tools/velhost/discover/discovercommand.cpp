#include "discover/discovercommand.h"

#include "discover/discoveroutput.h"
#include "discover/searchsettings.h"
#include "host/stopsignals.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QSaveFile>

#include <unistd.h>

namespace {

constexpr int redrawMs = 200;
/// Back to the line's begin, and clear the rest of it.
const QString lineStart = QStringLiteral("\r");
const QString clearLine = QStringLiteral("\x1b[K");

/// Why the plant file must not be written; empty when it may be.
QString plantFileError(const CommandLine &commandLine)
{
    const QFileInfo file(commandLine.plantFile);
    if (commandLine.plantFile.isEmpty() || commandLine.search.isForced || !file.exists())
        return {};
    return commandLine.plantFile + u": is already there; add --force to replace it";
}

/// Runs the search until its end or a signal, whose number is then in `signal`. The state is shown
/// in one line, written again and again, when someone watches.
SearchResult searchAndShow(const SearchPlan &plan, int *signal)
{
    StopSignals stopSignals;
    const bool isWatched = ::isatty(STDERR_FILENO) == 1;
    QDeadlineTimer redraw(0);
    const SearchResult result = runSearch(plan, [&](const SearchProgress &progress) {
        if (isWatched && redraw.hasExpired()) {
            print(stderr, lineStart + progressText(progress) + clearLine);
            redraw.setRemainingTime(redrawMs);
        }
        *signal = stopSignals.wait(0);
        return *signal == 0;
    });
    if (isWatched)
        print(stderr, lineStart + clearLine);
    return result;
}

bool writePlant(const CommandLine &commandLine, const SearchArea &area, const Findings &findings)
{
    QString error = plantFileError(commandLine);
    if (error.isEmpty()) {
        const QByteArray json = plantJson(area, findings);
        QSaveFile file(commandLine.plantFile);
        if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size() || !file.commit())
            error = commandLine.plantFile + u": cannot be written: " + file.errorString();
    }
    if (!error.isEmpty()) {
        printError(error);
        return false;
    }
    for (const Finding &finding : findings.all()) {
        if (finding.isController() && !finding.byTcp)
            printError(QStringLiteral("%1 answered by UDP alone; the plug-in reads over TCP")
                           .arg(finding.place()));
    }
    return true;
}

/// Tells what there is beside the controllers. Whether the search found one and ran to its end.
bool tellRest(const SearchResult &result)
{
    printError(strangerTexts(result.findings));
    if (result.wasStopped) {
        printError(QStringLiteral("the search was ended early; there may be more controllers"));
        return false;
    }
    printError(result.gaps);
    if (result.findings.controllerCount() > 0)
        return result.gaps.isEmpty();
    printError(QStringLiteral("no controller found; check that it has power and an address in this "
                              "network, that its Host Link port is among those asked, and that no "
                              "firewall is between"));
    return false;
}

} // namespace

ExitCode runDiscover(const Job &job, const PluginRegistration &registration)
{
    const CommandLine &commandLine = job.commandLine;
    QStringList errors;
    QStringList notes;
    const std::optional<SearchPlan> plan = searchPlan(
        commandLine.search, registration.deviceColumns, machineNetworks(), &errors, &notes);
    const QString fileError = plantFileError(commandLine);
    if (!fileError.isEmpty())
        errors.append(fileError);
    printError(errors);
    if (!errors.isEmpty())
        return WrongUsage;
    printError(notes);
    printError(searchText(*plan));

    int signal = 0;
    const SearchResult result = searchAndShow(*plan, &signal);
    print(stdout, controllersText(commandLine.format, result.findings));
    bool isWell = tellRest(result);
    if (!commandLine.plantFile.isEmpty() && result.findings.controllerCount() > 0)
        isWell = writePlant(commandLine, plan->area, result.findings) && isWell;
    if (signal != 0)
        return signal == SIGINT ? Interrupted : Terminated;
    return isWell ? AllWell : ErrorFound;
}
