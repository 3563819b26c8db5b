#include "columns/columnstext.h"

#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <QJsonArray>
#include <QJsonObject>

#include <utility>

namespace {

using Column = DatabaseColumnStructure;

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

/// The options in the order in which the host holds them, each as JSON text.
QList<JsonMember> optionMembers(const PluginInitOptions &options)
{
    return {{key("unused1"), jsonText(options.unused1)},
            {key("flag2"), jsonText(options.flag2)},
            {key("flag3"), jsonText(options.flag3)},
            {key("unused4"), jsonText(options.unused4)},
            {key("unused5"), jsonText(options.unused5)},
            {key("flag6"), jsonText(options.flag6)},
            {key("flag7"), jsonText(options.flag7)},
            {key("unused8"), jsonText(options.unused8)},
            {key("unused9"), jsonText(options.unused9)},
            {key("text10"), jsonText(options.text10)},
            {key("unused11"), jsonText(QJsonObject::fromVariantMap(options.unused11))}};
}

struct ScopedColumn
{
    QString scope;
    Column column;
};

QList<ScopedColumn> allColumns(const PluginRegistration &registration)
{
    const QList<std::pair<QString, QList<Column>>> scopes{
        {QStringLiteral("plugin"), registration.pluginColumns},
        {QStringLiteral("item"), registration.itemColumns},
        {QStringLiteral("device"), registration.deviceColumns},
        {QStringLiteral("file"), registration.fileColumns}};
    QList<ScopedColumn> all;
    for (const auto &[scope, columns] : scopes) {
        for (const Column &column : columns)
            all.append({scope, column});
    }
    return all;
}

QString pluginJson(const LoadedPlugin &plugin, const PluginRegistration &registration)
{
    return jsonObject({{key("type"), jsonText(key("plugin"))},
                       {key("name"), jsonText(registration.name)},
                       {key("version"), jsonText(static_cast<qint64>(registration.version))},
                       {key("options"), jsonObject(optionMembers(registration.options))},
                       {key("class"), jsonText(plugin.className)},
                       {key("identifier"), jsonText(plugin.identifier)}});
}

QString columnJson(const ScopedColumn &scoped)
{
    const Column &column = scoped.column;
    QJsonArray selection;
    for (const Column::SelectionValue &entry : column.selectionValues)
        selection.append(QJsonArray{entry.text, entry.value});
    return jsonObject({{key("type"), jsonText(key("column"))},
                       {key("scope"), jsonText(scoped.scope)},
                       {key("name"), jsonText(column.name)},
                       {key("type_code"), jsonText(column.type)},
                       {key("int"), jsonText(column.intValue)},
                       {key("default"), jsonText(column.defaultValue)},
                       {key("description"), jsonText(column.description)},
                       {key("selection"), jsonText(selection)}});
}

QString pluginTable(const LoadedPlugin &plugin, const PluginRegistration &registration)
{
    QList<QStringList> rows{
        {QStringLiteral("Plug-in"), visible(registration.name)},
        {QStringLiteral("Version"), QString::number(registration.version)},
        {QStringLiteral("Class"), visible(plugin.className)},
        {QStringLiteral("Identifier"), visible(plugin.identifier)},
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
    QList<QStringList> rows{{QStringLiteral("Scope"), QStringLiteral("Name"),
                             QStringLiteral("Type"), QStringLiteral("Int"),
                             QStringLiteral("Default"), QStringLiteral("Selection"),
                             QStringLiteral("Description")}};
    const QList<ScopedColumn> all = allColumns(registration);
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

} // namespace

QString columnsText(OutputFormat format, const LoadedPlugin &plugin,
                    const PluginRegistration &registration)
{
    if (format == OutputFormat::Table)
        return pluginTable(plugin, registration) + u'\n' + columnsTable(registration);
    QString lines = pluginJson(plugin, registration) + u'\n';
    const QList<ScopedColumn> all = allColumns(registration);
    for (const ScopedColumn &column : all)
        lines += columnJson(column) + u'\n';
    return lines;
}
