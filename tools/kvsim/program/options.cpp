#include "program/options.h"

#include "program/places.h"

#include <common/wholenumber.h>

#include <QCommandLineParser>
#include <QFile>

namespace {

const QString controllersOption = QStringLiteral("controllers");
const QString configOption = QStringLiteral("config");
const QString plantOption = QStringLiteral("plant");
const QString writePlantOption = QStringLiteral("write-plant");
const QString replayOption = QStringLiteral("replay");
const QString replayDelaysOption = QStringLiteral("replay-delays");
const QString faultOption = QStringLiteral("fault");
const QString setOption = QStringLiteral("set");
const QString loadOption = QStringLiteral("load");
const QString dumpOption = QStringLiteral("dump");
const QString stateOption = QStringLiteral("state");
const QString consecutiveOption = QStringLiteral("consecutive");

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

QString portError(const QString &option, const QString &port)
{
    return QStringLiteral(
               "'%1' is no port; %2 takes a number from 0 to 65535, 0 picks a free port.")
        .arg(port, option);
}

std::optional<quint16> parsePort(const QString &text)
{
    const std::optional<int> port = wholeNumber(text, 0, 65535);
    return port ? std::make_optional(static_cast<quint16>(*port)) : std::nullopt;
}

std::optional<Consecutive> parseConsecutive(const QString &text)
{
    if (text == u"addresses")
        return Consecutive::Addresses;
    if (text == u"ports")
        return Consecutive::Ports;
    return std::nullopt;
}

/// Returns what is wrong, or an empty text, as readListening() does.
QString readPlaces(const QCommandLineParser &parser, const QHostAddress &address, quint16 port,
                   QList<Place> *places)
{
    const QString controllers = parser.value(controllersOption);
    const std::optional<int> count = wholeNumber(controllers, 1, maximumControllers);
    if (!count)
        return QStringLiteral("'%1' is no number of controllers; --controllers takes a "
                              "number from 1 to %2.")
            .arg(controllers)
            .arg(maximumControllers);
    const QString consecutive = parser.value(consecutiveOption);
    const std::optional<Consecutive> differ = parseConsecutive(consecutive);
    if (!differ)
        return QStringLiteral("'%1' is wrong; --consecutive takes addresses or ports.")
            .arg(consecutive);
    if (parser.isSet(consecutiveOption) && !parser.isSet(controllersOption))
        return QStringLiteral("--consecutive says nothing without --controllers; write "
                              "both, or none.");
    if (parser.isSet(configOption) && parser.isSet(controllersOption))
        return QStringLiteral("--controllers and --config exclude each other; the file says "
                              "how many there are.");
    if (parser.isSet(plantOption)
        && (parser.isSet(configOption) || parser.isSet(controllersOption)))
        return QStringLiteral(
            "--plant excludes --config and --controllers; the plant says how many "
            "there are.");
    if (parser.isSet(plantOption) && address.protocol() != QAbstractSocket::IPv4Protocol)
        return QStringLiteral("'%1' is no address for a plant; write --bind with an IPv4 address.")
            .arg(address.toString());
    return addPlaces(address, port, *count, *differ, places);
}

/// Reads the names of files. Returns what is wrong, or an empty text.
QString readFiles(const QCommandLineParser &parser, Options *options)
{
    for (const QString &file : {configOption, plantOption, writePlantOption, replayOption,
                                loadOption, dumpOption, stateOption}) {
        if (parser.isSet(file) && parser.value(file).isEmpty())
            return QStringLiteral("--%1 takes the name of a file.").arg(file);
    }
    options->config = parser.value(configOption);
    options->plant = parser.value(plantOption);
    options->writePlant = parser.value(writePlantOption);
    if (!parser.isSet(plantOption) && parser.isSet(writePlantOption))
        return QStringLiteral("--write-plant says nothing without --plant; write both, or none.");
    options->load = parser.value(loadOption);
    options->dump = parser.value(dumpOption);
    if (!parser.isSet(stateOption))
        return {};
    if (parser.isSet(loadOption) || parser.isSet(dumpOption))
        return QStringLiteral("--state loads and dumps; write it without --load and --dump.");
    options->dump = parser.value(stateOption);
    if (QFile::exists(options->dump))
        options->load = options->dump;
    return {};
}

/// The same for a replay, beside which most of the others would do nothing.
QString readReplay(const QCommandLineParser &parser, Options *options)
{
    options->replay = parser.value(replayOption);
    options->replayDelays = parser.isSet(replayDelaysOption);
    if (options->replayDelays && !parser.isSet(replayOption))
        return QStringLiteral(
            "--replay-delays says nothing without --replay; write both, or none.");
    for (const QString &other : {configOption, plantOption, controllersOption, loadOption,
                                 dumpOption, stateOption, faultOption, setOption}) {
        if (parser.isSet(replayOption) && parser.isSet(other))
            return QStringLiteral("--replay and --%1 exclude each other; the trace says what is "
                                  "answered.")
                .arg(other);
    }
    return {};
}

/// The same for where to listen.
QString readListening(const QCommandLineParser &parser, Options *options)
{
    const QString bind = parser.value(QStringLiteral("bind"));
    QHostAddress address;
    if (!address.setAddress(bind))
        return QStringLiteral("'%1' is no IP address; --bind takes one such as 127.0.0.1, "
                              "or 0.0.0.0 for all interfaces.")
            .arg(bind);
    const QString port = parser.value(QStringLiteral("port"));
    const std::optional<quint16> number = parsePort(port);
    if (!number)
        return portError(QStringLiteral("--port"), port);
    const QString control = parser.value(QStringLiteral("control"));
    options->control = parsePort(control);
    options->hasPort = parser.isSet(QStringLiteral("port"));
    if (parser.isSet(QStringLiteral("control")) && !options->control)
        return portError(QStringLiteral("--control"), control);
    return readPlaces(parser, address, *number, &options->places);
}

/// The options with their defaults. help.txt explains them.
void addOptions(QCommandLineParser *parser)
{
    const QString value = QStringLiteral("value");
    parser->addOptions({
        // Not addHelpOption(): it brings --help-all with it, which would need an answer too.
        QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")}),
        QCommandLineOption(QStringList{QStringLiteral("v"), QStringLiteral("version")}),
        QCommandLineOption(QStringLiteral("trace")),
        {QStringLiteral("bind"), {}, value, QStringLiteral("127.0.0.1")},
        {QStringLiteral("port"), {}, value, QStringLiteral("8501")},
        {controllersOption, {}, value, QStringLiteral("1")},
        {consecutiveOption, {}, value, QStringLiteral("addresses")},
        {configOption, {}, value},
        {plantOption, {}, value},
        {writePlantOption, {}, value},
        {loadOption, {}, value},
        {dumpOption, {}, value},
        {stateOption, {}, value},
        {QStringLiteral("control"), {}, value},
        {replayOption, {}, value},
        QCommandLineOption(replayDelaysOption),
        {faultOption, {}, value},
        {setOption, {}, value},
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
        return answered(Options::Action::ShowHelp, {});
    if (parser.isSet(QStringLiteral("version")))
        return answered(Options::Action::ShowVersion, {});
    if (!parser.positionalArguments().isEmpty())
        return refused(QStringLiteral("Unexpected argument '%1'; kvsim takes options only.")
                           .arg(parser.positionalArguments().constFirst()));

    Options options;
    for (const auto read : {readFiles, readReplay, readListening}) {
        const QString error = read(parser, &options);
        if (!error.isEmpty())
            return refused(error);
    }
    options.trace = parser.isSet(QStringLiteral("trace"));
    options.faults = parser.values(faultOption);
    options.values = parser.values(setOption);
    return options;
}
