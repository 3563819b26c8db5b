#pragma once

#include <QByteArray>

class QDateTime;
class QHostAddress;

/// `bytes` as printable ASCII: "\r", "\n", "\\" and, for anything else outside 0x20 to 0x7E, "\x"
/// with two hexadecimal digits.
QByteArray escaped(const QByteArray &bytes);

/// "127.0.0.1:8501"; an IPv6 address stands in square brackets.
QByteArray endpointText(const QHostAddress &address, quint16 port);

/// The lines for one exchange: the command after '>', the fault that was applied, if any, after
/// '!', the answer, if there is one, after '<'; each with the time to the millisecond and the
/// client.
QByteArray traceText(const QDateTime &time, const QByteArray &client, const QByteArray &command,
                     const QByteArray &answer, const QByteArray &fault);
