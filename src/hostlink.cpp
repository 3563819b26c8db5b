#include "hostlink.h"

#include <QRegularExpression>

#include <cstddef>

namespace {

// Indexed by the type's number.
const std::array<QString, 10> typeTexts = {
    QStringLiteral("BIT"),
    QStringLiteral("Short"),
    QStringLiteral("Long"),
    QStringLiteral("Word"),
    QStringLiteral("DWord"),
    QStringLiteral("Hexadecimal 16Bit"),
    QStringLiteral("Hexadecimal 32Bit"),
    QStringLiteral("Float"),
    QStringLiteral("Double"),
    QStringLiteral("ASCII"),
};

// Indexed by the code. The texts stand in logs and error fields on site, the misspelt one included:
// they do not change.
const std::array<QString, 13> errorTexts = {
    QStringLiteral("OK"),
    QStringLiteral("data type not boolean"),
    QStringLiteral("data type not valid"),
    QStringLiteral("value out of range"),
    QStringLiteral("invalid format for data type"),
    QStringLiteral("bit number invalid"),
    QStringLiteral("invalid address"),
    QStringLiteral("invalid port"),
    QStringLiteral("data lenght invalid"),
    QStringLiteral("invalid data provided"),
    QStringLiteral("no data provided"),
    QStringLiteral("protocol error"),
    QStringLiteral("Data item parameters invalid"),
};

const QRegularExpression
    addressExpression(QStringLiteral("^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                                     "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$"));
const QRegularExpression portExpression(QStringLiteral("\\d+"));

} // namespace

QString DataTypes::typeToString(int type)
{
    const auto index = static_cast<std::size_t>(type);
    return index < typeTexts.size() ? typeTexts.at(index) : QStringLiteral("Unknown Data Type");
}

int DataTypes::typeFromString(QString text)
{
    return text.toInt();
}

QString Errors::errorToString(Error code)
{
    return code < errorTexts.size()
               ? errorTexts.at(code)
               : QString(QStringLiteral("Unknown error: ") + QString::number(UnknownError));
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
