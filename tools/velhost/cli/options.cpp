#include "cli/options.h"

#include <algorithm>

namespace {

constexpr int maximumIntervalMs = 24 * 60 * 60 * 1000;
constexpr int defaultIntervalMs = 1000;
const QString plantName = QStringLiteral("plant");
const QString onlyChangesName = QStringLiteral("only-changes");
const QString intervalName = QStringLiteral("interval");

/// The help of `--format`; names all formats when the list is empty.
QString formatHelp(const QStringList &formats)
{
    static const QList<QPair<QString, QString>> meanings{
        {QStringLiteral("table"), QStringLiteral("table (default) for people")},
        {QStringLiteral("json"), QStringLiteral("json for one JSON object a line")},
        {QStringLiteral("csv"), QStringLiteral("csv for comma-separated values")}};
    QStringList texts;
    for (const auto &[format, meaning] : meanings) {
        if (formats.isEmpty() || formats.contains(format))
            texts.append(meaning);
    }
    return texts.join(QStringLiteral(", "));
}

} // namespace

QList<Option> plantOptions()
{
    const auto names = [](const QString &option, const QString &help) {
        return Option{option, QStringLiteral("NAME"), help, {}, true};
    };
    return {{ipOption, QStringLiteral("ADDRESS"),
             QStringLiteral("the controller at this address, also as 192.168.0.10:8501, instead of "
                            "a plant; in its place stand addresses: DM100:Short, "
                            "DM100..DM119:Word, DM100.3, D200-10, R500, to write DM100:Short=5")},
            names(deviceOption, QStringLiteral("of the plant this device alone; may be repeated")),
            names(itemOption, QStringLiteral("of each device this item alone; may be repeated"))};
}

bool hasPlugin(const Command &command)
{
    return command.operands != Operands::Text && command.operands != Operands::File;
}

QList<Option> optionsOf(const Command &command)
{
    QList<Option> options = command.options;
    if (hasPlugin(command)) {
        options.append(
            {QStringLiteral("plugin"), QStringLiteral("FILE"),
             QStringLiteral("the plug-in; without it libkeyence.so next to this program, then in "
                            "../lib from there, then where it is installed, then in Qt's plug-in "
                            "folders")});
        const bool hasOwnPlant
            = std::any_of(options.begin(), options.end(),
                          [](const Option &option) { return option.name == plantName; });
        if (!hasOwnPlant)
            options.append(
                {plantName, QStringLiteral("FILE"), QStringLiteral("the plant, instead of PLANT")});
    }
    if (command.operands == Operands::Plant || command.operands == Operands::PlantAndAssignments)
        options += plantOptions();
    options.append(
        {QStringLiteral("format"), QStringLiteral("FORMAT"), formatHelp(command.formats)});
    return options;
}

Option intervalOption()
{
    return {intervalName, QStringLiteral("MS"),
            QStringLiteral("milliseconds from the start of one cycle to the start of the next "
                           "(default %1)")
                .arg(defaultIntervalMs),
            Option::Range{0, maximumIntervalMs}};
}

Option onlyChangesOption(const QString &addition)
{
    return {onlyChangesName,
            {},
            u"print an item only when its value or its error has changed" + addition};
}

QList<Option> traceOptions()
{
    return {{traceOption,
             {},
             QStringLiteral("print what is sent and received, and which answers cannot be what was "
                            "asked for")},
            {traceFileOption, QStringLiteral("FILE"),
             QStringLiteral("write the same to a file, for velhost wire and kvsim --replay")}};
}

bool printsOnlyChanges(const Arguments &arguments)
{
    return arguments.has(onlyChangesName);
}

int intervalMs(const Arguments &arguments)
{
    return arguments.number(intervalName, defaultIntervalMs);
}
