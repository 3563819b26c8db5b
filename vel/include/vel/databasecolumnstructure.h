#pragma once

#include <QList>
#include <QString>

#include <utility>

/// One parameter column that a plug-in declares. The host shows it to the user as an input field of
/// a device or an item. It stores the input in the record's parameter map under the column's name.
class DatabaseColumnStructure
{
public:
    /// The host's type codes. Only the three that this plug-in declares are known, by number.
    enum DataType { Type0 = 0, Type2 = 2, Type8 = 8 };

    /// One entry of a selection: what the user sees and what the parameter map then holds.
    struct SelectionValue
    {
        QString text;
        QString value;
    };

    DatabaseColumnStructure() = default;

    DatabaseColumnStructure(QString columnName, DataType dataType, int columnInt,
                            QString columnDefault, QString columnDescription)
        : name(std::move(columnName)), type(dataType), intValue(columnInt),
          defaultValue(std::move(columnDefault)), description(std::move(columnDescription))
    {
    }

    /// Appends one entry to the selection; the host shows them in call order.
    void insertSelectionValues(QString text, QString value)
    {
        selectionValues.append({std::move(text), std::move(value)});
    }

    QString name;
    DataType type = Type0;
    /// The host's second code of the column (0, 3, 64 and 256 are used); its meaning is the host's.
    int intValue = 0;
    QString defaultValue;
    QString description;
    QList<SelectionValue> selectionValues;
};
