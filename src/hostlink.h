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
    Ok = 0,
    DataTypeNotBoolean = 1,
    DataTypeNotValid = 2,
    ValueOutOfRange = 3,
    InvalidFormatForDataType = 4,
    BitNumberInvalid = 5,
    InvalidAddress = 6,
    InvalidPort = 7,
    DataLengthInvalid = 8,
    InvalidDataProvided = 9,
    NoDataProvided = 10,
    ProtocolError = 11,
    DataItemParametersInvalid = 12,
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
