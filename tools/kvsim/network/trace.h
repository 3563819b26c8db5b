#pragma once

#include <QByteArray>

class QDateTime;

/// `bytes` as printable ASCII: "\r", "\n", "\\" and, for anything else outside 0x20 to 0x7E, "\x"
/// with two hexadecimal digits.
QByteArray escaped(const QByteArray &bytes);

/// The time on the clock on the wall, though it says to be UTC. QDateTime::currentDateTime() looks
/// at the file of the time zone, several times a call.
QDateTime localTime();

/// The lines for one exchange: the command after '>', the fault that was applied, if any, after
/// '!', the answer, if there is one, after '<'; each with the time to the millisecond and the
/// client.
QByteArray traceText(const QDateTime &time, const QByteArray &client, const QByteArray &command,
                     const QByteArray &answer, const QByteArray &fault);
