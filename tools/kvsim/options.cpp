#include "options.h"

#include <QCommandLineParser>

namespace kvsim {

namespace {

const char *const description
    = "Simulates a KV-series controller: answers Host Link commands over TCP.\n"
      "The first line of output is \"listening ADDRESS:PORT\".\n"
      "\n"
      "\"kvsim ctl\" changes a simulator while it runs, see kvsim ctl --help.\n"
      "\n"
      "Exit code: 0 ended by SIGINT, SIGTERM or quit, 1 cannot serve, 2 wrong command line.";

Options answered(Options::Action action, const QString &text)
{
    Options options;
    options.action = action;
    options.text = text;
    return options;
}

Options refused(const QString &text)
{
    return answered(Options::Action::RefuseUsage, text);
}

Options refusedPort(const QString &option, const QString &port)
{
    return refused(QStringLiteral("'%1' is no port; %2 takes a number from 0 to 65535, 0 picks a "
                                  "free port.")
                       .arg(port, option));
}

std::optional<quint16> parsePort(const QString &text)
{
    bool ok = false;
    const quint16 port = text.toUShort(&ok);
    return ok ? std::make_optional(port) : std::nullopt;
}

// The places to listen.
Options servingOptions(const QCommandLineParser &parser)
{
    Options options;
    const QString bind = parser.value(QStringLiteral("bind"));
    if (!options.address.setAddress(bind))
        return refused(QStringLiteral("'%1' is no IP address; --bind takes one such as 127.0.0.1, "
                                      "or 0.0.0.0 for all interfaces.")
                           .arg(bind));
    const QString port = parser.value(QStringLiteral("port"));
    const std::optional<quint16> number = parsePort(port);
    if (!number)
        return refusedPort(QStringLiteral("--port"), port);
    options.port = *number;

    const QString control = parser.value(QStringLiteral("control"));
    options.control = parsePort(control);
    if (parser.isSet(QStringLiteral("control")) && !options.control)
        return refusedPort(QStringLiteral("--control"), control);
    return options;
}

void addOptions(QCommandLineParser *parser)
{
    parser->setApplicationDescription(QLatin1String(description));
    parser->addOptions({
        // Not addHelpOption(): it brings --help-all with it, which would need an answer too.
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print this help.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Print the version.")},
        {QStringLiteral("bind"), QStringLiteral("Listen on this IP address (127.0.0.1)."),
         QStringLiteral("address"), QStringLiteral("127.0.0.1")},
        {QStringLiteral("port"), QStringLiteral("Listen on this TCP port; 0 picks one (8501)."),
         QStringLiteral("number"), QStringLiteral("8501")},
        {QStringLiteral("trace"),
         QStringLiteral("Print each command and answer to standard error.")},
        {QStringLiteral("control"),
         QStringLiteral("Take control commands on this TCP port of 127.0.0.1; 0 picks one."),
         QStringLiteral("number")},
        {QStringLiteral("fault"),
         QStringLiteral("Make something go wrong, for example silent@DM100. Repeatable."),
         QStringLiteral("fault")},
        {QStringLiteral("set"),
         QStringLiteral("Start with this value, for example DM100=5. Repeatable."),
         QStringLiteral("address=value")},
    });
}

} // namespace

Options parseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    addOptions(&parser);
    if (!parser.parse(arguments))
        return refused(parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        return answered(Options::Action::ShowHelp, parser.helpText());
    if (parser.isSet(QStringLiteral("version")))
        return answered(Options::Action::ShowVersion, {});
    if (!parser.positionalArguments().isEmpty())
        return refused(QStringLiteral("Unexpected argument '%1'; kvsim takes options only.")
                           .arg(parser.positionalArguments().constFirst()));

    Options options = servingOptions(parser);
    options.trace = parser.isSet(QStringLiteral("trace"));
    options.faults = parser.values(QStringLiteral("fault"));
    options.values = parser.values(QStringLiteral("set"));
    return options;
}

} // namespace kvsim
