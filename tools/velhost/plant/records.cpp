#include "plant/records.h"

#include <algorithm>
#include <iterator>

namespace {

using Column = DatabaseColumnStructure;
using Choice = DatabaseColumnStructure::SelectionValue;

QList<Choice> choicesOf(const Column &column)
{
    QList<Choice> choices;
    std::copy_if(column.selectionValues.begin(), column.selectionValues.end(),
                 std::back_inserter(choices),
                 [](const Choice &entry) { return !entry.text.startsWith(u"__vel_"); });
    return choices;
}

bool takesFreeText(const Column &column, const QList<Choice> &choices)
{
    return choices.isEmpty()
           || std::any_of(
               column.selectionValues.begin(), column.selectionValues.end(),
               [](const Choice &entry) { return entry.text == u"__vel_discovery_editable"; });
}

std::optional<QString> valueFor(const QString &text, const Column &column)
{
    const QList<Choice> choices = choicesOf(column);
    for (const Choice &choice : choices) {
        if (choice.value == text)
            return choice.value;
    }
    for (const Choice &choice : choices) {
        if (choice.text == text)
            return choice.value;
    }
    return takesFreeText(column, choices) ? std::optional(text) : std::nullopt;
}

QString notOfferedError(const QString &text, const Column &column)
{
    QStringList offered;
    const QList<Choice> choices = choicesOf(column);
    for (const Choice &choice : choices)
        offered.append(QStringLiteral("\"%1\" (%2)").arg(choice.text, choice.value));
    return QStringLiteral("\"%1\" is not offered; use one of: %2")
        .arg(text, offered.join(QStringLiteral(", ")));
}

QString unknownParameterError(const QList<Column> &columns, const QString &scope)
{
    QStringList names;
    for (const Column &column : columns)
        names.append(column.name);
    return QStringLiteral("the plug-in declares no such %1 parameter; it declares: %2")
        .arg(scope, names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", ")));
}

QList<ItemInstancePlugin> itemRecords(const QList<PlantItem> &items,
                                      const QList<DatabaseColumnStructure> &columns,
                                      const QString &place, QList<Problem> *errors)
{
    QList<ItemInstancePlugin> records;
    for (int i = 0; i < items.size(); ++i) {
        const QString parameters = QStringLiteral("%1[%2].parameters").arg(place).arg(i);
        ItemInstancePlugin record;
        record.name = items.at(i).name;
        record.parameters = resolveParameters(items.at(i).parameters, columns,
                                              QStringLiteral("item"), parameters, errors);
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
    ParameterTexts rest = parameters;
    for (const Column &column : columns) {
        if (!parameters.contains(column.name)) {
            record.insert(column.name, column.defaultValue);
            continue;
        }
        rest.remove(column.name);
        const std::optional<QString> text = parameters.value(column.name);
        if (!text)
            continue;
        if (const std::optional<QString> value = valueFor(*text, column))
            record.insert(column.name, *value);
        else
            errors->append({{}, place + u'.' + column.name, notOfferedError(*text, column)});
    }
    const QStringList unknown = rest.keys();
    for (const QString &name : unknown)
        errors->append({{}, place + u'.' + name, unknownParameterError(columns, scope)});
    return record;
}

QList<DeviceInstancePlugin>
deviceRecords(const Plant &plant, const PluginRegistration &registration, QList<Problem> *errors)
{
    QList<DeviceInstancePlugin> records;
    for (int i = 0; i < plant.devices.size(); ++i) {
        const PlantDevice &device = plant.devices.at(i);
        const QString place = QStringLiteral("devices[%1]").arg(i);
        DeviceInstancePlugin record;
        record.id = device.id;
        record.name = device.name;
        record.ipAddress = device.ip;
        record.parameters
            = resolveParameters(device.parameters, registration.deviceColumns,
                                QStringLiteral("device"), place + u".parameters", errors);
        record.items
            = itemRecords(device.items, registration.itemColumns, place + u".items", errors);
        records.append(record);
    }
    return records;
}
