#include "hostlink.h"

#include <QRegularExpression>

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

const QRegularExpression
    addressExpression(QStringLiteral("^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                                     "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$"));
const QRegularExpression portExpression(QStringLiteral("\\d+"));

} // namespace

QString DataTypes::typeToString(int type)
{
    return typeTexts.value(type, QStringLiteral("Unknown Data Type"));
}

int DataTypes::typeFromString(QString text)
{
    return text.toInt();
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
    const int words = count.toInt();
    const bool isWrite = command == QLatin1String("write");
    if (words < 0 || count.isEmpty() || command.isEmpty() || address.isEmpty()
        || (isWrite && data.isEmpty()))
        return {};
    QString line = commandSet.value(command);
    if (words > 1)
        line += QLatin1Char('S');
    line += QLatin1Char(' ') + address;
    if (words > 1)
        line += QLatin1Char(' ') + count;
    if (isWrite)
        line += QLatin1Char(' ') + data;
    return line + QLatin1Char('\r');
}

Errors::Error ethernetPLC::validate(QString ip, QString port)
{
    if (!portExpression.match(port).hasMatch())
        return Errors::InvalidPort;
    if (!addressExpression.match(ip).hasMatch())
        return Errors::InvalidAddress;
    return Errors::Ok;
}
