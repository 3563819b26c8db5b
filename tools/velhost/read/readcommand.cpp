#include "read/readcommand.h"

#include "cli/options.h"
#include "cli/plantarguments.h"
#include "cycle/cycle.h"
#include "cycle/cycleprinter.h"
#include "host/stopsignals.h"

#include <QElapsedTimer>

#include <cstdio>

namespace {

constexpr int maximumCycles = 1'000'000'000;

ExitCode readCycles(const Session &session, const Arguments &arguments)
{
    const int cycles = arguments.number(QStringLiteral("cycles"), 1);
    StopSignals stopSignals;
    CyclePrinter printer(arguments.format, printsOnlyChanges(arguments));
    QList<LogList> lists = readLists(session.devices);
    ExitCode result = AllWell;
    for (int cycle = 1; cycle <= cycles; ++cycle) {
        QElapsedTimer sinceStart;
        sinceStart.start();
        QList<DeviceReport> reports;
        for (int i = 0; i < lists.size(); ++i) {
            reports.append(readPlantDevice(session, i, &lists[i], cycle));
            if (reports.last().hasError())
                result = ErrorFound;
        }
        printer.printCycle(reports);
        // Nobody would see what the other cycles read.
        if (std::ferror(stdout) != 0)
            return result;
        const int pauseMs = cycle < cycles ? intervalMs(arguments) : 0;
        const int signal = stopSignals.wait(pauseMs - sinceStart.elapsed());
        if (signal != 0)
            return exitCodeOf(signal);
    }
    return result;
}

ExitCode runRead(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    return runSession(sessionSetup(arguments, *plant), [&arguments](const Session &session) {
        return readCycles(session, arguments);
    });
}

} // namespace

Command readCommand()
{
    return {QStringLiteral("read"),
            Operands::Plant,
            QStringLiteral("read every item of every device"),
            {QStringLiteral("table"), QStringLiteral("json"), QStringLiteral("csv")},
            QList<Option>{{QStringLiteral("cycles"), QStringLiteral("N"),
                           QStringLiteral("number of cycles (default 1)"),
                           Option::Range{1, maximumCycles}},
                          intervalOption(),
                          onlyChangesOption()}
                + traceOptions(),
            {{QStringLiteral("Watch a minute of changes"),
              QStringLiteral("velhost read plant.json --cycles 60 --only-changes")}},
            runRead};
}
