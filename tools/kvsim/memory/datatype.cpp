#include "memory/datatype.h"

#include <QList>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

/// In the order of their numbers in a plant file, from 1 on.
constexpr std::array<DataType, 9> dataTypes{{
    {"Short", 1, 10, -32768, 32767},
    {"Long", 2, 10, -2147483648, 2147483647},
    {"Word", 1, 10, 0, 65535},
    {"DWord", 2, 10, 0, 4294967295},
    {"Hexadecimal 16Bit", 1, 16, 0, 0xFFFF},
    {"Hexadecimal 32Bit", 2, 16, 0, 0xFFFFFFFF},
    {"Float", 2, 0, 0, 0},
    {"Double", 4, 0, 0, 0},
    {"ASCII", 0, 0, 0, 0},
}};

QVector<quint16> charactersOf(const QByteArray &text)
{
    QVector<quint16> words((text.size() + 1) / 2);
    for (int i = 0; i < text.size(); ++i) {
        const auto character = static_cast<uchar>(text.at(i));
        words[i / 2] |= static_cast<quint16>(i % 2 == 0 ? character : character << 8);
    }
    return words;
}

template<typename Bits, typename Number>
quint64 bitsOf(Number number)
{
    static_assert(sizeof(Bits) == sizeof(Number));
    Bits bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

std::optional<quint64> parseNumber(const DataType &type, const QByteArray &text)
{
    bool ok = false;
    if (type.base == 0) {
        const quint64 bits = type.words == 2 ? bitsOf<quint32>(text.toFloat(&ok))
                                             : bitsOf<quint64>(text.toDouble(&ok));
        return ok ? std::make_optional(bits) : std::nullopt;
    }
    const qint64 number = text.toLongLong(&ok, type.base);
    const bool fits = ok && number >= type.minimum && number <= type.maximum;
    return fits ? std::make_optional(static_cast<quint64>(number)) : std::nullopt;
}

} // namespace

const DataType *dataType(const QByteArray &name)
{
    const auto *type = std::find_if(dataTypes.cbegin(), dataTypes.cend(),
                                    [&](const DataType &t) { return name == t.name; });
    return type == dataTypes.cend() ? nullptr : type;
}

const DataType *dataType(int number)
{
    const bool isKnown = number >= 1 && number <= static_cast<int>(dataTypes.size());
    return isKnown ? &dataTypes.at(static_cast<std::size_t>(number - 1)) : nullptr;
}

QByteArray dataTypeNames()
{
    QList<QByteArray> names;
    for (const DataType &type : dataTypes)
        names.append(type.name);
    return names.join(", ");
}

std::optional<QVector<quint16>> wordsOf(const DataType &type, const QByteArray &text)
{
    if (type.words == 0)
        return charactersOf(text);
    const std::optional<quint64> bits = parseNumber(type, text);
    QVector<quint16> words;
    for (int i = 0; bits && i < type.words; ++i)
        words.append(static_cast<quint16>(*bits >> (16 * i)));
    return bits ? std::make_optional(words) : std::nullopt;
}
