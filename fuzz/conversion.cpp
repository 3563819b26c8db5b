// Conversion both ways. A digit for the type (':' is the unknown one), then the fields: address,
// value, answer.

#include "expecteddata.h"
#include "input.h"
#include "itemdata.h"
#include "require.h"

#include <algorithm>

namespace {

void checkAnswer(const QByteArray &answer, int type, const QString &address)
{
    const QString text = QString::fromUtf8(answer);
    const QByteArray expected = expectedData(text, type, address);
    requireSame(ItemData::getUserData(text, type, address), expected,
                "an answer is converted as by the long way");
    requireSame(ItemData::getUserText(answer, type, address), QString::fromUtf8(expected),
                "an answer's text is that of its bytes");
    requireSame(ItemData::arrayToHex(text), hexadecimalWords(text),
                "words make one hexadecimal number");
}

void checkBit(const QString &word, const QString &address, const QString &bitValue)
{
    const QString changed = ItemData::getPlcValue(word, DataTypes::Bit, address, bitValue);
    // The low 8 bits of a bit's number count.
    const auto bit = static_cast<uint>(ItemData::getBitNo(address)) & 0xFFU;
    const uint mask = bit < 16 ? 1U << bit : 0U;
    const uint other = ~mask & 0xFFFFU;
    requireSame(changed.toUInt() & other, word.toUShort() & other, "other bits stay as they are");
    if (mask == 0 || expectedValidation(address, QStringLiteral("0"), {}, {}) != Errors::Ok)
        return;
    requireSame(ItemData::getUserText(changed.toUtf8(), DataTypes::Bit, address),
                QString::number(bitValue.toUShort() != 0 ? 1 : 0), "a bit reads as it was written");
    requireSame(ItemData::getBoolInt(bitValue, word, address), changed,
                "a bit is changed alike by both ways");
}

// The words as a controller that holds them answers.
QByteArray answerWith(const QString &words)
{
    QByteArray answer;
    const QStringList parts = words.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &word : parts)
        answer += word.toUtf8().rightJustified(5, '0') + ' ';
    answer.chop(1);
    return answer + "\r\n";
}

// The value as the host shows it: a number without leading zeros, five or seven digits of a
// fraction, ASCII with the zero byte that fills its last word.
QByteArray shownValue(const QString &value, int type)
{
    switch (type) {
    case DataTypes::Hex16:
    case DataTypes::Hex32:
        return QByteArray::number(value.toUInt(nullptr, 16), 16).toUpper();
    case DataTypes::Float:
        return QByteArray::number(static_cast<double>(value.toFloat()), 'g', 5);
    case DataTypes::Double:
        return QByteArray::number(value.toDouble(), 'g', 7);
    case DataTypes::Ascii:
        return value.toLatin1() + QByteArray(value.size() % 2, '\0');
    default:
        return QByteArray::number(value.toLongLong());
    }
}

// A negative Short has its sign behind the padding, which is the controller's to read. No character
// has no word, one beyond Latin-1 no code, and one below 16 moves the digits of the one behind it.
bool readsBack(const QString &value, int type)
{
    if (type == DataTypes::Short)
        return value.toShort() >= 0;
    if (type != DataTypes::Ascii || value.isEmpty())
        return type != DataTypes::Ascii;
    for (int i = 0; i < value.size(); ++i) {
        const ushort code = value.at(i).unicode();
        const bool isMoved = i % 2 == 0 && code < 16 && i + 1 < value.size();
        if (code > 0xFF || isMoved)
            return false;
    }
    return true;
}

void checkValue(const QString &value, int type, const QString &address)
{
    const QString words = ItemData::getPlcValue(value, type, address, {});
    requireSame(words, expectedWords(value, type), "a value is converted as by the long way");
    requireSame(ItemData::decimalToArray(value), expectedNumberWords(value.toULongLong()),
                "a number is cut into its words");
    const QString length = QString::number(value.size());
    if (ItemData::checkDataForItem(value, type, length) != Errors::Ok || !readsBack(value, type))
        return;
    const QString answer = QString::fromUtf8(answerWith(words));
    requireSame(ItemData::getUserData(answer, type, address), shownValue(value, type),
                "a value reads as it was written");
}

} // namespace

void check(Input input)
{
    const int type = input.choice(static_cast<int>(DataTypes::types.size()));
    const QString address = input.text();
    const QString value = input.text();
    const QByteArray answer = input.field();
    checkAnswer(answer, type, address);
    checkBit(QString::fromUtf8(answer), address, value);
    if (type != DataTypes::Bit)
        checkValue(value, type, address);
}
