#include "plant/samevalue.h"

#include "plant/records.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

constexpr int minimumDigits = 5;
/// The relative rounding error of the storage: a 32-bit float, which reads back with few digits, or
/// a 64-bit one. It matters for a value in the middle between two texts.
constexpr double floatError = 6e-8;
constexpr double doubleError = 1e-15;

/// The parts of a number's text.
struct Number
{
    bool isValid = false;
    bool isWhole = false;
    /// Sign and digits without leading zeros; for a whole number only.
    QString canonical;
    int significantDigits = 0;
    double value = 0;
};

QString withoutLeadingZeros(const QString &digits)
{
    int zeros = 0;
    while (zeros < digits.size() - 1 && digits.at(zeros) == u'0')
        ++zeros;
    return digits.mid(zeros);
}

Number parseNumber(const QString &text)
{
    // The exponent must have a sign, as programs print it: 1E5 may be hexadecimal.
    static const QRegularExpression form(
        QStringLiteral("\\A(-?)([0-9]+)(?:\\.([0-9]+))?([eE][+-][0-9]{1,3})?\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    const QString fraction = match.captured(3);
    const QString digits = withoutLeadingZeros(match.captured(2));
    Number number;
    number.isValid = true;
    number.isWhole = fraction.isEmpty() && match.captured(4).isEmpty();
    number.canonical = digits == u"0" ? digits : QString(match.captured(1) + digits);
    number.significantDigits = withoutLeadingZeros(match.captured(2) + fraction).size();
    number.value = text.toDouble();
    return number;
}

bool sameNumber(const Number &written, const Number &readBack, double tolerance)
{
    if (!written.isValid || !readBack.isValid)
        return false;
    // In binary, 20.5 and 20.4 are a little more than 0.1 apart.
    const double larger = std::max(std::abs(written.value), std::abs(readBack.value));
    if (tolerance > 0
        && std::abs(written.value - readBack.value) <= tolerance + larger * doubleError)
        return true;
    if (written.isWhole && readBack.isWhole)
        return written.canonical == readBack.canonical;
    const double smaller = std::min(std::abs(written.value), std::abs(readBack.value));
    if (smaller == 0.0 || !std::isfinite(written.value) || !std::isfinite(readBack.value))
        return written.value == readBack.value;
    const int digits = std::max(minimumDigits, readBack.significantDigits);
    const double unit = std::pow(10.0, std::floor(std::log10(smaller)) - digits + 1);
    const double storageError = smaller * (digits > minimumDigits ? doubleError : floatError);
    return std::abs(written.value - readBack.value) <= unit / 2 + storageError;
}

bool sameHexadecimal(const QString &written, const QString &readBack)
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9A-Fa-f]+\\z"));
    return form.match(written).hasMatch() && form.match(readBack).hasMatch()
           && withoutLeadingZeros(written).compare(withoutLeadingZeros(readBack),
                                                   Qt::CaseInsensitive)
                  == 0;
}

} // namespace

ValueKind valueKind(const QMap<QString, QString> &parameters,
                    const QList<DatabaseColumnStructure> &columns)
{
    for (const DatabaseColumnStructure &column : columns) {
        const QString text = displayText(parameters.value(column.name), column);
        if (text.startsWith(u"Hexadecimal"))
            return ValueKind::Hexadecimal;
        if (text.startsWith(u"ASCII"))
            return ValueKind::Text;
    }
    return ValueKind::Number;
}

bool sameValue(const QString &written, const QString &readBack, ValueKind kind, double tolerance)
{
    if (written == readBack)
        return true;
    if (kind == ValueKind::Number)
        return sameNumber(parseNumber(written), parseNumber(readBack), tolerance);
    return kind == ValueKind::Hexadecimal && sameHexadecimal(written, readBack);
}

std::optional<double> decimalNumber(const QString &text)
{
    const Number number = parseNumber(text);
    return number.isValid ? std::make_optional(number.value) : std::nullopt;
}
