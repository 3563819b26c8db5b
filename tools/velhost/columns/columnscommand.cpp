#include "columns/columnscommand.h"

#include "cli/plantarguments.h"

#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <QJsonArray>
#include <QJsonObject>

#include <utility>

namespace {

using Column = DatabaseColumnStructure;

/// The options in the order of the host's record.
QList<JsonMember> optionMembers(const PluginInitOptions &options)
{
    return {{"unused1", options.unused1},
            {"flag2", options.flag2},
            {"flag3", options.flag3},
            {"unused4", options.unused4},
            {"unused5", options.unused5},
            {"flag6", options.flag6},
            {"flag7", options.flag7},
            {"unused8", options.unused8},
            {"unused9", options.unused9},
            {"text10", options.text10},
            {"unused11", QJsonObject::fromVariantMap(options.unused11)}};
}

/// Each with its scope.
QList<std::pair<QString, Column>> allColumns(const PluginRegistration &registration)
{
    const QList<std::pair<QString, QList<Column>>> scopes{
        {QStringLiteral("plugin"), registration.pluginColumns},
        {QStringLiteral("item"), registration.itemColumns},
        {QStringLiteral("device"), registration.deviceColumns},
        {QStringLiteral("file"), registration.fileColumns}};
    QList<std::pair<QString, Column>> all;
    for (const auto &[scope, columns] : scopes) {
        for (const Column &column : columns)
            all.append({scope, column});
    }
    return all;
}

QString pluginJson(const LoadedPlugin &plugin, const PluginRegistration &registration)
{
    return jsonLine("plugin", {{"name", registration.name},
                               {"version", static_cast<qint64>(registration.version)},
                               {"options", optionMembers(registration.options)},
                               {"class", plugin.className},
                               {"identifier", QStringLiteral(VELInterface_iid)}});
}

QString columnJson(const QString &scope, const Column &column)
{
    QJsonArray selection;
    for (const Column::SelectionValue &entry : column.selectionValues)
        selection.append(QJsonArray{entry.text, entry.value});
    return jsonLine("column", {{"scope", scope},
                               {"name", column.name},
                               {"type_code", column.type},
                               {"int", column.intValue},
                               {"default", column.defaultValue},
                               {"description", column.description},
                               {"selection", selection}});
}

QString pluginTable(const LoadedPlugin &plugin, const PluginRegistration &registration)
{
    QList<QStringList> rows{
        {QStringLiteral("Plug-in"), visible(registration.name)},
        {QStringLiteral("Version"), QString::number(registration.version)},
        {QStringLiteral("Class"), visible(plugin.className)},
        {QStringLiteral("Identifier"), visible(QStringLiteral(VELInterface_iid))},
        {QStringLiteral("File"), visible(plugin.fileName)},
    };
    const QList<JsonMember> options = optionMembers(registration.options);
    for (const JsonMember &option : options) {
        const QString title = rows.size() == 5 ? QStringLiteral("Options") : QString();
        rows.append({title, option.key + u" = " + visible(option.json)});
    }
    return tableText(rows);
}

/// A row for each column, and one more for each further entry of its selection.
QString columnsTable(const PluginRegistration &registration)
{
    QList<QStringList> rows{
        QStringLiteral("Scope Name Type Int Default Selection Description").split(u' ')};
    const auto all = allColumns(registration);
    for (const auto &[scope, column] : all) {
        QStringList selection;
        for (const Column::SelectionValue &entry : column.selectionValues)
            selection.append(visible(entry.text) + u" = " + visible(entry.value));
        rows.append({scope, visible(column.name), QString::number(column.type),
                     QString::number(column.intValue), visible(column.defaultValue),
                     selection.value(0), visible(column.description)});
        for (int i = 1; i < selection.size(); ++i)
            rows.append({{}, {}, {}, {}, {}, selection.at(i), {}});
    }
    return tableText(rows);
}

/// What the plug-in declares, as table or JSON: first itself, then its columns (plug-in, item,
/// device, file). Ends with a line feed.
QString columnsText(OutputFormat format, const LoadedPlugin &plugin,
                    const PluginRegistration &registration)
{
    if (format == OutputFormat::Table)
        return pluginTable(plugin, registration) + u'\n' + columnsTable(registration);
    QString lines = pluginJson(plugin, registration);
    const auto all = allColumns(registration);
    for (const auto &[scope, column] : all)
        lines += columnJson(scope, column);
    return lines;
}

ExitCode runColumns(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    return runSession(sessionSetup(arguments, *plant), [&arguments](const Session &session) {
        print(stdout, columnsText(arguments.format, session.loaded, session.registration));
        return AllWell;
    });
}

} // namespace

Command columnsCommand()
{
    return {QStringLiteral("columns"),
            Operands::None,
            QStringLiteral("show what the plug-in declares"),
            {QStringLiteral("table"), QStringLiteral("json")},
            {},
            {{QStringLiteral("Show what can be configured"), QStringLiteral("velhost columns")}},
            runColumns};
}
