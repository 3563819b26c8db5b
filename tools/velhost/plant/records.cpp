#include "plant/records.h"

#include <algorithm>

namespace {

using Column = DatabaseColumnStructure;
using Choice = DatabaseColumnStructure::SelectionValue;

bool isChoice(const Choice &entry)
{
    return !entry.text.startsWith(u"__vel_");
}

bool takesFreeText(const Column &column)
{
    const QList<Choice> &entries = column.selectionValues;
    return std::none_of(entries.begin(), entries.end(), isChoice)
           || std::any_of(entries.begin(), entries.end(), [](const Choice &entry) {
                  return entry.text == u"__vel_discovery_editable";
              });
}

std::optional<QString> valueFor(const QString &text, const Column &column)
{
    for (const auto field : {&Choice::value, &Choice::text}) {
        for (const Choice &entry : column.selectionValues) {
            if (entry.*field == text && isChoice(entry))
                return entry.value;
        }
    }
    return takesFreeText(column) ? std::optional(text) : std::nullopt;
}

QString notOfferedError(const QString &text, const Column &column)
{
    QStringList offered;
    for (const Choice &entry : column.selectionValues) {
        if (isChoice(entry))
            offered.append(QStringLiteral("\"%1\" (%2)").arg(entry.text, entry.value));
    }
    return QStringLiteral("\"%1\" is not offered; use one of: %2")
        .arg(text, offered.join(QStringLiteral(", ")));
}

bool isDeclared(const QString &parameter, const QList<Column> &columns)
{
    return std::any_of(columns.begin(), columns.end(),
                       [&](const Column &column) { return column.name == parameter; });
}

QString unknownParameterError(const QList<Column> &columns, const QString &scope)
{
    QStringList names;
    for (const Column &column : columns)
        names.append(column.name);
    return QStringLiteral("the plug-in declares no such %1 parameter; it declares: %2")
        .arg(scope, names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", ")));
}

/// The item's own parameters, those of `defaults` where it has none.
QMap<QString, QString> itemParameters(const PlantItem &item, const QMap<QString, QString> &defaults,
                                      const QList<Column> &columns, QList<Problem> *errors)
{
    QMap<QString, QString> record = defaults;
    const QMap<QString, QString> own = resolveParameters(
        item.parameters, columns, QStringLiteral("item"), item.place + u".parameters", errors);
    for (const Column &column : columns) {
        if (!item.parameters.contains(column.name))
            continue;
        record.remove(column.name);
        if (own.contains(column.name))
            record.insert(column.name, own.value(column.name));
    }
    return record;
}

QList<ItemInstancePlugin> itemRecords(const PlantDevice &device, const QList<Column> &columns,
                                      QList<Problem> *errors)
{
    const QMap<QString, QString> defaults
        = resolveParameters(device.itemDefaults, columns, QStringLiteral("item"),
                            device.place + u".itemDefaults", errors);
    QList<ItemInstancePlugin> records;
    for (const PlantItem &item : device.items) {
        ItemInstancePlugin record;
        record.name = item.name;
        record.parameters = itemParameters(item, defaults, columns, errors);
        records.append(record);
    }
    return records;
}

} // namespace

QMap<QString, QString> resolveParameters(const ParameterTexts &parameters,
                                         const QList<DatabaseColumnStructure> &columns,
                                         const QString &scope, const QString &place,
                                         QList<Problem> *errors)
{
    QMap<QString, QString> record;
    for (const Column &column : columns) {
        const auto text = parameters.constFind(column.name);
        if (text == parameters.constEnd())
            record.insert(column.name, column.defaultValue);
        else if (!*text)
            continue;
        else if (const std::optional<QString> value = valueFor(**text, column))
            record.insert(column.name, *value);
        else
            errors->append({{}, place + u'.' + column.name, notOfferedError(**text, column)});
    }
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter) {
        const QString &name = parameter.key();
        if (!isDeclared(name, columns))
            errors->append({{}, place + u'.' + name, unknownParameterError(columns, scope)});
    }
    return record;
}

QString displayText(const QString &value, const DatabaseColumnStructure &column)
{
    for (const Choice &entry : column.selectionValues) {
        if (isChoice(entry) && entry.value == value)
            return entry.text;
    }
    return value;
}

QList<DeviceInstancePlugin>
deviceRecords(const Plant &plant, const PluginRegistration &registration, QList<Problem> *errors)
{
    QList<DeviceInstancePlugin> records;
    for (const PlantDevice &device : plant.devices) {
        DeviceInstancePlugin record;
        record.id = device.id;
        record.name = device.name;
        record.ipAddress = device.ip;
        record.parameters
            = resolveParameters(device.parameters, registration.deviceColumns,
                                QStringLiteral("device"), device.place + u".parameters", errors);
        record.items = itemRecords(device, registration.itemColumns, errors);
        records.append(record);
    }
    return records;
}
