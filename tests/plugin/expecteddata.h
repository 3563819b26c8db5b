#pragma once

#include "expectedgrammar.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>

// Answers and values converted the long way over hexadecimal text, which says what is meant when a
// word is no word or a code has one digit.

inline QString hexadecimalWords(const QString &words)
{
    const QStringList parts = words.split(QLatin1Char(' '));
    QString result;
    for (const QString &word : parts)
        result.prepend(QString::number(word.toUInt(), 16).rightJustified(4, QLatin1Char('0')));
    return result.toUpper();
}

inline QByteArray charactersOf(const QString &hex)
{
    QByteArray result;
    for (int i = 0; i < hex.size(); i += 2) {
        const bool isPair = i + 1 < hex.size();
        result.prepend(isPair ? static_cast<char>(hex.midRef(i, 2).toInt(nullptr, 16)) : '\0');
    }
    return result;
}

template<typename Target, typename Source>
Target withSameBits(Source source)
{
    static_assert(sizeof(Target) == sizeof(Source));
    Target target;
    std::memcpy(&target, &source, sizeof target);
    return target;
}

/// The user's value of an answer.
inline QByteArray expectedData(QString answer, int type, const QString &address)
{
    while (answer.endsWith(QLatin1Char('\n')) || answer.endsWith(QLatin1Char('\r')))
        answer.chop(1);
    const QString hex = hexadecimalWords(answer);
    const int bit = expectedBitNumber(address);
    switch (type) {
    case DataTypes::Bit:
        return QByteArray::number(bit < 0 ? 0 : answer.toUShort() >> bit & 1);
    case DataTypes::Short:
        return QByteArray::number(static_cast<qint16>(answer.toUShort()));
    case DataTypes::Long:
        return QByteArray::number(static_cast<qint32>(hex.toUInt(nullptr, 16)));
    case DataTypes::Word:
        return QByteArray::number(answer.toUShort());
    case DataTypes::DWord:
        return QByteArray::number(hex.toUInt(nullptr, 16));
    case DataTypes::Hex16:
        return QByteArray::number(hex.toUShort(nullptr, 16), 16).toUpper();
    case DataTypes::Hex32:
        return QByteArray::number(hex.toUInt(nullptr, 16), 16).toUpper();
    case DataTypes::Float:
        return QByteArray::number(static_cast<double>(withSameBits<float>(hex.toUInt(nullptr, 16))),
                                  'g', 5);
    case DataTypes::Double:
        return QByteArray::number(withSameBits<double>(hex.toULongLong(nullptr, 16)), 'g', 7);
    case DataTypes::Ascii:
        return charactersOf(hex);
    default:
        return {};
    }
}

inline QString expectedCharacterWords(const QString &value)
{
    const auto hex = [&value](int place) {
        const ushort code = place < value.size() ? value.at(place).unicode() : 0;
        return QString::number(code <= 0xFF ? code : 0, 16);
    };
    QString words;
    for (int i = 0; i < value.size(); i += 2) {
        const QString second = i + 1 < value.size() ? hex(i + 1) : QString();
        const QString word = second + hex(i);
        words += QLatin1Char(' ') + QString::number(word.toUInt(nullptr, 16));
    }
    return words;
}

/// The words of a number, least significant first, without those at the end that are 0.
inline QString expectedNumberWords(quint64 number)
{
    const QString hex = QString::number(number, 16);
    QStringList words;
    for (int end = hex.size(); end > 0; end -= 4) {
        const int start = std::max(end - 4, 0);
        words.append(QString::number(hex.midRef(start, end - start).toUShort(nullptr, 16)));
    }
    return words.join(QLatin1Char(' '));
}

/// The words to write for a value of any type but Bit.
inline QString expectedWords(const QString &value, int type)
{
    const auto padded
        = [](int number) { return QString::number(number).rightJustified(4, QLatin1Char('0')); };
    switch (type) {
    case DataTypes::Short:
        return padded(value.toShort());
    case DataTypes::Long:
        return expectedNumberWords(static_cast<quint32>(value.toInt()));
    case DataTypes::Word:
        return padded(value.toUShort());
    case DataTypes::DWord:
        return expectedNumberWords(value.toUInt());
    case DataTypes::Hex16:
        return padded(value.toUShort(nullptr, 16));
    case DataTypes::Hex32:
        return expectedNumberWords(value.toUInt(nullptr, 16));
    case DataTypes::Float:
        return expectedNumberWords(withSameBits<quint32>(value.toFloat()));
    case DataTypes::Double:
        return expectedNumberWords(withSameBits<quint64>(value.toDouble()));
    case DataTypes::Ascii:
        return expectedCharacterWords(value);
    default:
        return {};
    }
}
