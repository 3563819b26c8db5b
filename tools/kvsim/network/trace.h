#pragma once

#include <QByteArray>

enum class ClientEvent : char;

/// `bytes` as printable ASCII: "\r", "\n", "\\" and, for anything else outside 0x20 to 0x7E, "\x"
/// with two hexadecimal digits.
QByteArray escaped(const QByteArray &bytes);

/// The line for an event that happens now: the local time to the millisecond, the client, the
/// event's sign and the bytes.
QByteArray traceLine(const QByteArray &client, ClientEvent event, const QByteArray &bytes);
