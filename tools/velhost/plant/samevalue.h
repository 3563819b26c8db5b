#pragma once

#include <vel/databasecolumnstructure.h>

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// How two texts of an item are compared.
enum class ValueKind {
    Number,      ///< as numbers if both are decimal numbers
    Hexadecimal, ///< as hexadecimal numbers if both are
    Text         ///< character by character
};

/// The kind of an item's value. A host does not know the types, but it has the display texts that
/// the plug-in declares. One that begins with "Hexadecimal" or "ASCII" gives the kind; every other
/// item is a number.
ValueKind valueKind(const QMap<QString, QString> &parameters,
                    const QList<DatabaseColumnStructure> &columns);

/// Whether the value that was read back is the one that was written.
///
/// Equal texts are the same value. Whole numbers of any length are compared without leading zeros.
/// When either text has a point or an exponent, the numbers may differ by the rounding of the
/// read-back: half a unit of its last digit. At least five significant digits are counted, because
/// a read-back has no trailing zeros. Hexadecimal numbers are compared without leading zeros and
/// without case. Two numbers that differ by `tolerance` at most are the same value, too.
bool sameValue(const QString &written, const QString &readBack, ValueKind kind,
               double tolerance = 0);

/// The decimal number that sameValue() makes of the text; nothing if it makes none.
std::optional<double> decimalNumber(const QString &text);
