#include "cli/commandline.h"

#include <common/wholenumber.h>

#include <QCommandLineParser>
#include <QMap>
#include <QVector>

namespace {

constexpr int maximumCycles = 1'000'000'000;
constexpr int maximumIntervalMs = 24 * 60 * 60 * 1000;
constexpr int maximumForSeconds = 1'000'000'000;
constexpr int maximumRttMs = 60 * 1000;

/// What a command takes besides options.
enum class Arguments { None, Plant, Assignments, Text };

struct CommandDescription
{
    QString name;
    Command command;
    Arguments arguments;
    /// Those options that are not for every command.
    QStringList options;
    /// What --format may ask for.
    QStringList formats;
};

const QVector<CommandDescription> &commands()
{
    static const QString table = QStringLiteral("table");
    static const QString json = QStringLiteral("json");
    static const QString csv = QStringLiteral("csv");
    static const QVector<CommandDescription> list{
        {QStringLiteral("columns"), Command::Columns, Arguments::None, {}, {table, json}},
        {QStringLiteral("read"),
         Command::Read,
         Arguments::Plant,
         {QStringLiteral("cycles"), QStringLiteral("interval"), QStringLiteral("only-changes")},
         {table, json, csv}},
        {QStringLiteral("watch"),
         Command::Watch,
         Arguments::Plant,
         {QStringLiteral("for"), QStringLiteral("interval"), QStringLiteral("only-changes")},
         {table, json, csv}},
        {QStringLiteral("write"),
         Command::Write,
         Arguments::Assignments,
         {QStringLiteral("yes"), QStringLiteral("no-verify")},
         {table, json}},
        {QStringLiteral("plan"),
         Command::Plan,
         Arguments::Plant,
         {QStringLiteral("write"), QStringLiteral("rtt")},
         {table, json}},
        {QStringLiteral("check"), Command::Check, Arguments::Plant, {}, {table, json}},
        {QStringLiteral("discover"),
         Command::Discover,
         Arguments::None,
         {QStringLiteral("interface"), QStringLiteral("subnet"), QStringLiteral("udp-ports"),
          QStringLiteral("tcp-ports"), QStringLiteral("timeout"), QStringLiteral("force")},
         {table, json}},
        {QStringLiteral("explain"), Command::Explain, Arguments::Text, {}, {table, json}},
    };
    return list;
}

/// Whether the command takes the option. What `--format` may ask for is judged for itself.
bool takesOption(const CommandDescription &command, const QString &option)
{
    if (option == u"plugin" || option == u"plant")
        return command.arguments != Arguments::Text;
    return option == u"format" || command.options.contains(option);
}

/// What there is to parse. What it means to people stands in help.txt.
void addOptions(QCommandLineParser *parser)
{
    parser->addOption(QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")}));
    parser->addOption(
        QCommandLineOption(QStringList{QStringLiteral("v"), QStringLiteral("version")}));
    for (const char *const flag : {"only-changes", "yes", "no-verify", "force"})
        parser->addOption(QCommandLineOption(QString::fromLatin1(flag)));
    for (const char *const option :
         {"plugin", "plant", "format", "cycles", "interval", "for", "write", "rtt", "interface",
          "subnet", "udp-ports", "tcp-ports", "timeout"})
        parser->addOption({QString::fromLatin1(option), QString(), QStringLiteral("value")});
}

/// "a, b or c"
QString choice(const QStringList &words)
{
    if (words.size() < 2)
        return words.join(QString());
    return words.mid(0, words.size() - 1).join(QStringLiteral(", ")) + u" or " + words.last();
}

QString commandNames()
{
    QStringList names;
    for (const CommandDescription &command : commands())
        names.append(command.name);
    return choice(names);
}

/// Takes a number in plain decimal digits; `*number` keeps its value when the option is not given.
bool takeNumber(const QCommandLineParser &parser, const QString &option, int minimum, int maximum,
                int *number, QString *error)
{
    if (!parser.isSet(option))
        return true;
    const QString text = parser.value(option);
    const std::optional<int> parsed = wholeNumber(text, minimum, maximum);
    if (!parsed) {
        *error = QStringLiteral("--%1 needs a whole number from %2 to %3, not \"%4\"")
                     .arg(option, QString::number(minimum), QString::number(maximum), text);
        return false;
    }
    *number = *parsed;
    return true;
}

OutputFormat formatNamed(const QString &name)
{
    if (name == QLatin1String("json"))
        return OutputFormat::Json;
    return name == QLatin1String("csv") ? OutputFormat::Csv : OutputFormat::Table;
}

/// The options of a search. What their texts mean only the plug-in's columns tell.
SearchOptions takeSearch(const QCommandLineParser &parser)
{
    static const QMap<QString, QString> columns{
        {QStringLiteral("interface"), QStringLiteral("network_interface")},
        {QStringLiteral("udp-ports"), QStringLiteral("udp_ports")},
        {QStringLiteral("tcp-ports"), QStringLiteral("tcp_ports")},
        {QStringLiteral("timeout"), QStringLiteral("timeout_ms")}};
    SearchOptions search;
    for (auto column = columns.begin(); column != columns.end(); ++column) {
        if (parser.isSet(column.key()))
            search.parameters.insert(column.value(), parser.value(column.key()));
    }
    const QString subnet = QStringLiteral("subnet");
    if (parser.isSet(subnet))
        search.subnet = parser.value(subnet);
    search.isForced = parser.isSet(QStringLiteral("force"));
    return search;
}

/// Says what is wrong with the options as such, without a look at the command.
QString optionError(const QCommandLineParser &parser)
{
    const QStringList given = parser.optionNames();
    for (const QString &option : given) {
        if (option != u"write" && given.count(option) > 1)
            return QStringLiteral("--%1 is given more than once").arg(option);
    }
    for (const QString &option : {QStringLiteral("plugin"), QStringLiteral("plant")}) {
        if (parser.isSet(option) && parser.value(option).isEmpty())
            return QStringLiteral("--%1 needs a file name").arg(option);
    }
    return {};
}

/// Says what is wrong with what is no option.
QString argumentError(const CommandDescription &command, const QCommandLineParser &parser)
{
    const QStringList rest = parser.positionalArguments().mid(1);
    const bool hasPlant = parser.isSet(QStringLiteral("plant"));
    if (command.arguments == Arguments::Assignments) {
        if (!hasPlant)
            return command.name + u" needs a plant file: --plant FILE";
        return rest.isEmpty() ? command.name + u" needs at least one DEVICE/ITEM=VALUE" : QString();
    }
    if (command.arguments == Arguments::Text)
        return rest.size() == 1 ? QString() : command.name + u" needs one text, in quotes";
    const bool needsPlant = command.arguments == Arguments::Plant && !hasPlant;
    if (needsPlant && rest.value(0).isEmpty())
        return command.name + u" needs a plant file: " + command.name + u" PLANT";
    const int allowed = needsPlant ? 1 : 0;
    if (rest.size() > allowed)
        return QStringLiteral("%1 takes no argument \"%2\"").arg(command.name, rest.at(allowed));
    return {};
}

/// Says what the command misses or has no use for.
QString commandError(const CommandDescription &command, const QCommandLineParser &parser)
{
    const QStringList given = parser.optionNames();
    for (const QString &option : given) {
        if (!takesOption(command, option))
            return QStringLiteral("%1 has no use for --%2").arg(command.name, option);
    }
    const QString format = parser.value(QStringLiteral("format"));
    if (parser.isSet(QStringLiteral("format")) && !command.formats.contains(format))
        return QStringLiteral("--format of %1 is %2, not \"%3\"")
            .arg(command.name, choice(command.formats), format);
    return argumentError(command, parser);
}

/// The command that the arguments name, or a null pointer and what is wrong.
const CommandDescription *requestedCommand(const QStringList &positional, QString *error)
{
    if (positional.isEmpty()) {
        *error = u"no command given; use " + commandNames();
        return nullptr;
    }
    const QString &name = positional.first();
    for (const CommandDescription &command : commands()) {
        if (command.name == name)
            return &command;
    }
    *error = u"unknown command \"" + name + u"\"; use " + commandNames();
    return nullptr;
}

} // namespace

std::optional<CommandLine> parseCommandLine(const QStringList &arguments, QString *error)
{
    QCommandLineParser parser;
    addOptions(&parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return {};
    }
    CommandLine result;
    if (parser.isSet(QStringLiteral("help")))
        return result;
    if (parser.isSet(QStringLiteral("version"))) {
        result.command = Command::Version;
        return result;
    }

    const QStringList positional = parser.positionalArguments();
    const CommandDescription *const command = requestedCommand(positional, error);
    if (command == nullptr)
        return {};
    *error = optionError(parser);
    if (error->isEmpty())
        *error = commandError(*command, parser);
    if (!error->isEmpty())
        return {};

    result.command = command->command;
    result.pluginFile = parser.value(QStringLiteral("plugin"));
    result.plantFile = parser.value(QStringLiteral("plant"));
    if (command->arguments == Arguments::Plant && result.plantFile.isEmpty())
        result.plantFile = positional.at(1);
    result.assignments = command->arguments == Arguments::Assignments
                             ? positional.mid(1)
                             : parser.values(QStringLiteral("write"));
    if (command->arguments == Arguments::Text)
        result.text = positional.at(1);
    result.format = formatNamed(parser.value(QStringLiteral("format")));
    result.onlyChanges = parser.isSet(QStringLiteral("only-changes"));
    result.isConfirmed = parser.isSet(QStringLiteral("yes"));
    result.verifies = !parser.isSet(QStringLiteral("no-verify"));
    result.search = takeSearch(parser);
    const bool taken
        = takeNumber(parser, QStringLiteral("cycles"), 1, maximumCycles, &result.cycles, error)
          && takeNumber(parser, QStringLiteral("interval"), 0, maximumIntervalMs,
                        &result.intervalMs, error)
          && takeNumber(parser, QStringLiteral("for"), 1, maximumForSeconds, &result.forSeconds,
                        error)
          && takeNumber(parser, QStringLiteral("rtt"), 0, maximumRttMs, &result.rttMs, error);
    return taken ? std::optional(result) : std::nullopt;
}
