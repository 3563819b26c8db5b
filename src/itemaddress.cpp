#include "itemaddress.h"

#include "digits.h"

#include <algorithm>
#include <limits>

namespace {

bool isHexDigit(QChar character)
{
    return digitValue(character) < 16;
}

// The second number is the last one of a range when it is greater than the first, else a count.
int wordsOf(QStringView firstDigits, QStringView secondDigits)
{
    constexpr qint64 greatest = std::numeric_limits<quint32>::max();
    const qint64 first = numberOfDigits(firstDigits, 10);
    const qint64 second = numberOfDigits(secondDigits, 10);
    if (first > greatest || second > greatest || second == 0)
        return 0;
    // A number of words beyond the signed range comes out negative, like an address without one.
    return static_cast<int>(static_cast<quint32>(first < second ? second - first + 1 : second));
}

} // namespace

ItemAddress readItemAddress(const QString &text)
{
    ItemAddress address;
    address.text = text;
    const QStringView body = withoutLineFeed(text);
    const QChar *begin = body.begin();
    const QChar *end = body.end();
    const QChar *number = std::find_if(begin, end, isDecimalDigit);
    if (number == begin || !text.isValidUtf16())
        return address;

    const QChar *separator = std::find_if_not(number, end, isDecimalDigit);
    const bool hasSecond = end - separator > 1 && std::all_of(separator + 1, end, isDecimalDigit);
    // Without a decimal digit the last letter is the number, in hexadecimal.
    const QChar *hexNumber = std::min(number, end - 1);
    // The name of a device may hold points and minus signs, too; it ends at the first one.
    if (hasSecond && *separator == QLatin1Char('.')) {
        const int point = text.indexOf(QLatin1Char('.'));
        const int behind = text.indexOf(QLatin1Char('.'), point + 1);
        address.form = ItemAddress::Form::Bit;
        address.device = text.left(point);
        address.bitNo = decimalNumber<int>(text.midRef(point + 1, behind - point - 1));
    } else if (hasSecond && *separator == QLatin1Char('-')) {
        address.form = ItemAddress::Form::Words;
        address.device = text.left(text.indexOf(QLatin1Char('-')));
        address.wordCount = wordsOf({number, separator}, {separator + 1, end});
    } else if (hexNumber != begin && std::all_of(hexNumber, end, isHexDigit)) {
        address.form = ItemAddress::Form::Simple;
        address.device = text;
    }
    return address;
}
