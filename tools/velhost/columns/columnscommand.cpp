#include "columns/columnscommand.h"

#include "cli/plantarguments.h"
#include "columns/columnstext.h"

namespace {

ExitCode runColumns(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    return runSession(sessionSetup(arguments, *plant), [&arguments](const Session &session) {
        print(stdout, columnsText(arguments.format, session.loaded, session.registration));
        return AllWell;
    });
}

} // namespace

Command columnsCommand()
{
    return {QStringLiteral("columns"),
            Operands::None,
            QStringLiteral("show what the plug-in declares"),
            {QStringLiteral("table"), QStringLiteral("json")},
            {},
            {{QStringLiteral("Show what can be configured"), QStringLiteral("velhost columns")}},
            runColumns};
}
