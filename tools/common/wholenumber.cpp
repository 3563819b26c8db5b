#include <common/wholenumber.h>

#include <algorithm>

std::optional<int> wholeNumber(const QString &text, int minimum, int maximum)
{
    const bool onlyDigits = std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= u'0' && character <= u'9';
    });
    bool isInt = false;
    const int number = text.toInt(&isInt);
    const bool isRight = onlyDigits && isInt && number >= minimum && number <= maximum;
    return isRight ? std::optional(number) : std::nullopt;
}
