#pragma once

#include <QByteArray>

#include <optional>

/// The value of `text`, digits of `base` (10 or 16, upper case) and nothing else: no sign, no
/// blank, no prefix. Leading zeros are fine. Nothing when it is no such text or over 32 bits.
std::optional<quint32> parseNumber(const QByteArray &text, int base);

/// The same for decimal digits, if the value is from `minimum` to `maximum`.
std::optional<quint32> parseDecimal(const QByteArray &text, quint32 minimum, quint32 maximum);
