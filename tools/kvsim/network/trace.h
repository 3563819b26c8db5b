#pragma once

#include <QByteArray>

class QDateTime;

enum class ClientEvent : char;

/// `bytes` as printable ASCII: "\r", "\n", "\\" and, for anything else outside 0x20 to 0x7E, "\x"
/// with two hexadecimal digits.
QByteArray escaped(const QByteArray &bytes);

/// The time on the clock on the wall, though it says to be UTC. QDateTime::currentDateTime() looks
/// at the file of the time zone, several times a call.
QDateTime localTime();

/// The line for an event: the time to the millisecond, the client, the event's sign and the bytes.
QByteArray traceLine(const QDateTime &time, const QByteArray &client, ClientEvent event,
                     const QByteArray &bytes);
