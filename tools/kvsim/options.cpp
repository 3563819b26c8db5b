#include "options.h"

#include <QCommandLineParser>

namespace kvsim {

namespace {

const char *const description
    = "Simulates a KV-series controller: answers Host Link commands over TCP.\n"
      "The first line of output is \"listening ADDRESS:PORT\".\n"
      "\n"
      "Exit code: 0 ended by SIGINT or SIGTERM, 1 cannot serve, 2 wrong command line.";

Options refused(const QString &text)
{
    Options options;
    options.action = Options::Action::RefuseUsage;
    options.text = text;
    return options;
}

// The values of --bind and --port, once the parser knows all options.
Options servingOptions(const QString &bind, const QString &port, bool trace)
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
    options.trace = trace;
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

    // Not addHelpOption(): it brings --help-all with it, which would need an answer too.
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(description));
    parser.addOptions({help, version, bind, port, trace});

    if (!parser.parse(arguments))
        return refused(parser.errorText());
    if (parser.isSet(help))
        return {Options::Action::ShowHelp, {}, 0, false, parser.helpText()};
    if (parser.isSet(version))
        return {Options::Action::ShowVersion, {}, 0, false, {}};
    if (!parser.positionalArguments().isEmpty())
        return refused(QStringLiteral("Unexpected argument '%1'; kvsim takes options only.")
                           .arg(parser.positionalArguments().constFirst()));
    return servingOptions(parser.value(bind), parser.value(port), parser.isSet(trace));
}

} // namespace kvsim
