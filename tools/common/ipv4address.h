#pragma once

#include <QString>

#include <optional>

/// The address in the text: four numbers from 0 to 255 with dots between. Leading zeros are
/// refused, because the system reads such a number as octal. Nothing when the text is no such
/// address.
std::optional<quint32> ipv4Address(const QString &text);

/// Whether the text is four numbers from 0 to 255 with dots between. Up to three digits a number
/// may have leading zeros: the plug-in accepts such addresses.
bool isDottedQuad(const QString &text);

/// Whether the text is a dotted quad in 127.0.0.0/8. A host name or a short form counts as not
/// loopback, because it is not resolved here.
bool isLoopback(const QString &text);
