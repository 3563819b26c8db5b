#pragma once

#include <QString>

#include <optional>

/// The address that the text names: four numbers from 0 to 255, with dots between and without
/// leading zeros, because the system reads a number with one as octal. Nothing when it is another
/// text.
std::optional<quint32> ipv4Address(const QString &text);

/// Whether the text is four numbers from 0 to 255 with dots between. A number may have leading
/// zeros up to three digits, as in what the plug-in takes for an address.
bool isDottedQuad(const QString &text);

/// Whether the address is of this machine's own network, 127.0.0.0/8.
bool isLoopback(quint32 address);

/// As above, judged by the text alone and narrowly: a name or a short form is not surely loopback.
bool isLoopback(const QString &text);
