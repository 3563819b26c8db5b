#pragma once

#include <QString>

/// The address of an item, read once. Addresses are "D201" (simple), "DM100.3" (bit 3 of a word),
/// "D200-10" (10 words: the second number is not greater than the first) and "D200-209" (D200
/// through D209).
struct ItemAddress
{
    enum class Form { None, Simple, Bit, Words };

    QString text;
    Form form = Form::None;
    /// As the controller spells it, without bit, count or range; empty when there is no form.
    QString device;
    /// The number after the point of a bit address, whatever its size; 16 for any other address.
    int bitNo = 16;
    /// The words of a count or range, 0 when its numbers cannot be used; negative for any other
    /// address.
    int wordCount = -1;
};

/// Reads an address by the grammar that the patterns of `ItemData` state. That holds for every
/// text: a final line feed counts for nothing, digits are 0 to 9 alone, and text that is no valid
/// UTF-16 has no form.
ItemAddress readItemAddress(const QString &text);
