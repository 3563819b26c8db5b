#include "itemdata.h"

#include <QRegularExpression>
#include <QVarLengthArray>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

const QRegularExpression floatExpression(ItemData::floatPattern);
const QRegularExpression stringExpression(ItemData::stringPattern);

// What a value to write must look like. None for whole numbers, and for a type that takes no value:
// there, only an empty one fits.
const QRegularExpression *expressionOf(int dataType)
{
    if (dataType == DataTypes::Ascii)
        return &stringExpression;
    return dataType == DataTypes::Float || dataType == DataTypes::Double ? &floatExpression
                                                                         : nullptr;
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

bool isBit(QStringView value)
{
    return value.size() == 1 && digitValue(value.front()) <= 1;
}

// Whether the value is a whole number within the type's range, written in digits alone: no blank,
// no plus sign, no prefix, no minus sign before zero.
bool isInRange(QStringView value, const DataTypes::Traits &traits)
{
    const bool isNegative = value.startsWith(QLatin1Char('-'));
    const qint64 size = numberOfDigits(isNegative ? value.mid(1) : value, traits.base);
    if (size < 0 || (isNegative && size == 0))
        return false;
    const qint64 number = isNegative ? -size : size;
    return number >= traits.minimum && number <= traits.maximum;
}

template<typename Target, typename Source>
Target sameBits(Source source)
{
    static_assert(sizeof(Target) == sizeof(Source));
    Target target;
    std::memcpy(&target, &source, sizeof target);
    return target;
}

// One hexadecimal digit each; there is room for ten words before memory must be fetched.
using HexDigits = QVarLengthArray<uchar, 40>;
using AnswerText = QVarLengthArray<QChar, 64>;

QString paddedNumber(int number)
{
    return decimalText(number).rightJustified(4, QLatin1Char('0'));
}

QString dataWords(quint64 number)
{
    QString words = decimalText(static_cast<quint16>(number));
    for (number >>= 16U; number != 0; number >>= 16U)
        words += QLatin1Char(' ') + decimalText(static_cast<quint16>(number));
    return words;
}

// The hexadecimal digits of data words, most significant word first, at least four a word.
HexDigits hexDigits(QStringView words)
{
    HexDigits digits;
    for (auto end = words.size(); end >= 0; --end) {
        auto start = end;
        while (start > 0 && words[start - 1] != QLatin1Char(' '))
            --start;
        const auto word = decimalNumber<quint32>(words.mid(start, end - start));
        for (int shift = 28; shift >= 0; shift -= 4) {
            if (shift < 16 || word >> shift != 0)
                digits.append(static_cast<uchar>(word >> shift & 0xFU));
        }
        end = start;
    }
    return digits;
}

// The answer as text. Plain ASCII, as nearly every answer is, is taken over as it is.
AnswerText decoded(const QByteArray &answer)
{
    const auto isPlain = [](char byte) { return byte != '\0' && static_cast<uchar>(byte) < 0x80; };
    if (!std::all_of(answer.cbegin(), answer.cend(), isPlain)) {
        const QString text = QString::fromUtf8(answer);
        return {text.cbegin(), text.cend()};
    }
    AnswerText text(answer.size());
    std::transform(answer.cbegin(), answer.cend(), text.begin(),
                   [](char byte) { return QLatin1Char(byte); });
    return text;
}

QStringView withoutLineEnd(QStringView answer)
{
    while (answer.endsWith(QLatin1Char('\n')) || answer.endsWith(QLatin1Char('\r')))
        answer.chop(1);
    return answer;
}

// The number that data words make; 0 when it does not fit.
template<typename Number>
Number joinedNumber(QStringView words)
{
    quint64 number = 0;
    for (const uchar digit : hexDigits(words)) {
        if (number > std::numeric_limits<Number>::max() >> 4U)
            return 0;
        number = number << 4U | digit;
    }
    return static_cast<Number>(number);
}

// The characters of the words: of each word first the low byte, then the high byte.
QByteArray characters(QStringView words)
{
    const HexDigits digits = hexDigits(words);
    QByteArray result((digits.size() + 1) / 2, '\0');
    auto character = result.rbegin();
    for (int i = 0; i + 1 < digits.size(); i += 2)
        *character++ = static_cast<char>(digits[i] << 4U | digits[i + 1]);
    return result;
}

QString userText(QStringView words, int dataType, const QString &address)
{
    switch (dataType) {
    case DataTypes::Bit: {
        const auto bit = static_cast<unsigned short>(getBitNumber(address));
        return decimalText(ItemData::bitCheck(decimalNumber<quint16>(words), bit) ? 1 : 0);
    }
    case DataTypes::Short:
        return decimalText(static_cast<qint16>(decimalNumber<quint16>(words)));
    case DataTypes::Long:
        return decimalText(static_cast<qint32>(joinedNumber<quint32>(words)));
    case DataTypes::Word:
        return decimalText(decimalNumber<quint16>(words));
    case DataTypes::DWord:
        return decimalText(joinedNumber<quint32>(words));
    case DataTypes::Hex16:
        return QString::number(joinedNumber<quint16>(words), 16).toUpper();
    case DataTypes::Hex32:
        return QString::number(joinedNumber<quint32>(words), 16).toUpper();
    case DataTypes::Float:
        return QString::number(static_cast<double>(sameBits<float>(joinedNumber<quint32>(words))),
                               'g', 5);
    case DataTypes::Double:
        return QString::number(sameBits<double>(joinedNumber<quint64>(words)), 'g', 7);
    case DataTypes::Ascii:
        return QString::fromUtf8(characters(words));
    default:
        return {};
    }
}

// Characters outside Latin-1 have no code that a controller could hold.
unsigned int latin1Code(QChar character)
{
    const ushort code = character.unicode();
    return code <= 0xFF ? code : 0;
}

// Each word takes two characters, the first one as its low byte. The codes stand one after the
// other as hexadecimal digits without padding, so after a code below 16 the next digits
// move one place.
QString characterWords(const QString &text)
{
    QString words;
    for (int i = 0; i < text.size(); i += 2) {
        const unsigned int first = latin1Code(text.at(i));
        const unsigned int second = i + 1 < text.size() ? latin1Code(text.at(i + 1)) : 0;
        words += QLatin1Char(' ') + decimalText(second << (first < 16 ? 4U : 8U) | first);
    }
    return words;
}

QString wordWithBit(unsigned short word, int bit, const QString &bitValue)
{
    const auto number = static_cast<unsigned short>(bit);
    return decimalText(decimalNumber<quint16>(bitValue) == 0 ? ItemData::bitClear(word, number)
                                                             : ItemData::bitSet(word, number));
}

// Types are numbers of 16 bits; any other one counts as 0.
int checkedType(int dataType)
{
    return dataType >= 0 && dataType <= 0xFFFF ? dataType : 0;
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
    const auto isHexDigit = [](QChar character) { return digitValue(character) < 16; };
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

Errors::Error ItemData::validateItemFields(QString address, QString dataType, QString value,
                                           QString length)
{
    return validateItemFields(readItemAddress(address), DataTypes::typeFromString(dataType), value,
                              length);
}

Errors::Error ItemData::validateItemFields(const ItemAddress &address, int dataType,
                                           const QString &value, const QString &length)
{
    const int type = checkedType(dataType);
    if (address.form == ItemAddress::Form::Bit) {
        const bool valueFits = value.isEmpty() || isBit(withoutLineFeed(value));
        if (type == DataTypes::Bit && (address.device.isEmpty() || !valueFits))
            return Errors::DataTypeNotBoolean;
        if (address.bitNo >= 16 || getBitNumber(address.text) < 0)
            return Errors::BitNumberInvalid;
    }

    const int words = address.wordCount;
    if (words < 0) {
        if (type == DataTypes::Ascii)
            return Errors::DataLengthInvalid;
        if (value.isEmpty() || address.form != ItemAddress::Form::Simple)
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
    const DataTypes::Traits &traits = DataTypes::traits(dataType);
    if (traits.base != 0)
        return isInRange(value, traits) ? Errors::Ok : Errors::ValueOutOfRange;
    if (getDataLength(value, dataType, length).isEmpty())
        return Errors::DataLengthInvalid;
    const QRegularExpression *const expression = expressionOf(dataType);
    const QString fitting = expression != nullptr ? expression->match(value).captured() : QString();
    return fitting == value ? Errors::Ok : Errors::InvalidFormatForDataType;
}

QString ItemData::getDevice(QString address, QString dataType)
{
    return getDevice(readItemAddress(address), DataTypes::typeFromString(dataType));
}

QString ItemData::getDevice(const ItemAddress &address, int dataType)
{
    const bool isBit = checkedType(dataType) == DataTypes::Bit;
    return address.form == ItemAddress::Form::Bit && !isBit ? QString() : address.device;
}

int ItemData::getBitNo(QString address)
{
    return readItemAddress(address).bitNo;
}

int getBitNumber(QString address)
{
    const int point = address.indexOf(QLatin1Char('.'));
    if (point < 0 || address.indexOf(QLatin1Char('.'), point + 1) >= 0)
        return -1;
    const QStringRef digits = address.midRef(point + 1);
    const int number = decimalNumber<quint16>(digits);
    return digits.size() < 3 && number < 16 ? number : -1;
}

int ItemData::addressWordCount(QString address)
{
    return readItemAddress(address).wordCount;
}

QString ItemData::effectiveDataLength(QString address)
{
    return effectiveDataLength(readItemAddress(address));
}

QString ItemData::effectiveDataLength(const ItemAddress &address)
{
    return address.wordCount > 0 ? decimalText(address.wordCount) : QString();
}

QString ItemData::getDataLength(QString value, int dataType, QString length)
{
    if (dataType != DataTypes::Ascii)
        return DataTypes::traits(dataType).words;
    const double needed = std::ceil(static_cast<double>(static_cast<float>(value.size()) / 2.0F));
    return needed > decimalNumber<quint32>(length) ? QString() : length;
}

QByteArray ItemData::getUserData(QString data, int dataType, QString address)
{
    const QStringView words = withoutLineEnd(data);
    return dataType == DataTypes::Ascii ? characters(words)
                                        : userText(words, dataType, address).toUtf8();
}

QString ItemData::getUserText(const QByteArray &answer, int dataType, const QString &address)
{
    const AnswerText text = decoded(answer);
    return userText(withoutLineEnd({text.constData(), text.size()}), dataType, address);
}

QString ItemData::getPlcValue(QString value, int dataType, QString address, QString bitValue)
{
    switch (dataType) {
    case DataTypes::Bit:
        return wordWithBit(decimalNumber<quint16>(value), getBitNo(address), bitValue);
    case DataTypes::Short:
        return paddedNumber(decimalNumber<qint16>(value));
    case DataTypes::Long:
        return dataWords(static_cast<quint32>(decimalNumber<qint32>(value)));
    case DataTypes::Word:
        return paddedNumber(decimalNumber<quint16>(value));
    case DataTypes::DWord:
        return dataWords(decimalNumber<quint32>(value));
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
    return wordWithBit(decimalNumber<quint16>(word), getBitNumber(address), bitValue);
}

QString ItemData::arrayToHex(QString data)
{
    QString hex;
    for (const uchar digit : hexDigits(data))
        hex += QString::number(digit, 16);
    return hex.toUpper();
}

QString ItemData::decimalToArray(QString decimal)
{
    return dataWords(decimal.toULongLong());
}
