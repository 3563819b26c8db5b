#pragma once

#include <QMap>
#include <QString>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

/// The data types of an item. The host stores a type as the decimal text of its number.
namespace DataTypes {

enum Type : int {
    Bit = 0,
    Short = 1,
    Long = 2,
    Word = 3,
    DWord = 4,
    Hex16 = 5,
    Hex32 = 6,
    Float = 7,
    Double = 8,
    Ascii = 9,
    UnknownType = 10,
};

/// Every type that is offered to the user, in this order; `UnknownType` is one of them.
inline constexpr std::array<int, 11> types = {
    Bit, Short, Long, Word, DWord, Hex16, Hex32, Float, Double, Ascii, UnknownType,
};

/// The text under which a type is offered to the user; "Unknown Data Type" for every number outside
/// 0 to 9.
QString typeToString(int type);

/// What is known of a type's values.
struct Traits
{
    /// The size in words; empty where the address states it.
    QString words;
    /// The base of whole numbers; 0 for a type whose values are none.
    int base = 0;
    /// What a whole number may be.
    qint64 minimum = 0;
    qint64 maximum = 0;
};

/// Those of a type; empty and 0 for every number outside 0 to 9.
const Traits &traits(int type);

/// Reads the stored number of a type, not its name: "7" gives 7. Text that is not a decimal number
/// gives 0, any other number is returned as it is.
int typeFromString(QString text);

} // namespace DataTypes

/// The result codes of validation and exchange, each with the text under which it reaches the host.
namespace Errors {

enum Error : unsigned int {
    /// Nothing is wrong.
    Ok = 0,
    /// A bit is to become neither "0" nor "1", or its address names no device.
    DataTypeNotBoolean = 1,
    /// Not reported.
    DataTypeNotValid = 2,
    /// The value lies outside its type's range, or is no whole number.
    ValueOutOfRange = 3,
    /// The value is not written as its type demands.
    InvalidFormatForDataType = 4,
    /// The bit is not one of 0 to 15, or is written with more than two characters.
    BitNumberInvalid = 5,
    /// The device has no IPv4 address, the item's address does not go with its type, or the
    /// controller refused the command.
    InvalidAddress = 6,
    /// The device's port is a text without a digit.
    InvalidPort = 7,
    /// The address states no usable number of words for ASCII, or the value has no room in them.
    DataLengthInvalid = 8,
    /// Not reported.
    InvalidDataProvided = 9,
    /// Not reported.
    NoDataProvided = 10,
    /// Not reported.
    ProtocolError = 11,
    /// The item's parameters do not make a command.
    DataItemParametersInvalid = 12,
    /// Any number that is none of the codes.
    UnknownError = 13,
};

/// The text of a code. A number above the last code gives the text of `UnknownError`, which has
/// that code's own number in it.
QString errorToString(Error code);

} // namespace Errors

/// Builds the lines of the controllers' Host Link protocol: ASCII fields separated by one blank,
/// ended by one carriage return.
class Frame
{
public:
    /// The operations and their mnemonics: "read" is "RD", "write" is "WR".
    static QMap<QString, QString> commands();

    static const QMap<QString, QString> commandSet;

    /// The line for an operation on `count` consecutive words (decimal text) from the device
    /// `address` on; `data` holds the words of a write, separated by blanks. More than one word
    /// makes the continuous form ("RDS D200 10\r"), everything else the single form without a count
    /// ("RD D100\r").
    ///
    /// The result is empty when the request is incomplete: a negative or empty count, no operation,
    /// no address, a write without data.
    static QString getCommand(QString command, QString address, QString count, QString data);
};

/// The check of a controller's end point, without a connection.
class ethernetPLC
{
public:
    /// Checks the texts of an address (four decimal numbers up to 255, leading zeros allowed) and a
    /// port (at least one digit anywhere). If both are bad, the port is reported.
    static Errors::Error validate(QString ip, QString port);
};

// Whole numbers and their texts, without the detour through a locale.

/// The text without the one final line feed that counts for nothing at the end of a pattern.
inline QStringView withoutLineFeed(QStringView text)
{
    return text.endsWith(QLatin1Char('\n')) ? text.chopped(1) : text;
}

/// The value of a digit: 0 to 9, or in either case A to F; 16 for any other character, also for the
/// digits of other scripts.
constexpr int digitValue(QChar character)
{
    const int code = character.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    const int lowerCase = code | 0x20;
    return lowerCase >= 'a' && lowerCase <= 'f' ? lowerCase - 'a' + 10 : 16;
}

/// Whether the character is a digit of decimal numbers.
constexpr bool isDecimalDigit(QChar character)
{
    return digitValue(character) < 10;
}

/// The number that the digits of a base make. Text that is empty or not only digits gives -1, a
/// number beyond 32 bits gives the first one beyond.
inline qint64 numberOfDigits(QStringView text, int base)
{
    constexpr qint64 firstBeyond = qint64(std::numeric_limits<quint32>::max()) + 1;
    qint64 number = text.isEmpty() ? -1 : 0;
    for (const QChar character : text) {
        const int digit = digitValue(character);
        if (digit >= base)
            return -1;
        number = std::min(number * base + digit, firstBeyond);
    }
    return number;
}

/// What QString::toInt() and its like make of a text: 0 when it is no number of that type. Nearly
/// every text is plain digits; what else can be a number, Qt knows.
template<typename Number>
Number decimalNumber(QStringView text)
{
    static_assert(sizeof(Number) <= sizeof(quint32));
    qint64 number = numberOfDigits(text, 10);
    if (number < 0)
        number = text.toString().toLongLong();
    using Limits = std::numeric_limits<Number>;
    const bool fits = number >= Limits::min() && number <= Limits::max();
    return fits ? static_cast<Number>(number) : Number(0);
}

/// What QString::number() makes of a number.
inline QString decimalText(qint64 number)
{
    std::array<char, std::numeric_limits<qint64>::digits10 + 2> text;
    const auto result = std::to_chars(text.begin(), text.end(), number);
    return QString::fromLatin1(text.data(), static_cast<int>(result.ptr - text.data()));
}
