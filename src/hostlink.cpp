#include "hostlink.h"

#include "digits.h"

#include <algorithm>

namespace {

const QMap<int, QString> typeTexts = {
    {DataTypes::Bit, QStringLiteral("BIT")},
    {DataTypes::Short, QStringLiteral("Short")},
    {DataTypes::Long, QStringLiteral("Long")},
    {DataTypes::Word, QStringLiteral("Word")},
    {DataTypes::DWord, QStringLiteral("DWord")},
    {DataTypes::Hex16, QStringLiteral("Hexadecimal 16Bit")},
    {DataTypes::Hex32, QStringLiteral("Hexadecimal 32Bit")},
    {DataTypes::Float, QStringLiteral("Float")},
    {DataTypes::Double, QStringLiteral("Double")},
    {DataTypes::Ascii, QStringLiteral("ASCII")},
};

// The texts stand in logs and error fields on site, the misspelt one included: they do not change.
const QMap<Errors::Error, QString> errorTexts = {
    {Errors::Ok, QStringLiteral("OK")},
    {Errors::DataTypeNotBoolean, QStringLiteral("data type not boolean")},
    {Errors::DataTypeNotValid, QStringLiteral("data type not valid")},
    {Errors::ValueOutOfRange, QStringLiteral("value out of range")},
    {Errors::InvalidFormatForDataType, QStringLiteral("invalid format for data type")},
    {Errors::BitNumberInvalid, QStringLiteral("bit number invalid")},
    {Errors::InvalidAddress, QStringLiteral("invalid address")},
    {Errors::InvalidPort, QStringLiteral("invalid port")},
    {Errors::DataLengthInvalid, QStringLiteral("data lenght invalid")},
    {Errors::InvalidDataProvided, QStringLiteral("invalid data provided")},
    {Errors::NoDataProvided, QStringLiteral("no data provided")},
    {Errors::ProtocolError, QStringLiteral("protocol error")},
    {Errors::DataItemParametersInvalid, QStringLiteral("Data item parameters invalid")},
};

// Four decimal numbers up to 255, each of one to three digits, with points between.
bool isIpv4Address(QStringView text)
{
    const QChar *position = text.begin();
    for (int part = 0; part < 4; ++part) {
        if (part > 0 && (position == text.end() || *position++ != QLatin1Char('.')))
            return false;
        const QChar *end = std::find_if_not(position, text.end(), isDecimalDigit);
        const qint64 number = numberOfDigits({position, end}, 10);
        if (number < 0 || number > 255 || end - position > 3)
            return false;
        position = end;
    }
    return position == text.end();
}

} // namespace

QString DataTypes::typeToString(int type)
{
    return typeTexts.value(type, QStringLiteral("Unknown Data Type"));
}

int DataTypes::typeFromString(QString text)
{
    return decimalNumber<int>(text);
}

QString Errors::errorToString(Error code)
{
    return errorTexts.value(code,
                            QStringLiteral("Unknown error: ") + QString::number(UnknownError));
}

const QMap<QString, QString> Frame::commandSet = Frame::commands();

QMap<QString, QString> Frame::commands()
{
    return {
        {QStringLiteral("read"), QStringLiteral("RD")},
        {QStringLiteral("write"), QStringLiteral("WR")},
    };
}

QString Frame::getCommand(QString command, QString address, QString count, QString data)
{
    const int words = decimalNumber<int>(count);
    const bool isWrite = command == QLatin1String("write");
    if (words < 0 || count.isEmpty() || command.isEmpty() || address.isEmpty()
        || (isWrite && data.isEmpty()))
        return {};
    QString line;
    line.reserve(address.size() + count.size() + data.size() + 8);
    line += commandSet.value(command);
    if (words > 1)
        line += QLatin1Char('S');
    line += QLatin1Char(' ') + address;
    if (words > 1)
        line += QLatin1Char(' ') + count;
    if (isWrite)
        line += QLatin1Char(' ') + data;
    line += QLatin1Char('\r');
    return line;
}

Errors::Error ethernetPLC::validate(QString ip, QString port)
{
    const bool hasDigit = std::any_of(port.cbegin(), port.cend(), isDecimalDigit);
    if (!hasDigit || !port.isValidUtf16())
        return Errors::InvalidPort;
    return isIpv4Address(withoutLineFeed(ip)) ? Errors::Ok : Errors::InvalidAddress;
}
