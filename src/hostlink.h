#pragma once

#include <QMap>
#include <QString>

#include <array>

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

/// Every type that is offered to the user, in this order. The last entry is offered too.
inline constexpr std::array<int, 11> types = {
    Bit, Short, Long, Word, DWord, Hex16, Hex32, Float, Double, Ascii, UnknownType,
};

/// The text under which a type is offered to the user; "Unknown Data Type" for every number outside
/// 0 to 9.
QString typeToString(int type);

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

/// The text of a code. A number above the last code gives the text of `UnknownError`, whose number
/// it shows.
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
    /// makes the continuous form
    /// ("RDS D200 10\r"), everything else the single form without a count ("RD D100\r").
    ///
    /// The result is empty when the request is incomplete: a negative or empty count, no operation,
    /// no address, a write without data.
    static QString getCommand(QString command, QString address, QString count, QString data);
};

/// What is known of a controller's end point before anything is connected.
class ethernetPLC
{
public:
    /// Checks the texts of an address (four decimal numbers up to 255, leading zeros allowed) and a
    /// port (at least one digit anywhere). A bad port wins over a bad address.
    static Errors::Error validate(QString ip, QString port);
};
