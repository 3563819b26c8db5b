#include "options.h"

#include <QCommandLineParser>

namespace kvsim {

namespace {

const char *const description
    = "Simulates a KV-series controller: answers Host Link commands over TCP.\n"
      "The first line of output is \"listening ADDRESS:PORT\".\n"
      "\n"
      "Exit code: 0 ended by SIGINT or SIGTERM, 1 cannot serve, 2 wrong command line.";

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

// The values of --bind and --port, once the parser knows all options.
Options servingOptions(const QString &bind, const QString &port)
{
    Options options;
    if (!options.address.setAddress(bind))
        return refused(QStringLiteral("'%1' is no IP address; --bind takes one such as 127.0.0.1, "
                                      "or 0.0.0.0 for all interfaces.")
                           .arg(bind));
    bool ok = false;
    options.port = port.toUShort(&ok);
    if (!ok)
        return refused(QStringLiteral("'%1' is no port; --port takes a number from 0 to 65535, "
                                      "0 picks a free port.")
                           .arg(port));
    return options;
}

} // namespace

Options parseOptions(const QStringList &arguments)
{
    const QCommandLineOption bind(QStringLiteral("bind"),
                                  QStringLiteral("Listen on this IP address (127.0.0.1)."),
                                  QStringLiteral("address"), QStringLiteral("127.0.0.1"));
    const QCommandLineOption port(QStringLiteral("port"),
                                  QStringLiteral("Listen on this TCP port; 0 picks one (8501)."),
                                  QStringLiteral("number"), QStringLiteral("8501"));
    const QCommandLineOption trace(
        QStringLiteral("trace"),
        QStringLiteral("Print each command and answer to standard error."));

    const QCommandLineOption fault(
        QStringLiteral("fault"),
        QStringLiteral("Make something go wrong, for example silent@DM100. Repeatable."),
        QStringLiteral("fault"));
    const QCommandLineOption value(
        QStringLiteral("set"),
        QStringLiteral("Start with this value, for example DM100=5. Repeatable."),
        QStringLiteral("address=value"));

    // Not addHelpOption(): it brings --help-all with it, which would need an answer too.
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(description));
    parser.addOptions({help, version, bind, port, trace, fault, value});

    if (!parser.parse(arguments))
        return refused(parser.errorText());
    if (parser.isSet(help))
        return answered(Options::Action::ShowHelp, parser.helpText());
    if (parser.isSet(version))
        return answered(Options::Action::ShowVersion, {});
    if (!parser.positionalArguments().isEmpty())
        return refused(QStringLiteral("Unexpected argument '%1'; kvsim takes options only.")
                           .arg(parser.positionalArguments().constFirst()));

    Options options = servingOptions(parser.value(bind), parser.value(port));
    options.trace = parser.isSet(trace);
    options.faults = parser.values(fault);
    options.values = parser.values(value);
    return options;
}

} // namespace kvsim
