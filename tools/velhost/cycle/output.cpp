#include "cycle/output.h"

#include "cycle/csv.h"
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
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

QString deviceJsonLines(const DeviceReport &device)
{
    QString lines;
    if (device.hasOwnLine()) {
        lines += jsonObject({{key("type"), jsonText(key("device"))},
                             {key("cycle"), jsonText(device.cycle)},
                             {key("time"), jsonText(timeText(device.time))},
                             {key("device"), jsonText(device.device)},
                             {key("error"), jsonText(device.error)}})
                 + u'\n';
    }
    for (const ItemReport &item : device.values) {
        QList<JsonMember> members{
            {key("type"), jsonText(key("value"))},        {key("cycle"), jsonText(device.cycle)},
            {key("time"), jsonText(timeText(item.time))}, {key("device"), jsonText(device.device)},
            {key("item"), jsonText(item.item)},           {key("value"), jsonText(item.value)},
            {key("error"), jsonText(item.error)}};
        if (item.expected)
            members.append({key("expected"), jsonText(*item.expected)});
        lines += jsonObject(members) + u'\n';
    }
    return lines;
}

void appendDeviceRows(const DeviceReport &device, QList<QStringList> *rows)
{
    const QString cycle = QString::number(device.cycle);
    const QString name = visible(device.device);
    if (device.hasOwnLine())
        rows->append({cycle, timeText(device.time), name, {}, {}, visible(deviceNews(device))});
    for (const ItemReport &item : device.values)
        rows->append({cycle, timeText(item.time), name, visible(item.item), valueText(item),
                      visible(item.error)});
}

QString cycleTable(const QList<DeviceReport> &devices)
{
    QList<QStringList> rows{{QStringLiteral("Cycle"), QStringLiteral("Time"),
                             QStringLiteral("Device"), QStringLiteral("Item"),
                             QStringLiteral("Value"), QStringLiteral("Error")}};
    for (const DeviceReport &device : devices)
        appendDeviceRows(device, &rows);
    return rows.size() > 1 ? tableText(rows) : QString();
}

} // namespace

bool DeviceReport::hasError() const
{
    return !error.isEmpty()
           || std::any_of(values.begin(), values.end(),
                          [](const ItemReport &item) { return !item.error.isEmpty(); });
}

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

QString cycleText(OutputFormat format, const QList<DeviceReport> &devices)
{
    if (format == OutputFormat::Table)
        return cycleTable(devices);
    if (format == OutputFormat::Csv)
        return cycleCsv(devices);
    QString lines;
    for (const DeviceReport &device : devices)
        lines += deviceJsonLines(device);
    return lines;
}

QString valueText(const ItemReport &item)
{
    QString text = visible(item.value);
    if (item.isOld)
        text += u" (old)";
    return text;
}

QString deviceNews(const DeviceReport &device)
{
    return device.errorEnded ? QStringLiteral("no error any more") : device.error;
}

QString logText(OutputFormat format, const LogEntry &entry)
{
    const QString level
        = entry.level == LogEntry::Level::Error ? QStringLiteral("error") : QStringLiteral("debug");
    if (format != OutputFormat::Json)
        return u"log " + level + u": " + visible(entry.text) + u'\n';
    return jsonObject({{key("type"), jsonText(key("log"))},
                       {key("level"), jsonText(level)},
                       {key("text"), jsonText(entry.text)}})
           + u'\n';
}

QString timeText(const QDateTime &time)
{
    QString text = time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
    if (text.endsWith(u'Z')) {
        text.chop(1);
        text += u"+00:00";
    }
    return text;
}
