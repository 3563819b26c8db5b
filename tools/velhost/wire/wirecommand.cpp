#include "wire/wirecommand.h"

#include "trace/conversation.h"
#include "trace/wiretext.h"

#include <common/json/json.h>
#include <common/trace/trace.h>
#include <common/visibletext.h>

#include <map>
#include <utility>

namespace {

const QString onlySuspectOption = QStringLiteral("only-suspect");
const QString selfAddressedOption = QStringLiteral("self-addressed");

/// One connection of the trace.
struct Connection
{
    /// Counted through the whole trace.
    int number = 0;
    Conversation conversation;
    /// The line of the newest command, where it was not printed.
    QString command;
};

struct Output
{
    OutputFormat format = OutputFormat::Table;
    bool isSelfAddressed = false;
    bool onlySuspect = false;
    /// By process and number.
    std::map<std::pair<qint64, qint64>, Connection> connections = {};
    int connectionCount = 0;
    int answers = 0;
    int suspects = 0;
};

QString lineOf(const TraceEvent &event, int connection, const Verdict &verdict)
{
    return visible(event.time) + u" #" + QString::number(connection) + u' ' + visible(event.peer)
           + u' ' + wireText(event, verdict) + u'\n';
}

void show(const TraceEvent &event, Output *output)
{
    Connection &connection = output->connections[{event.process, event.connection}];
    // The numbers of a later run may be those of an earlier one.
    if (event.name == u"connect" || connection.number == 0)
        connection = {++output->connectionCount, {}, {}};
    const Verdict verdict = connection.conversation.take(event, output->isSelfAddressed);
    output->answers += event.name == u"received" ? 1 : 0;
    output->suspects += isSuspect(verdict) ? 1 : 0;
    const QString line = output->format == OutputFormat::Json
                             ? jsonLine("wire", wireMembers(event, verdict))
                             : lineOf(event, connection.number, verdict);
    if (!output->onlySuspect)
        print(stdout, line);
    else if (isSuspect(verdict))
        print(stdout, connection.command + line);
    connection.command = event.name == u"sent" ? line : QString();
}

ExitCode runWire(const Arguments &arguments)
{
    const QString fileName = arguments.operands.first();
    Output output{arguments.format, arguments.has(selfAddressedOption),
                  arguments.has(onlySuspectOption)};
    const QList<Problem> problems
        = readTrace(fileName, [&](const TraceEvent &event) { show(event, &output); });
    printError(problemLines(fileName, problems));
    if (hasError(problems))
        return WrongUsage;
    if (output.format != OutputFormat::Json)
        print(stdout,
              QStringLiteral("%1 answers, %2 suspect\n").arg(output.answers).arg(output.suspects));
    return output.suspects == 0 ? AllWell : ErrorFound;
}

} // namespace

Command wireCommand()
{
    return {
        QStringLiteral("wire"),
        Operands::File,
        QStringLiteral("show what libvel-trace.so has recorded of a host, and which answers "
                       "cannot be what was asked for"),
        {QStringLiteral("table"), QStringLiteral("json")},
        {{onlySuspectOption, {}, QStringLiteral("show such answers alone, with their commands")},
         {selfAddressedOption,
          {},
          QStringLiteral("every word of the controller holds its own number, as in a fresh "
                         "kvsim: another value is suspect, too")}},
        {{QStringLiteral("See what came back in the host"),
          QStringLiteral("velhost wire trace.jsonl --only-suspect")}},
        runWire};
}
