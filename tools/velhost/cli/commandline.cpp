#include "cli/commandline.h"

#include "cli/options.h"

#include <common/wholenumber.h>

#include <QCommandLineParser>

namespace {

const QString helpWord = QStringLiteral("help");

/// Adds the options of all commands: which word is the command shows only where the parser knows
/// which options take a value.
void addOptions(const QList<Command> &commands, QCommandLineParser *parser)
{
    parser->addOption(QCommandLineOption(QStringList{QStringLiteral("h"), helpWord}));
    parser->addVersionOption();
    QStringList known;
    for (const Command &command : commands) {
        const QList<Option> options = optionsOf(command);
        for (const Option &option : options) {
            if (!known.contains(option.name))
                parser->addOption({option.name, option.help, option.value});
            known.append(option.name);
        }
    }
}

/// "a, b or c"
QString choice(const QStringList &words)
{
    if (words.size() < 2)
        return words.join(QString());
    return words.mid(0, words.size() - 1).join(QStringLiteral(", ")) + u" or " + words.last();
}

/// Returns what is wrong with an option that was given; empty when nothing is.
QString optionError(const Option &option, const QCommandLineParser &parser)
{
    if (!option.mayRepeat && parser.optionNames().count(option.name) > 1)
        return QStringLiteral("--%1 is given more than once").arg(option.name);
    const QString value = parser.value(option.name);
    if (option.value == u"FILE" && value.isEmpty())
        return QStringLiteral("--%1 needs a file name").arg(option.name);
    if (!option.range || wholeNumber(value, option.range->minimum, option.range->maximum))
        return {};
    return QStringLiteral("--%1 needs a whole number from %2 to %3, not \"%4\"")
        .arg(option.name, QString::number(option.range->minimum),
             QString::number(option.range->maximum), value);
}

OutputFormat formatNamed(const QString &name)
{
    if (name == u"json")
        return OutputFormat::Json;
    return name == u"csv" ? OutputFormat::Csv : OutputFormat::Table;
}

/// Stores the options. Returns their first error; empty when there is none.
QString takeOptions(const Command &command, const QCommandLineParser &parser, Arguments *arguments)
{
    const QList<Option> options = optionsOf(command);
    for (const Option &option : options) {
        if (parser.isSet(option.name))
            arguments->options.insert(option.name, parser.values(option.name));
    }
    const QStringList given = parser.optionNames();
    for (const QString &name : given) {
        if (!arguments->has(name))
            return QStringLiteral("%1 has no use for --%2").arg(command.name, name);
    }
    for (const Option &option : options) {
        const QString error = arguments->has(option.name) ? optionError(option, parser) : QString();
        if (!error.isEmpty())
            return error;
    }
    const QString format = QStringLiteral("format");
    if (arguments->has(format) && !command.formats.contains(arguments->value(format)))
        return QStringLiteral("--format of %1 is %2, not \"%3\"")
            .arg(command.name, choice(command.formats), arguments->value(format));
    arguments->format = formatNamed(arguments->value(format));
    arguments->plantFile = arguments->value(QStringLiteral("plant"));
    return {};
}

/// Stores the addresses that stand in place of a plant. Returns their error; empty when there is
/// none.
QString takeAddresses(const Command &command, const QStringList &operands, Arguments *arguments)
{
    arguments->plantFile = arguments->value(ipOption);
    arguments->operands = operands;
    if (arguments->has(QStringLiteral("plant")) || arguments->has(deviceOption)
        || arguments->has(itemOption) || operands.isEmpty())
        return QStringLiteral("--ip takes at least one address, as in --ip 192.168.0.10 "
                              "DM100:Short, and no --plant, --device or --item");
    const bool writes = command.operands == Operands::PlantAndAssignments;
    for (const QString &text : operands) {
        const bool isRange = text.section(u'=', 0, 0).contains(u"..");
        if (text.contains(u'=') != writes || (writes && isRange))
            return QStringLiteral("%1 takes %2, not \"%3\"")
                .arg(command.name,
                     writes ? QStringLiteral("single addresses as DM100:Short=5")
                            : QStringLiteral("addresses without a value"),
                     text);
    }
    return {};
}

/// Stores the plant file and the other positional arguments. Returns their error; empty when there
/// is none.
QString takeOperands(const Command &command, QStringList operands, Arguments *arguments)
{
    if (!hasPlugin(command)) {
        arguments->operands = operands;
        const QString needed = command.operands == Operands::Text
                                   ? QStringLiteral(" needs one text, in quotes")
                                   : QStringLiteral(" needs one file");
        return operands.size() == 1 ? QString() : command.name + needed;
    }
    if (arguments->has(ipOption))
        return takeAddresses(command, operands, arguments);
    const bool hasPlant = !arguments->plantFile.isEmpty();
    if (command.operands != Operands::None && !hasPlant && !operands.isEmpty())
        arguments->plantFile = operands.takeFirst();
    if (command.operands == Operands::PlantAndAssignments) {
        arguments->operands = operands;
        if (!operands.isEmpty())
            return {};
        return QStringLiteral("%1 needs %2at least one DEVICE/ITEM=VALUE")
            .arg(command.name, hasPlant ? QString() : QStringLiteral("a plant file and "));
    }
    if (command.operands == Operands::Plant && arguments->plantFile.isEmpty())
        return QStringLiteral("%1 needs a plant file: %1 PLANT").arg(command.name);
    return operands.isEmpty() ? QString()
                              : command.name + u" takes no argument \"" + operands.first() + u'"';
}

} // namespace

std::optional<Request> parseCommandLine(const QStringList &arguments,
                                        const QList<Command> &commands, QString *error)
{
    QCommandLineParser parser;
    addOptions(commands, &parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return {};
    }
    if (parser.isSet(QStringLiteral("version")))
        return Request{Request::Action::Version, nullptr, {}};
    QStringList words = parser.positionalArguments();
    const bool asksForHelp = parser.isSet(helpWord) || words.value(0) == helpWord;
    if (words.value(0) == helpWord)
        words.removeFirst();
    if (words.isEmpty() && asksForHelp)
        return Request{Request::Action::Help, nullptr, {}};
    QStringList names;
    for (const Command &command : commands)
        names.append(command.name);
    const int index = words.isEmpty() ? -1 : names.indexOf(words.first());
    if (index < 0) {
        const QString fault = words.isEmpty() ? QStringLiteral("no command given")
                                              : u"unknown command \"" + words.first() + u'"';
        *error = fault + u"; use " + choice(names);
        return {};
    }
    const Command *const command = &commands.at(index);
    if (asksForHelp)
        return Request{Request::Action::Help, command, {}};
    Request request{Request::Action::Run, command, {}};
    *error = takeOptions(*command, parser, &request.arguments);
    if (error->isEmpty())
        *error = takeOperands(*command, words.mid(1), &request.arguments);
    return error->isEmpty() ? std::optional(request) : std::nullopt;
}
