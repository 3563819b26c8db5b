#include "itemdata.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

const QString ItemData::lettersPattern = QStringLiteral("(\\D)+");
const QString ItemData::hexPattern = QStringLiteral("^[0-9a-fA-F]+$");
const QString ItemData::floatPattern = QStringLiteral("^[-+]?[0-9]*\\.?[0-9]+$");
const QString ItemData::integerPattern = QStringLiteral("-?\\d+");
const QString ItemData::unsignedIntegerPattern = QStringLiteral("\\d+");
const QString ItemData::simpleAddressPattern = QStringLiteral("^\\D+[0-9a-fA-F]+$");
const QString ItemData::dotAddessPattern = QStringLiteral("^\\D+[0-9]+\\.[0-9]+$");
const QString ItemData::rangeAddressPattern = QStringLiteral("^\\D+[0-9]+-[0-9]+$");
const QString ItemData::bitPattern = QStringLiteral("^[0-1]$");
const QString ItemData::stringPattern = QStringLiteral(".*");

namespace {

const QRegularExpression hexExpression(ItemData::hexPattern);
const QRegularExpression floatExpression(ItemData::floatPattern);
const QRegularExpression integerExpression(ItemData::integerPattern);
const QRegularExpression unsignedIntegerExpression(ItemData::unsignedIntegerPattern);
const QRegularExpression simpleAddressExpression(ItemData::simpleAddressPattern);
const QRegularExpression dotAddressExpression(ItemData::dotAddessPattern);
const QRegularExpression rangeAddressExpression(ItemData::rangeAddressPattern);
const QRegularExpression bitExpression(ItemData::bitPattern);
const QRegularExpression stringExpression(ItemData::stringPattern);
const QRegularExpression wordCountExpression(QStringLiteral("^(\\D+)(\\d+)-(\\d+)$"));

// What a value must look like to be written.
struct ValueRule
{
    // None for a type that takes no value: only an empty one fits.
    const QRegularExpression *expression = nullptr;
    // 0 for a type whose values are not whole numbers.
    int base = 0;
    qint64 minimum = 0;
    qint64 maximum = 0;
};

template<typename Number>
ValueRule wholeNumber(const QRegularExpression &expression, int base)
{
    return {&expression, base, std::numeric_limits<Number>::min(),
            std::numeric_limits<Number>::max()};
}

// What the conversions know of a type.
struct TypeTraits
{
    ValueRule rule;
    // The size in words; empty where the address states it.
    QString words;
};

const QMap<int, TypeTraits> typeTraits = {
    {DataTypes::Bit, {{}, QStringLiteral("0")}},
    {DataTypes::Short, {wholeNumber<qint16>(integerExpression, 10), QStringLiteral("1")}},
    {DataTypes::Long, {wholeNumber<qint32>(integerExpression, 10), QStringLiteral("2")}},
    {DataTypes::Word, {wholeNumber<quint16>(unsignedIntegerExpression, 10), QStringLiteral("1")}},
    {DataTypes::DWord, {wholeNumber<quint32>(unsignedIntegerExpression, 10), QStringLiteral("2")}},
    {DataTypes::Hex16, {wholeNumber<quint16>(hexExpression, 16), QStringLiteral("1")}},
    {DataTypes::Hex32, {wholeNumber<quint32>(hexExpression, 16), QStringLiteral("2")}},
    {DataTypes::Float, {{&floatExpression}, QStringLiteral("2")}},
    {DataTypes::Double, {{&floatExpression}, QStringLiteral("4")}},
    {DataTypes::Ascii, {{&stringExpression}, {}}},
};

TypeTraits traitsOf(int dataType)
{
    return typeTraits.value(dataType);
}

// The form in which a whole number reads back: upper case, without leading zeros.
QString canonicalNumber(const QString &value)
{
    QString digits = value.toUpper();
    const bool negative = digits.startsWith(QLatin1Char('-'));
    if (negative)
        digits.remove(0, 1);
    int zeros = 0;
    while (zeros < digits.size() - 1 && digits.at(zeros) == QLatin1Char('0'))
        ++zeros;
    digits.remove(0, zeros);
    return negative ? QString(QLatin1Char('-') + digits) : digits;
}

bool isRangeError(const QString &value, const ValueRule &rule)
{
    const qint64 number = value.toLongLong(nullptr, rule.base);
    if (number < rule.minimum || number > rule.maximum)
        return true;
    // What does not read back to itself was not a number of this base, or did not fit.
    return QString::number(number, rule.base).toUpper() != canonicalNumber(value);
}

template<typename Target, typename Source>
Target sameBits(Source source)
{
    static_assert(sizeof(Target) == sizeof(Source));
    Target target;
    std::memcpy(&target, &source, sizeof target);
    return target;
}

QString paddedNumber(int number)
{
    return QString::number(number).rightJustified(4, QLatin1Char('0'));
}

QString dataWords(quint64 number)
{
    QString words = QString::number(number & 0xFFFFU);
    for (number >>= 16U; number != 0; number >>= 16U)
        words += QLatin1Char(' ') + QString::number(number & 0xFFFFU);
    return words;
}

unsigned int bitMask(unsigned short bit)
{
    const unsigned int count = bit & 0xFFU;
    return count < 16 ? 1U << count : 0U;
}

// The characters of the words: of each word first the low byte, then the high byte.
QByteArray characters(const QString &hexWords)
{
    const QByteArray digits = hexWords.toLatin1();
    QByteArray result;
    result.reserve((digits.size() + 1) / 2);
    for (int i = 0; i < digits.size(); i += 2) {
        const QByteArray pair = digits.mid(i, 2);
        result += pair.size() == 2 ? static_cast<char>(pair.toUInt(nullptr, 16)) : '\0';
    }
    std::reverse(result.begin(), result.end());
    return result;
}

// Characters outside Latin-1 have no code that a controller could hold.
QString latin1Hex(QChar character)
{
    const ushort code = character.unicode();
    return QString::number(code <= 0xFF ? code : 0, 16);
}

// Each word takes two characters, the first one as its low byte. The codes are written one after
// the other without padding, so a code below 16 shifts its partner.
QString characterWords(const QString &text)
{
    QString words;
    for (int i = 0; i < text.size(); i += 2) {
        QString hex = i + 1 < text.size() ? latin1Hex(text.at(i + 1)) : QString();
        hex += latin1Hex(text.at(i));
        words += QLatin1Char(' ') + QString::number(hex.toUInt(nullptr, 16));
    }
    return words;
}

QString wordWithBit(unsigned short word, int bit, const QString &bitValue)
{
    const auto number = static_cast<unsigned short>(bit);
    return QString::number(bitValue.toUShort() == 0 ? ItemData::bitClear(word, number)
                                                    : ItemData::bitSet(word, number));
}

// The part of a text before the first separator.
QString head(const QString &text, char separator)
{
    return text.left(text.indexOf(QLatin1Char(separator)));
}

} // namespace

Errors::Error ItemData::validateItemFields(QString address, QString dataType, QString value,
                                           QString length)
{
    const int type = dataType.toUShort();
    if (dotAddressExpression.match(address).hasMatch()) {
        const bool valueNotBit = !value.isEmpty() && !bitExpression.match(value).hasMatch();
        if (type == DataTypes::Bit && (getDevice(address, dataType).isEmpty() || valueNotBit))
            return Errors::DataTypeNotBoolean;
        if (getBitNo(address) >= 16 || getBitNumber(address) < 0)
            return Errors::BitNumberInvalid;
    }

    const int words = addressWordCount(address);
    if (words < 0) {
        if (type == DataTypes::Ascii)
            return Errors::DataLengthInvalid;
        if (value.isEmpty() || !simpleAddressExpression.match(address).hasMatch())
            return Errors::Ok;
        return checkDataForItem(value, type, getDataLength(value, type, length));
    }
    if (type != DataTypes::Ascii)
        return Errors::InvalidAddress;
    if (words == 0)
        return Errors::DataLengthInvalid;
    if (value.isEmpty())
        return Errors::Ok;
    return checkDataForItem(value, DataTypes::Ascii, QString::number(words));
}

Errors::Error ItemData::checkDataForItem(QString value, int dataType, QString length)
{
    const ValueRule rule = traitsOf(dataType).rule;
    if (rule.base != 0 && isRangeError(value, rule))
        return Errors::ValueOutOfRange;
    if (getDataLength(value, dataType, length).isEmpty())
        return Errors::DataLengthInvalid;
    const QString fitting
        = rule.expression != nullptr ? rule.expression->match(value).captured() : QString();
    if (fitting != value)
        return Errors::InvalidFormatForDataType;
    return Errors::Ok;
}

QString ItemData::getDevice(QString address, QString dataType)
{
    if (dataType.toUShort() == DataTypes::Bit && dotAddressExpression.match(address).hasMatch())
        return head(address, '.');
    if (rangeAddressExpression.match(address).hasMatch())
        return head(address, '-');
    if (simpleAddressExpression.match(address).hasMatch())
        return address;
    return {};
}

int ItemData::getBitNo(QString address)
{
    if (!dotAddressExpression.match(address).hasMatch())
        return 16;
    return address.split(QLatin1Char('.')).at(1).toInt();
}

int getBitNumber(QString address)
{
    const QStringList parts = address.split(QLatin1Char('.'));
    if (parts.size() != 2)
        return -1;
    const int number = parts.at(1).toUShort();
    return parts.at(1).size() < 3 && number < 16 ? number : -1;
}

int ItemData::addressWordCount(QString address)
{
    const QRegularExpressionMatch match = wordCountExpression.match(address);
    if (!match.hasMatch())
        return -1;
    bool firstOk = false;
    bool secondOk = false;
    const quint32 first = match.captured(2).toUInt(&firstOk);
    const quint32 second = match.captured(3).toUInt(&secondOk);
    if (!firstOk || !secondOk || second == 0)
        return 0;
    // A number of words beyond the signed range comes out negative, like an address without one.
    return static_cast<int>(first < second ? second - first + 1 : second);
}

QString ItemData::effectiveDataLength(QString address)
{
    const int words = addressWordCount(address);
    return words > 0 ? QString::number(words) : QString();
}

QString ItemData::getDataLength(QString value, int dataType, QString length)
{
    if (dataType != DataTypes::Ascii)
        return traitsOf(dataType).words;
    const double needed = std::ceil(static_cast<double>(static_cast<float>(value.size()) / 2.0F));
    return needed > length.toUInt() ? QString() : length;
}

QByteArray ItemData::getUserData(QString data, int dataType, QString address)
{
    while (data.endsWith(QLatin1Char('\n')) || data.endsWith(QLatin1Char('\r')))
        data.chop(1);
    const auto number = [&data] { return arrayToHex(data).toUInt(nullptr, 16); };
    switch (dataType) {
    case DataTypes::Bit: {
        const auto bit = static_cast<unsigned short>(getBitNumber(address));
        return QByteArray::number(bitCheck(data.toUShort(), bit) ? 1 : 0);
    }
    case DataTypes::Short:
        return QByteArray::number(static_cast<qint16>(data.toUShort()));
    case DataTypes::Long:
        return QByteArray::number(static_cast<qint32>(number()));
    case DataTypes::Word:
        return QByteArray::number(data.toUShort());
    case DataTypes::DWord:
        return QByteArray::number(number());
    case DataTypes::Hex16:
        return QByteArray::number(arrayToHex(data).toUShort(nullptr, 16), 16).toUpper();
    case DataTypes::Hex32:
        return QByteArray::number(number(), 16).toUpper();
    case DataTypes::Float:
        return QByteArray::number(static_cast<double>(sameBits<float>(number())), 'g', 5);
    case DataTypes::Double:
        return QByteArray::number(sameBits<double>(arrayToHex(data).toULongLong(nullptr, 16)), 'g',
                                  7);
    case DataTypes::Ascii:
        return characters(arrayToHex(data));
    default:
        return {};
    }
}

QString ItemData::getPlcValue(QString value, int dataType, QString address, QString bitValue)
{
    switch (dataType) {
    case DataTypes::Bit:
        return wordWithBit(value.toUShort(), getBitNo(address), bitValue);
    case DataTypes::Short:
        return paddedNumber(value.toShort());
    case DataTypes::Long:
        return dataWords(static_cast<quint32>(value.toInt()));
    case DataTypes::Word:
        return paddedNumber(value.toUShort());
    case DataTypes::DWord:
        return dataWords(value.toUInt());
    case DataTypes::Hex16:
        return paddedNumber(value.toUShort(nullptr, 16));
    case DataTypes::Hex32:
        return dataWords(value.toUInt(nullptr, 16));
    case DataTypes::Float:
        return dataWords(sameBits<quint32>(value.toFloat()));
    case DataTypes::Double:
        return dataWords(sameBits<quint64>(value.toDouble()));
    case DataTypes::Ascii:
        return characterWords(value);
    default:
        return {};
    }
}

QString ItemData::getBoolInt(QString bitValue, QString word, QString address)
{
    return wordWithBit(word.toUShort(), getBitNumber(address), bitValue);
}

QString ItemData::arrayToHex(QString data)
{
    const QStringList words = data.split(QLatin1Char(' '));
    QString hex;
    hex.reserve(4 * words.size());
    for (auto word = words.crbegin(); word != words.crend(); ++word)
        hex += QString::number(word->toUInt(), 16).rightJustified(4, QLatin1Char('0'));
    return hex.toUpper();
}

QString ItemData::decimalToArray(QString decimal)
{
    return dataWords(decimal.toULongLong());
}

unsigned short ItemData::bitSet(unsigned short value, unsigned short bit)
{
    return static_cast<unsigned short>(value | bitMask(bit));
}

unsigned short ItemData::bitClear(unsigned short value, unsigned short bit)
{
    return static_cast<unsigned short>(value & ~bitMask(bit));
}

bool ItemData::bitCheck(unsigned short value, unsigned short bit)
{
    return (value & bitMask(bit)) != 0;
}
