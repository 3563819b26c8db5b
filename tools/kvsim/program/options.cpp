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

QString readPort(const QCommandLineParser &parser, const QString &option, quint16 *port)
{
    const QString text = parser.value(option);
    const std::optional<int> number = wholeNumber(text, 0, 65535);
    *port = static_cast<quint16>(number.value_or(0));
    return number ? QString()
                  : QStringLiteral("'%1' is no port; --%2 takes a number from 0 to 65535, 0 picks "
                                   "a free port.")
                        .arg(text, option);
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
    Place &place = options->place;
    if (!place.address.setAddress(bind))
        return QStringLiteral("'%1' is no IP address; --bind takes one such as 127.0.0.1, "
                              "or 0.0.0.0 for all interfaces.")
            .arg(bind);
    if (parser.isSet(QStringLiteral("plant"))
        && place.address.protocol() != QAbstractSocket::IPv4Protocol)
        return QStringLiteral("'%1' is no address for a plant; write --bind with an IPv4 address.")
            .arg(place.address.toString());
    options->hasPort = parser.isSet(QStringLiteral("port"));
    const QString error = readPort(parser, QStringLiteral("port"), &place.port);
    if (!error.isEmpty() || !parser.isSet(QStringLiteral("control")))
        return error;
    return readPort(parser, QStringLiteral("control"), &options->control.emplace());
}

/// The same for how many controllers there are.
QString readControllers(const QCommandLineParser &parser, Options *options)
{
    const QString controllers = parser.value(controllersOption);
    const std::optional<int> count = wholeNumber(controllers, 1, maximumControllers);
    if (!count)
        return QStringLiteral("'%1' is no number of controllers; --controllers takes a "
                              "number from 1 to %2.")
            .arg(controllers)
            .arg(maximumControllers);
    const QString consecutive = parser.value(consecutiveOption);
    options->controllers = *count;
    options->consecutivePorts = consecutive == u"ports";
    if (!options->consecutivePorts && consecutive != u"addresses")
        return QStringLiteral("'%1' is wrong; --consecutive takes addresses or ports.")
            .arg(consecutive);
    return placesError(options->place, *count, options->consecutivePorts);
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

QString parseOptions(const QStringList &arguments, Options *options)
{
    QCommandLineParser parser;
    addOptions(&parser);
    if (!parser.parse(arguments))
        return parser.errorText();
    options->help = parser.isSet(QStringLiteral("help"));
    options->version = parser.isSet(QStringLiteral("version"));
    if (options->help || options->version)
        return {};
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("Unexpected argument '%1'; kvsim takes options only.")
            .arg(parser.positionalArguments().constFirst());

    for (const auto read : {checkRelations, readFiles, readListening, readControllers}) {
        const QString error = read(parser, options);
        if (!error.isEmpty())
            return error;
    }
    options->replayDelays = parser.isSet(QStringLiteral("replay-delays"));
    options->trace = parser.isSet(QStringLiteral("trace"));
    options->faults = parser.values(QStringLiteral("fault"));
    options->values = parser.values(QStringLiteral("set"));
    return {};
}
