#pragma once

#include "hostlink.h"

#include <QByteArray>
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

/// The checks and the conversions of a data item, without a connection.
/// The controller's unit is the unsigned 16-bit word; a text of data words holds decimal numbers
/// separated by single blanks, the least significant word first.
///
/// Nothing here fails: checks return a code, conversions turn what they cannot read into 0 or an
/// empty text.
class ItemData
{
public:
    static inline const QString lettersPattern = QStringLiteral("(\\D)+");
    static inline const QString hexPattern = QStringLiteral("^[0-9a-fA-F]+$");
    static inline const QString floatPattern = QStringLiteral("^[-+]?[0-9]*\\.?[0-9]+$");
    static inline const QString integerPattern = QStringLiteral("-?\\d+");
    static inline const QString unsignedIntegerPattern = QStringLiteral("\\d+");
    static inline const QString simpleAddressPattern = QStringLiteral("^\\D+[0-9a-fA-F]+$");
    static inline const QString dotAddessPattern = QStringLiteral("^\\D+[0-9]+\\.[0-9]+$");
    static inline const QString rangeAddressPattern = QStringLiteral("^\\D+[0-9]+-[0-9]+$");
    static inline const QString bitPattern = QStringLiteral("^[0-1]$");
    static inline const QString stringPattern = QStringLiteral(".*");

    /// Decides whether an item may be read or written. `dataType` is the decimal text of the type's
    /// number (other text counts as 0), `value` the value to write, empty for a read, `length` what
    /// effectiveDataLength() gave for the address.
    ///
    /// An address that fits no form is accepted: getDevice() then finds no device in it.
    static Errors::Error validateItemFields(QString address, QString dataType, QString value,
                                            QString length);

    /// The same for an address that has been read, and the number of the type.
    static Errors::Error validateItemFields(const ItemAddress &address, int dataType,
                                            const QString &value, const QString &length);

    /// Checks a value to be written against its type's range and form. `length` is the number of
    /// words (for ASCII the room that the value must fit into, two characters a word).
    static Errors::Error checkDataForItem(QString value, int dataType, QString length);

    /// The device of an address as the controller spells it, without bit, count or range; empty
    /// when the address fits no form, or is a bit address and the type is not `Bit`.
    static QString getDevice(QString address, QString dataType);
    static QString getDevice(const ItemAddress &address, int dataType);

    /// The number after the point of a bit address, whatever its size; 16 for any other address.
    static int getBitNo(QString address);

    /// The number of words of a count or range form, 0 when its numbers cannot be used, a negative
    /// number for any other address.
    static int addressWordCount(QString address);

    /// The number of words to transfer, as text: the size of the type, for ASCII `length`. Empty
    /// when an ASCII value has more than two characters a word, or the type is unknown.
    static QString getDataLength(QString value, int dataType, QString length);

    /// The number of words that the address states, as text, or empty when it states none.
    static QString effectiveDataLength(QString address);
    static QString effectiveDataLength(const ItemAddress &address);

    /// The user's value of a controller's answer: text, for ASCII the raw characters with their
    /// zero bytes.
    static QByteArray getUserData(QString data, int dataType, QString address);

    /// The user's value as text, of the answer's bytes in UTF-8. ASCII ends at its first zero byte.
    static QString getUserText(const QByteArray &answer, int dataType, const QString &address);

    /// The data words to write for a user's value. For `Bit`, `value` is the current word and
    /// `bitValue` the bit: 0 (also for text that is no number up to 65535) clears, any other number
    /// sets. For all other types `bitValue` is not used.
    static QString getPlcValue(QString value, int dataType, QString address, QString bitValue);

    /// The word with the addressed bit cleared (`bitValue` 0) or set (any other number), in
    /// decimal. An address without a bit from 0 to 15 leaves the word as it is.
    static QString getBoolInt(QString bitValue, QString word, QString address);

    /// Data words as one upper-case hexadecimal number, most significant word first, at least four
    /// digits a word.
    static QString arrayToHex(QString data);

    /// A decimal number of up to 64 bits as data words, without leading zero words.
    static QString decimalToArray(QString decimal);

    /// The word with the bit set, with the bit cleared, and whether the bit is set. The bit's
    /// number is the low 8 bits of `bit`; 16 to 255 address no bit.
    static unsigned short bitSet(unsigned short value, unsigned short bit)
    {
        return static_cast<unsigned short>(value | bitMask(bit));
    }
    static unsigned short bitClear(unsigned short value, unsigned short bit)
    {
        return static_cast<unsigned short>(value & ~bitMask(bit));
    }
    static bool bitCheck(unsigned short value, unsigned short bit)
    {
        return (value & bitMask(bit)) != 0;
    }

private:
    static unsigned int bitMask(unsigned short bit)
    {
        const unsigned int count = bit & 0xFFU;
        return count < 16 ? 1U << count : 0U;
    }
};

/// The bit of an address with exactly one point: 0 to 15, or -1 when the part after the point has
/// three or more characters or is a greater number. Text that is no number reads as 0.
int getBitNumber(QString address);
