#pragma once

#include <QString>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

// Whole numbers and their texts, without the detour through a locale.

/// The text without the one final line feed that counts for nothing at the end of a pattern.
inline QStringView withoutLineFeed(QStringView text)
{
    return text.endsWith(QLatin1Char('\n')) ? text.chopped(1) : text;
}

/// The value of a digit: 0 to 9, or in either case A to F; 16 for any other character, also for the
/// digits of other scripts.
constexpr int digitValue(QChar character)
{
    const int code = character.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    const int lowerCase = code | 0x20;
    return lowerCase >= 'a' && lowerCase <= 'f' ? lowerCase - 'a' + 10 : 16;
}

/// Whether the character is a digit of decimal numbers.
constexpr bool isDecimalDigit(QChar character)
{
    return digitValue(character) < 10;
}

/// The number that the digits of a base make. Text that is empty or not only digits gives -1, a
/// number beyond 32 bits gives the first one beyond.
inline qint64 numberOfDigits(QStringView text, int base)
{
    constexpr qint64 firstBeyond = qint64(std::numeric_limits<quint32>::max()) + 1;
    qint64 number = text.isEmpty() ? -1 : 0;
    for (const QChar character : text) {
        const int digit = digitValue(character);
        if (digit >= base)
            return -1;
        number = std::min(number * base + digit, firstBeyond);
    }
    return number;
}

/// What QString::toInt() and its like make of a text: 0 when it is no number of that type. Nearly
/// every text is plain digits; what else can be a number, Qt knows.
template<typename Number>
Number decimalNumber(QStringView text)
{
    static_assert(sizeof(Number) <= sizeof(quint32));
    qint64 number = numberOfDigits(text, 10);
    if (number < 0)
        number = text.toString().toLongLong();
    using Limits = std::numeric_limits<Number>;
    const bool fits = number >= Limits::min() && number <= Limits::max();
    return fits ? static_cast<Number>(number) : Number(0);
}

/// What QString::number() makes of a number.
inline QString decimalText(qint64 number)
{
    std::array<char, std::numeric_limits<qint64>::digits10 + 2> text;
    const auto result = std::to_chars(text.begin(), text.end(), number);
    return QString::fromLatin1(text.data(), static_cast<int>(result.ptr - text.data()));
}
