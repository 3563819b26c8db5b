#include "cli/help.h"

#include "cli/options.h"

#include <common/textwidth.h>

namespace {

constexpr int textColumn = 28;

/// A term and its meaning in two columns.
QString entry(const QString &term, const QString &meaning)
{
    const QString indent(textColumn, u' ');
    const QString text = wrappedText(meaning, indent);
    const QString head = u"  " + term;
    if (head.size() + 2 > textColumn)
        return head + u'\n' + text;
    return head.leftJustified(textColumn) + text.mid(textColumn);
}

QString optionEntries(const QList<Option> &options)
{
    QString text;
    for (const Option &option : options)
        text += entry(u"--" + option.name
                          + (option.value.isEmpty() ? QString() : u' ' + option.value),
                      option.help);
    return text;
}

QString generalOptions()
{
    return entry(QStringLiteral("-h, --help"), QStringLiteral("show this help"))
           + entry(QStringLiteral("-v, --version"), QStringLiteral("show the version"));
}

QString usageOf(const Command &command)
{
    static const QMap<Operands, QString> usages{
        {Operands::Plant, QStringLiteral(" PLANT")},
        {Operands::PlantAndAssignments, QStringLiteral(" PLANT DEVICE/ITEM=VALUE...")},
        {Operands::Text, QStringLiteral(" TEXT")},
        {Operands::File, QStringLiteral(" FILE")}};
    return command.name + usages.value(command.operands);
}

QString exampleEntries(const Command &command)
{
    QString text;
    for (const QStringList &example : command.examples)
        text += example.at(0) + u":\n  $ " + example.at(1) + u'\n';
    return text;
}

} // namespace

QString helpText(const QList<Command> &commands)
{
    QString text = QStringLiteral(R"(Usage: velhost [OPTION]... COMMAND [ARGUMENT]...

Loads a VEL plug-in, plays the host and shows what the plug-in answers.
PLANT is a JSON file with the devices and items.

Commands:
)");
    QString options;
    QString examples;
    for (const Command &command : commands) {
        text += entry(usageOf(command), command.summary);
        if (!command.options.isEmpty())
            options += QStringLiteral("\nOptions of %1:\n").arg(command.name)
                       + optionEntries(command.options);
        examples += exampleEntries(command);
    }
    text += entry(QStringLiteral("help COMMAND"), QStringLiteral("show what one of them takes"));
    // A command without options of its own has the general ones.
    text += u"\nOptions:\n" + optionEntries(optionsOf(Command())) + generalOptions()
            + u"\nOptions of each command with PLANT:\n" + optionEntries(plantOptions()) + options;
    return text + QStringLiteral(R"(
Exit status:
  0    all well
  1    a device or an item has an error, a value is not the expected one, a
       text is not known, an answer is suspect, or discover found nothing or
       could not finish
  2    wrong usage or plant file
  3    the plug-in cannot be loaded
  130  a read, a watch, a write or a search was ended by SIGINT; 143 by
       SIGTERM, 129 by SIGHUP

Examples:
)") + examples;
}

QString helpText(const Command &command)
{
    const QString does = command.summary.at(0).toUpper() + command.summary.mid(1) + u'.';
    QString text = u"Usage: velhost " + usageOf(command) + u" [OPTION]...\n\n"
                   + wrappedText(does, {}) + u"\nOptions:\n" + optionEntries(optionsOf(command))
                   + generalOptions();
    if (!command.examples.isEmpty())
        text += u"\nExamples:\n" + exampleEntries(command);
    return text;
}
