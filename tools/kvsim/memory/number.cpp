#include "memory/number.h"

#include <algorithm>

std::optional<quint32> parseNumber(const QByteArray &text, int base)
{
    // QByteArray alone would take blanks, signs, "0x" and lower case too.
    const auto isDigit
        = [base](char c) { return (c >= '0' && c <= '9') || (base == 16 && c >= 'A' && c <= 'F'); };
    if (!std::all_of(text.cbegin(), text.cend(), isDigit))
        return std::nullopt;

    bool ok = false;
    const quint32 number = text.toUInt(&ok, base);
    return ok ? std::make_optional(number) : std::nullopt;
}

std::optional<quint32> parseDecimal(const QByteArray &text, quint32 minimum, quint32 maximum)
{
    const std::optional<quint32> number = parseNumber(text, 10);
    return number && *number >= minimum && *number <= maximum ? number : std::nullopt;
}
