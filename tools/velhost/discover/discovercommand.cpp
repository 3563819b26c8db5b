#include "discover/discovercommand.h"

#include "cli/plantarguments.h"
#include "discover/discoveroutput.h"
#include "discover/searchsettings.h"
#include "host/progressline.h"
#include "host/stopsignals.h"

#include <common/outputfile.h>

#include <QFileInfo>

namespace {

constexpr int stepMs = 10;

/// Why the plant file must not be written; empty when it may be written.
QString plantFileError(const Arguments &arguments)
{
    if (arguments.plantFile.isEmpty())
        return {};
    if (QFileInfo::exists(arguments.plantFile) && !arguments.has(forceOption))
        return arguments.plantFile + u": is already there; add --force to replace it";
    return outputFileError(arguments.plantFile);
}

QString searchText(const SearchPlan &plan)
{
    return QStringLiteral("asking %1 addresses by UDP at %2 ports, then %3 by TCP at %4, for at "
                          "most %5 ms")
        .arg(QString::number(addressCount(plan.area.udp)), QString::number(plan.udpPorts.size()),
             QString::number(addressCount(plan.area.tcp)), QString::number(plan.tcpPorts.size()),
             QString::number(plan.timeoutMs));
}

QString progressText(const Search &search)
{
    return QStringLiteral("%1 of %2 asked by TCP, %3 controllers found")
        .arg(search.tcp().asked)
        .arg(search.tcp().count())
        .arg(search.findings().controllerCount());
}

/// Runs the search until its end or a signal. Returns the signal's number, or 0. On a terminal it
/// shows the progress in one line.
int runToEnd(Search *search)
{
    StopSignals stopSignals;
    ProgressLine line(0);
    int signal = 0;
    while (signal == 0 && search->step()) {
        if (line.isDue())
            line.show(progressText(*search));
        signal = stopSignals.wait(stepMs);
    }
    return signal;
}

bool writePlant(const Arguments &arguments, const SearchArea &area, const Findings &findings)
{
    QString error = plantFileError(arguments);
    if (error.isEmpty())
        error = writeOutputFile(arguments.plantFile, plantJson(area, findings));
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

/// Prints what is no controller and what is wrong with the result. Returns whether the search is
/// complete and found a controller.
bool reportProblems(const Search &search, bool wasStopped)
{
    printError(nonControllerTexts(search.findings()));
    if (wasStopped) {
        printError(QStringLiteral("the search was ended early; there may be more controllers"));
        return false;
    }
    printError(search.gaps());
    if (search.findings().controllerCount() > 0)
        return search.gaps().isEmpty();
    printError(QStringLiteral("no controller found; check that it has power and an address in this "
                              "network, that its Host Link port is among those asked, and that no "
                              "firewall is between"));
    return false;
}

ExitCode discover(const Session &session, const Arguments &arguments)
{
    QStringList errors;
    QStringList notes;
    const SearchPlan plan = searchPlan(arguments, session.registration.deviceColumns,
                                       machineNetworks(), &errors, &notes);
    const QString fileError = plantFileError(arguments);
    if (!fileError.isEmpty())
        errors.append(fileError);
    printError(errors);
    if (!errors.isEmpty())
        return WrongUsage;
    printError(notes);
    printError(searchText(plan));

    Search search(plan);
    const int signal = runToEnd(&search);
    const Findings &findings = search.findings();
    print(stdout, controllersText(arguments.format, findings));
    bool isWell = reportProblems(search, signal != 0);
    if (!arguments.plantFile.isEmpty() && findings.controllerCount() > 0)
        isWell = writePlant(arguments, plan.area, findings) && isWell;
    if (signal != 0)
        return exitCodeOf(signal);
    return isWell ? AllWell : ErrorFound;
}

ExitCode runDiscover(const Arguments &arguments)
{
    return runSession(sessionSetup(arguments, Plant()), [&arguments](const Session &session) {
        return discover(session, arguments);
    });
}

} // namespace

Command discoverCommand()
{
    return {QStringLiteral("discover"),
            Operands::None,
            QStringLiteral("show which controllers there are in the network"),
            {QStringLiteral("table"), QStringLiteral("json")},
            discoverOptions(),
            {{QStringLiteral("See which controllers there are in a network"),
              QStringLiteral("velhost discover --subnet 192.168.0.0/24")}},
            runDiscover};
}
