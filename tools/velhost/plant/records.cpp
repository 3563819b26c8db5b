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

QString unknownParameterError(const QList<Column> &columns, const QString &scope)
{
    QStringList names;
    for (const Column &column : columns)
        names.append(column.name);
    return QStringLiteral("the plug-in declares no such %1 parameter; it declares: %2")
        .arg(scope, names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", ")));
}

/// Sets the parameters in the record as resolveParameters() does, those that are given alone.
void setParameters(const ParameterTexts &parameters, const QList<Column> &columns,
                   const QString &scope, const QString &place, QList<Problem> *errors,
                   QMap<QString, QString> *record)
{
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter) {
        const QString &name = parameter.key();
        const std::optional<QString> &text = parameter.value();
        const QString parameterPlace = place + u'.' + name;
        record->remove(name);
        const Column *const column = columnNamed(name, columns);
        if (column == nullptr)
            errors->append({{}, parameterPlace, unknownParameterError(columns, scope)});
        else if (const auto value = text ? valueFor(*text, *column) : std::nullopt)
            record->insert(name, *value);
        else if (text)
            errors->append({{}, parameterPlace, notOfferedError(*text, *column)});
    }
}

QList<ItemInstancePlugin> itemRecords(const PlantDevice &device, const QList<Column> &columns,
                                      QList<Problem> *errors)
{
    const QString scope = QStringLiteral("item");
    const QMap<QString, QString> defaults = resolveParameters(
        device.itemDefaults, columns, scope, device.place + u".itemDefaults", errors);
    QList<ItemInstancePlugin> records;
    for (const PlantItem &item : device.items) {
        ItemInstancePlugin record;
        record.name = item.name;
        record.parameters = defaults;
        setParameters(item.parameters, columns, scope, item.place + u".parameters", errors,
                      &record.parameters);
        records.append(record);
    }
    return records;
}

} // namespace

const DatabaseColumnStructure *columnNamed(const QString &name,
                                           const QList<DatabaseColumnStructure> &columns)
{
    const auto column = std::find_if(columns.begin(), columns.end(), [&](const Column &candidate) {
        return candidate.name == name;
    });
    return column == columns.end() ? nullptr : &*column;
}

QMap<QString, QString> resolveParameters(const ParameterTexts &parameters,
                                         const QList<DatabaseColumnStructure> &columns,
                                         const QString &scope, const QString &place,
                                         QList<Problem> *errors)
{
    QMap<QString, QString> record;
    for (const Column &column : columns)
        record.insert(column.name, column.defaultValue);
    setParameters(parameters, columns, scope, place, errors, &record);
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
