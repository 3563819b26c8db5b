#include "program/commands.h"

#include "check/checkcommand.h"
#include "columns/columnscommand.h"
#include "discover/discovercommand.h"
#include "explain/explaincommand.h"
#include "plan/plancommand.h"
#include "read/readcommand.h"
#include "watch/watchcommand.h"
#include "wire/wirecommand.h"
#include "write/writecommand.h"

QList<Command> allCommands()
{
    return {columnsCommand(), readCommand(),     watchCommand(),   writeCommand(), planCommand(),
            checkCommand(),   discoverCommand(), explainCommand(), wireCommand()};
}
