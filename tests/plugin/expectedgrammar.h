#pragma once

#include "itemdata.h"

#include <QRegularExpression>
#include <QStringList>

#include <cmath>

// What addresses and values are by the patterns that state their grammar: the long way, with which
// what the code reads by hand is compared.

/// What an address says.
struct AddressReading
{
    ItemAddress::Form form = ItemAddress::Form::None;
    QString deviceOfBit;
    QString deviceOfWord;
    int bitNo = 16;
    int wordCount = -1;

    bool operator==(const AddressReading &other) const
    {
        return form == other.form && deviceOfBit == other.deviceOfBit
               && deviceOfWord == other.deviceOfWord && bitNo == other.bitNo
               && wordCount == other.wordCount;
    }
};

inline int expectedWordCount(const QString &address)
{
    static const QRegularExpression form(QStringLiteral("^(\\D+)(\\d+)-(\\d+)$"));
    const QRegularExpressionMatch match = form.match(address);
    if (!match.hasMatch())
        return -1;
    bool firstOk = false;
    bool secondOk = false;
    const uint first = match.captured(2).toUInt(&firstOk);
    const uint second = match.captured(3).toUInt(&secondOk);
    if (!firstOk || !secondOk || second == 0)
        return 0;
    return static_cast<int>(first < second ? second - first + 1 : second);
}

inline AddressReading expectedReading(const QString &address)
{
    static const QRegularExpression simple(ItemData::simpleAddressPattern);
    static const QRegularExpression bit(ItemData::dotAddessPattern);
    static const QRegularExpression range(ItemData::rangeAddressPattern);
    AddressReading result;
    if (bit.match(address).hasMatch()) {
        result.form = ItemAddress::Form::Bit;
        const QStringList parts = address.split(QLatin1Char('.'));
        result.deviceOfBit = parts.at(0);
        result.bitNo = parts.at(1).toInt();
    } else if (range.match(address).hasMatch()) {
        result.form = ItemAddress::Form::Words;
        result.deviceOfBit = result.deviceOfWord = address.section(QLatin1Char('-'), 0, 0);
        result.wordCount = expectedWordCount(address);
    } else if (simple.match(address).hasMatch()) {
        result.form = ItemAddress::Form::Simple;
        result.deviceOfBit = result.deviceOfWord = address;
    }
    return result;
}

inline AddressReading addressReading(const QString &address)
{
    return {readItemAddress(address).form, ItemData::getDevice(address, QStringLiteral("0")),
            ItemData::getDevice(address, QStringLiteral("1")), ItemData::getBitNo(address),
            ItemData::addressWordCount(address)};
}

inline int expectedBitNumber(const QString &address)
{
    const QStringList parts = address.split(QLatin1Char('.'));
    if (parts.size() != 2 || parts.at(1).size() > 2)
        return -1;
    const int number = parts.at(1).toUShort();
    return number < 16 ? number : -1;
}

/// What a type's values are matched with; the empty expression for a type that takes none.
inline QRegularExpression valueExpression(int dataType)
{
    static const QRegularExpression integer(ItemData::integerPattern);
    static const QRegularExpression unsignedInteger(ItemData::unsignedIntegerPattern);
    static const QRegularExpression hex(ItemData::hexPattern);
    static const QRegularExpression fraction(ItemData::floatPattern);
    static const QRegularExpression string(ItemData::stringPattern);
    switch (dataType) {
    case DataTypes::Short:
    case DataTypes::Long:
        return integer;
    case DataTypes::Word:
    case DataTypes::DWord:
        return unsignedInteger;
    case DataTypes::Hex16:
    case DataTypes::Hex32:
        return hex;
    case DataTypes::Float:
    case DataTypes::Double:
        return fraction;
    case DataTypes::Ascii:
        return string;
    default:
        return {};
    }
}

inline bool isWithinType(int dataType, qint64 number)
{
    switch (dataType) {
    case DataTypes::Short:
        return number == static_cast<qint16>(number);
    case DataTypes::Long:
        return number == static_cast<qint32>(number);
    case DataTypes::Word:
    case DataTypes::Hex16:
        return number == static_cast<quint16>(number);
    default:
        return number == static_cast<quint32>(number);
    }
}

/// The number of words as text, or an empty text when there is none or the value has no room.
inline QString expectedDataLength(const QString &value, int dataType, const QString &length)
{
    static const QStringList words = QStringLiteral("0 1 2 1 2 1 2 2 4").split(QLatin1Char(' '));
    if (dataType != DataTypes::Ascii)
        return words.value(dataType);
    const double needed = std::ceil(static_cast<double>(static_cast<float>(value.size()) / 2.0F));
    return needed > length.toUInt() ? QString() : length;
}

inline Errors::Error expectedCheck(const QString &value, int dataType, const QString &length)
{
    const bool isWhole = valueExpression(dataType).match(value).captured() == value;
    if (dataType >= DataTypes::Short && dataType <= DataTypes::Hex32) {
        const bool isHex = dataType == DataTypes::Hex16 || dataType == DataTypes::Hex32;
        bool isNumber = false;
        const qint64 number = value.toLongLong(&isNumber, isHex ? 16 : 10);
        const bool isMinusZero = number == 0 && value.startsWith(QLatin1Char('-'));
        return isNumber && isWhole && !isMinusZero && isWithinType(dataType, number)
                   ? Errors::Ok
                   : Errors::ValueOutOfRange;
    }
    if (expectedDataLength(value, dataType, length).isEmpty())
        return Errors::DataLengthInvalid;
    return isWhole ? Errors::Ok : Errors::InvalidFormatForDataType;
}

/// What the check of an item says, with the type as its record has it.
inline Errors::Error expectedValidation(const QString &address, const QString &dataType,
                                        const QString &value, const QString &length)
{
    static const QRegularExpression bitValue(ItemData::bitPattern);
    const int type = dataType.toUShort();
    const AddressReading reading = expectedReading(address);
    if (reading.form == ItemAddress::Form::Bit) {
        const bool isBit = value.isEmpty() || bitValue.match(value).hasMatch();
        if (type == DataTypes::Bit && (reading.deviceOfBit.isEmpty() || !isBit))
            return Errors::DataTypeNotBoolean;
        if (reading.bitNo >= 16 || expectedBitNumber(address) < 0)
            return Errors::BitNumberInvalid;
    }
    const bool isAscii = type == DataTypes::Ascii;
    if (reading.wordCount < 0) {
        if (isAscii)
            return Errors::DataLengthInvalid;
        if (reading.form != ItemAddress::Form::Simple || value.isEmpty())
            return Errors::Ok;
        return expectedCheck(value, type, expectedDataLength(value, type, length));
    }
    if (!isAscii)
        return Errors::InvalidAddress;
    if (reading.wordCount == 0)
        return Errors::DataLengthInvalid;
    return value.isEmpty() ? Errors::Ok
                           : expectedCheck(value, type, QString::number(reading.wordCount));
}
