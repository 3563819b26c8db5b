#include <common/wholenumber.h>

#include <algorithm>

std::optional<int> wholeNumber(const QString &text, int minimum, int maximum)
{
    const bool onlyDigits = std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    });
    bool isInt = false;
    const int number = text.toInt(&isInt);
    const bool isRight = onlyDigits && isInt && number >= minimum && number <= maximum;
    return isRight ? std::optional(number) : std::nullopt;
}
