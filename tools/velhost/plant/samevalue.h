#pragma once

#include <vel/databasecolumnstructure.h>

#include <QList>
#include <QMap>
#include <QString>

/// How two texts of an item are compared.
enum class ValueKind {
    Number,      ///< as numbers where both are plain ones
    Hexadecimal, ///< as hexadecimal numbers where both are
    Text         ///< character by character
};

/// The kind of an item's value. A host knows no types, but it has the display texts that the
/// plug-in declares: an item for which one that begins with "Hexadecimal" or "ASCII" is chosen is
/// of that kind, every other one is a number.
ValueKind valueKind(const QMap<QString, QString> &parameters,
                    const QList<DatabaseColumnStructure> &columns);

/// Whether the value that was read back is the one that was written.
///
/// Equal texts always are. Whole numbers are equal without their leading zeros, however long. A
/// number with a point or an exponent on either side may differ by the rounding of the read-back:
/// half a unit of its last digit, counting five significant digits at least because a read-back
/// loses its trailing zeros. Hexadecimal numbers are equal without leading zeros, in either case.
bool sameValue(const QString &written, const QString &readBack, ValueKind kind);
