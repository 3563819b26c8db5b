#include "commandline.h"

#include <QCommandLineParser>

#include <algorithm>
#include <array>

namespace {

constexpr int maximumCycles = 1'000'000'000;
constexpr int maximumIntervalMs = 24 * 60 * 60 * 1000;
constexpr int maximumRttMs = 60 * 1000;

struct CommandDescription
{
    QString name;
    Command command;
    bool needsPlant;
    bool hasAssignments;
    /// Those options that are not for every command.
    QStringList options;
};

const std::array<CommandDescription, 5> &commands()
{
    static const std::array<CommandDescription, 5> table{{
        {QStringLiteral("columns"), Command::Columns, false, false, {}},
        {QStringLiteral("read"),
         Command::Read,
         true,
         false,
         {QStringLiteral("cycles"), QStringLiteral("interval"), QStringLiteral("only-changes")}},
        {QStringLiteral("write"),
         Command::Write,
         true,
         true,
         {QStringLiteral("yes"), QStringLiteral("no-verify")}},
        {QStringLiteral("plan"),
         Command::Plan,
         true,
         false,
         {QStringLiteral("write"), QStringLiteral("rtt")}},
        {QStringLiteral("check"), Command::Check, true, false, {}},
    }};
    return table;
}

/// The options that every command takes.
QStringList commonOptions()
{
    return {QStringLiteral("plugin"), QStringLiteral("plant"), QStringLiteral("format")};
}

void describe(QCommandLineParser *parser)
{
    parser->setApplicationDescription(QStringLiteral(
        "Loads a VEL plug-in, plays the host and shows what the plug-in answers.\n\n"
        "Commands:\n"
        "  columns                       Show what the plug-in declares.\n"
        "  read                          Read every item of every device.\n"
        "  write DEVICE/ITEM=VALUE ...   Read, write and read back the named items, in the\n"
        "                                order given.\n"
        "  plan                          Show what each item would send and what a cycle costs,\n"
        "                                without the plant's network.\n"
        "  check                         Show everything that is wrong with the plant file.\n\n"
        "Exit code: 0 all well, 1 a device or an item has an error, 2 wrong usage or plant file,\n"
        "3 the plug-in cannot be loaded, 130 or 143 a read was ended by SIGINT or SIGTERM."));
    parser->addPositionalArgument(QStringLiteral("command"),
                                  QStringLiteral("columns, read, write, plan or check."),
                                  QStringLiteral("COMMAND"));
    parser->addOptions({
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version.")},
        {QStringLiteral("plugin"),
         QStringLiteral("The plug-in. Without it: libkeyence.so next to this program, then in "
                        "../lib from there, then in Qt's plug-in folders."),
         QStringLiteral("FILE")},
        {QStringLiteral("plant"),
         QStringLiteral("The devices and items as JSON. Only columns does without."),
         QStringLiteral("FILE")},
        {QStringLiteral("format"),
         QStringLiteral("table (default) for people, json for one JSON object a line, csv for "
                        "comma-separated values (read only)."),
         QStringLiteral("FORMAT")},
        {QStringLiteral("cycles"), QStringLiteral("read: number of cycles (default 1)."),
         QStringLiteral("N")},
        {QStringLiteral("interval"),
         QStringLiteral("read: milliseconds between cycle starts (default 1000)."),
         QStringLiteral("MS")},
        {QStringLiteral("only-changes"),
         QStringLiteral("read: print an item only when its value or its error has changed.")},
        {QStringLiteral("yes"),
         QStringLiteral("write: confirms that devices which are not on this machine may change.")},
        {QStringLiteral("no-verify"),
         QStringLiteral("write: only write, read nothing before or after.")},
        {QStringLiteral("write"),
         QStringLiteral("plan: show what a write of this would send, too. May be repeated."),
         QStringLiteral("DEVICE/ITEM=VALUE")},
        {QStringLiteral("rtt"),
         QStringLiteral("plan: milliseconds that an exchange takes at best (default 1)."),
         QStringLiteral("MS")},
    });
}

/// Takes a number in plain decimal digits; `*number` keeps its value when the option is not given.
bool takeNumber(const QCommandLineParser &parser, const QString &option, int minimum, int maximum,
                int *number, QString *error)
{
    if (!parser.isSet(option))
        return true;
    const QString text = parser.value(option);
    const bool onlyDigits = std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    });
    bool ok = false;
    const int parsed = text.toInt(&ok);
    if (!ok || !onlyDigits || parsed < minimum || parsed > maximum) {
        *error = QStringLiteral("--%1 needs a whole number from %2 to %3, not \"%4\"")
                     .arg(option, QString::number(minimum), QString::number(maximum), text);
        return false;
    }
    *number = parsed;
    return true;
}

bool takeFormat(const QCommandLineParser &parser, OutputFormat *format, QString *error)
{
    const QString option = QStringLiteral("format");
    if (!parser.isSet(option))
        return true;
    const QString text = parser.value(option);
    if (text == QLatin1String("table"))
        *format = OutputFormat::Table;
    else if (text == QLatin1String("json"))
        *format = OutputFormat::Json;
    else if (text == QLatin1String("csv"))
        *format = OutputFormat::Csv;
    else {
        *error = QStringLiteral("--format is table, json or csv, not \"%1\"").arg(text);
        return false;
    }
    return true;
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

/// Says what the command misses or has no use for.
QString commandError(const CommandDescription &command, const QCommandLineParser &parser)
{
    const QStringList given = parser.optionNames();
    for (const QString &option : given) {
        if (!commonOptions().contains(option) && !command.options.contains(option))
            return QStringLiteral("%1 has no use for --%2").arg(command.name, option);
    }
    if (command.command == Command::Check && parser.isSet(QStringLiteral("format")))
        return QStringLiteral("check has no use for --format");
    if (command.command != Command::Read && parser.value(QStringLiteral("format")) == u"csv")
        return QStringLiteral("--format csv is for read; %1 has table and json").arg(command.name);
    if (command.needsPlant && !parser.isSet(QStringLiteral("plant")))
        return QStringLiteral("%1 needs a plant file: --plant FILE").arg(command.name);
    const QStringList rest = parser.positionalArguments().mid(1);
    if (command.hasAssignments && rest.isEmpty())
        return QStringLiteral("%1 needs at least one DEVICE/ITEM=VALUE").arg(command.name);
    if (!command.hasAssignments && !rest.isEmpty())
        return QStringLiteral("%1 takes no argument \"%2\"").arg(command.name, rest.first());
    return {};
}

/// The command that the arguments name, or a null pointer and what is wrong.
const CommandDescription *requestedCommand(const QStringList &positional, QString *error)
{
    if (positional.isEmpty()) {
        *error = QStringLiteral("no command given; use columns, read, write, plan or check");
        return nullptr;
    }
    const QString &name = positional.first();
    for (const CommandDescription &command : commands()) {
        if (command.name == name)
            return &command;
    }
    *error = QStringLiteral("unknown command \"%1\"; use columns, read, write, plan or check")
                 .arg(name);
    return nullptr;
}

} // namespace

std::optional<CommandLine> parseCommandLine(const QStringList &arguments, QString *error)
{
    QCommandLineParser parser;
    describe(&parser);
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
    result.assignments
        = command->hasAssignments ? positional.mid(1) : parser.values(QStringLiteral("write"));
    result.onlyChanges = parser.isSet(QStringLiteral("only-changes"));
    result.isConfirmed = parser.isSet(QStringLiteral("yes"));
    result.verifies = !parser.isSet(QStringLiteral("no-verify"));
    const bool taken
        = takeFormat(parser, &result.format, error)
          && takeNumber(parser, QStringLiteral("cycles"), 1, maximumCycles, &result.cycles, error)
          && takeNumber(parser, QStringLiteral("interval"), 0, maximumIntervalMs,
                        &result.intervalMs, error)
          && takeNumber(parser, QStringLiteral("rtt"), 0, maximumRttMs, &result.rttMs, error);
    return taken ? std::optional(result) : std::nullopt;
}

QString helpText()
{
    QCommandLineParser parser;
    describe(&parser);
    return parser.helpText();
}
