#include "hostlink.h"

namespace {

struct TypeRow
{
    QString text;
    DataTypes::Traits traits;
};

template<typename Number>
DataTypes::Traits wholeNumber(const QString &words, int base)
{
    using Limits = std::numeric_limits<Number>;
    return {words, base, Limits::min(), Limits::max()};
}

const QMap<int, TypeRow> typeRows = {
    {DataTypes::Bit, {QStringLiteral("BIT"), {QStringLiteral("0")}}},
    {DataTypes::Short, {QStringLiteral("Short"), wholeNumber<qint16>(QStringLiteral("1"), 10)}},
    {DataTypes::Long, {QStringLiteral("Long"), wholeNumber<qint32>(QStringLiteral("2"), 10)}},
    {DataTypes::Word, {QStringLiteral("Word"), wholeNumber<quint16>(QStringLiteral("1"), 10)}},
    {DataTypes::DWord, {QStringLiteral("DWord"), wholeNumber<quint32>(QStringLiteral("2"), 10)}},
    {DataTypes::Hex16,
     {QStringLiteral("Hexadecimal 16Bit"), wholeNumber<quint16>(QStringLiteral("1"), 16)}},
    {DataTypes::Hex32,
     {QStringLiteral("Hexadecimal 32Bit"), wholeNumber<quint32>(QStringLiteral("2"), 16)}},
    {DataTypes::Float, {QStringLiteral("Float"), {QStringLiteral("2")}}},
    {DataTypes::Double, {QStringLiteral("Double"), {QStringLiteral("4")}}},
    {DataTypes::Ascii, {QStringLiteral("ASCII"), {}}},
};

// Installations have these texts in logs and error fields, so none may change, not even the
// misspelt one.
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
    return typeRows.value(type, {QStringLiteral("Unknown Data Type"), {}}).text;
}

const DataTypes::Traits &DataTypes::traits(int type)
{
    static const Traits none;
    const auto row = typeRows.constFind(type);
    return row != typeRows.constEnd() ? row->traits : none;
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
