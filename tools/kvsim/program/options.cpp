#include "program/options.h"

#include "program/places.h"

#include <common/wholenumber.h>

#include <QCommandLineParser>
#include <QFile>

#include <array>

namespace {

const QString controllersOption = QStringLiteral("controllers");
const QString consecutiveOption = QStringLiteral("consecutive");

struct FileOption
{
    const char *name;
    QString Options::*file;
};

constexpr std::array<FileOption, 7> fileOptions{{
    {"config", &Options::config},
    {"plant", &Options::plant},
    {"write-plant", &Options::writePlant},
    {"replay", &Options::replay},
    {"load", &Options::load},
    {"dump", &Options::dump},
    {"state", &Options::dump},
}};

/// An option, and others with blanks between.
struct Relation
{
    const char *option;
    const char *others;
};

constexpr std::array<Relation, 3> needs{{
    {"consecutive", "controllers"},
    {"write-plant", "plant"},
    {"replay-delays", "replay"},
}};

constexpr std::array<Relation, 4> exclusions{{
    {"config", "controllers"},
    {"plant", "config controllers"},
    {"state", "load dump"},
    {"replay", "config plant controllers load dump state fault set"},
}};

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
    if (parser.isSet(QStringLiteral("plant"))
        && address.protocol() != QAbstractSocket::IPv4Protocol)
        return QStringLiteral("'%1' is no address for a plant; write --bind with an IPv4 address.")
            .arg(address.toString());
    return addPlaces(address, port, *count, *differ, places);
}

/// Which options do not go together. Returns an empty text when all do.
QString checkRelations(const QCommandLineParser &parser, Options * /*options*/)
{
    for (const Relation &need : needs) {
        if (parser.isSet(QLatin1String(need.option)) && !parser.isSet(QLatin1String(need.others)))
            return QStringLiteral("--%1 says nothing without --%2; write both, or none.")
                .arg(QLatin1String(need.option), QLatin1String(need.others));
    }
    for (const Relation &exclusion : exclusions) {
        const QStringList others = QString::fromLatin1(exclusion.others).split(u' ');
        for (const QString &other : others) {
            if (parser.isSet(QLatin1String(exclusion.option)) && parser.isSet(other))
                return QStringLiteral("--%1 and --%2 exclude each other; leave one of them out.")
                    .arg(QLatin1String(exclusion.option), other);
        }
    }
    return {};
}

/// Reads the names of files. Returns what is wrong, or an empty text.
QString readFiles(const QCommandLineParser &parser, Options *options)
{
    for (const FileOption &option : fileOptions) {
        const QString name = QString::fromLatin1(option.name);
        if (!parser.isSet(name))
            continue;
        options->*option.file = parser.value(name);
        if (parser.value(name).isEmpty())
            return QStringLiteral("--%1 takes the name of a file.").arg(name);
    }
    if (parser.isSet(QStringLiteral("state")) && QFile::exists(options->dump))
        options->load = options->dump;
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
        {QStringLiteral("control"), {}, value},
        QCommandLineOption(QStringLiteral("replay-delays")),
        {QStringLiteral("fault"), {}, value},
        {QStringLiteral("set"), {}, value},
    });
    for (const FileOption &option : fileOptions)
        parser->addOption({QString::fromLatin1(option.name), {}, value});
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
    for (const auto read : {checkRelations, readFiles, readListening}) {
        const QString error = read(parser, &options);
        if (!error.isEmpty())
            return refused(error);
    }
    options.replayDelays = parser.isSet(QStringLiteral("replay-delays"));
    options.trace = parser.isSet(QStringLiteral("trace"));
    options.faults = parser.values(QStringLiteral("fault"));
    options.values = parser.values(QStringLiteral("set"));
    return options;
}
