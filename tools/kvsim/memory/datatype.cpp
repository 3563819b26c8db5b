#include "memory/datatype.h"

#include <QList>
#include <QtEndian>

#include <algorithm>
#include <array>

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

/// The value in the bytes of its words, the lowest one first; nothing when the type has no such
/// value.
QByteArray bytesOf(const DataType &type, const QByteArray &text)
{
    bool ok = false;
    std::array<char, 8> bytes{};
    if (type.base != 0) {
        const qint64 number = text.toLongLong(&ok, type.base);
        ok = ok && number >= type.minimum && number <= type.maximum;
        qToLittleEndian(number, bytes.data());
    } else if (type.words == 2) {
        qToLittleEndian(text.toFloat(&ok), bytes.data());
    } else {
        qToLittleEndian(text.toDouble(&ok), bytes.data());
    }
    return ok ? QByteArray(bytes.data(), 2 * type.words) : QByteArray();
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
    const QByteArray bytes = type.words == 0 ? text : bytesOf(type, text);
    if (type.words != 0 && bytes.isEmpty())
        return std::nullopt;
    QVector<quint16> words((bytes.size() + 1) / 2);
    for (int i = 0; i < bytes.size(); ++i)
        words[i / 2] |= static_cast<quint16>(static_cast<uchar>(bytes.at(i)) << (i % 2 * 8));
    return words;
}
