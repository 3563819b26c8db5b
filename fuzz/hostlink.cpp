// Command lines, end points and numbers. The fields: command, address, count, data, IP address,
// port.

#include "hostlink.h"
#include "input.h"
#include "require.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

const QRegularExpression ipv4(QStringLiteral("^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                                             "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$"));
const QRegularExpression digit(QStringLiteral("\\d+"));

struct Request
{
    QString command;
    QString address;
    QString count;
    QString data;
};

QString expectedLine(const Request &request)
{
    const bool isWrite = request.command == QLatin1String("write");
    const int words = request.count.toInt();
    if (words < 0 || request.count.isEmpty() || request.command.isEmpty()
        || request.address.isEmpty() || (isWrite && request.data.isEmpty()))
        return {};
    const bool isMore = words > 1;
    QStringList fields{Frame::commands().value(request.command) + QLatin1String(isMore ? "S" : ""),
                       request.address};
    if (isMore)
        fields.append(request.count);
    if (isWrite)
        fields.append(request.data);
    return fields.join(QLatin1Char(' ')) + QLatin1Char('\r');
}

void checkLine(const Request &request)
{
    const QString line
        = Frame::getCommand(request.command, request.address, request.count, request.data);
    requireSame(line, expectedLine(request), "a command line has its fields in order");
    const QString fields = request.address + request.count + request.data;
    if (line.isEmpty() || fields.contains(QLatin1Char('\r')))
        return;
    require(line.count(QLatin1Char('\r')) == 1, "a command line has one carriage return");
    require(line.endsWith(QLatin1Char('\r')), "a command line ends with its carriage return");
}

void checkNumbers(const QString &text)
{
    requireSame(DataTypes::typeFromString(text), text.toInt(), "a type is read as Qt does");
    requireSame(decimalNumber<qint16>(text), text.toShort(), "a qint16 is read as Qt does");
    requireSame(decimalNumber<quint16>(text), text.toUShort(), "a quint16 is read as Qt does");
    requireSame(decimalNumber<quint32>(text), text.toUInt(), "a quint32 is read as Qt does");
    requireSame(decimalText(text.toLongLong()), QString::number(text.toLongLong()),
                "a number is written as Qt does");
}

void checkEndPoint(const QString &ip, const QString &port)
{
    const Errors::Error ofAddress = ipv4.match(ip).hasMatch() ? Errors::Ok : Errors::InvalidAddress;
    requireSame(ethernetPLC::validate(ip, port),
                digit.match(port).hasMatch() ? ofAddress : Errors::InvalidPort,
                "an end point is judged as its patterns say");
}

} // namespace

void check(Input input)
{
    const Request request{input.text(), input.text(), input.text(), input.text()};
    checkLine(request);
    checkNumbers(request.count);
    const QString ip = input.text();
    checkEndPoint(ip, input.text());
}
