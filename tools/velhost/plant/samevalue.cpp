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

/// A decimal number and what its text tells of it.
struct Number
{
    double value = 0;
    /// Sign and digits without leading zeros; empty when it has a point or an exponent.
    QString whole;
    int significantDigits = 0;
};

QString withoutLeadingZeros(const QString &digits)
{
    int zeros = 0;
    while (zeros < digits.size() - 1 && digits.at(zeros) == u'0')
        ++zeros;
    return digits.mid(zeros);
}

std::optional<Number> parseNumber(const QString &text)
{
    // The exponent must have a sign, as programs print it: 1E5 may be hexadecimal.
    static const QRegularExpression form(
        QStringLiteral("\\A(-?)([0-9]+)(?:\\.([0-9]+))?([eE][+-][0-9]{1,3})?\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    const QString fraction = match.captured(3);
    const QString digits = withoutLeadingZeros(match.captured(2));
    Number number{text.toDouble(), {}, withoutLeadingZeros(match.captured(2) + fraction).size()};
    if (fraction.isEmpty() && match.captured(4).isEmpty())
        number.whole = digits == u"0" ? digits : QString(match.captured(1) + digits);
    return number;
}

bool sameNumber(const Number &written, const Number &readBack, double tolerance)
{
    // In binary, 20.5 and 20.4 are a little more than 0.1 apart.
    const double larger = std::max(std::abs(written.value), std::abs(readBack.value));
    if (tolerance > 0
        && std::abs(written.value - readBack.value) <= tolerance + larger * doubleError)
        return true;
    if (!written.whole.isEmpty() && !readBack.whole.isEmpty())
        return written.whole == readBack.whole;
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
    if (kind != ValueKind::Number)
        return kind == ValueKind::Hexadecimal && sameHexadecimal(written, readBack);
    const std::optional<Number> one = parseNumber(written);
    const std::optional<Number> other = parseNumber(readBack);
    return one && other && sameNumber(*one, *other, tolerance);
}

std::optional<double> decimalNumber(const QString &text)
{
    const std::optional<Number> number = parseNumber(text);
    return number ? std::optional(number->value) : std::nullopt;
}
