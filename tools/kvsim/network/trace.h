#pragma once

#include <QByteArray>

class QDateTime;

/// `bytes` as printable ASCII: "\r", "\n", "\\" and, for anything else outside 0x20 to 0x7E, "\x"
/// with two hexadecimal digits.
QByteArray escaped(const QByteArray &bytes);

/// The lines for one exchange: the command after '>', the fault that was applied, if any, after
/// '!', the answer, if there is one, after '<'; each with the time to the millisecond and the
/// client.
QByteArray traceText(const QDateTime &time, const QByteArray &client, const QByteArray &command,
                     const QByteArray &answer, const QByteArray &fault);
