#include "generatedtexts.h"
#include "itemdata.h"
#include "text.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>

// The patterns state the grammar of addresses and values, the code reads them by hand: both must
// say the same of every text.

namespace {

const QRegularExpression simple(ItemData::simpleAddressPattern);
const QRegularExpression bit(ItemData::dotAddessPattern);
const QRegularExpression range(ItemData::rangeAddressPattern);
const QRegularExpression wordCount(QStringLiteral("^(\\D+)(\\d+)-(\\d+)$"));

// How often the texts had each form. Without enough of each the comparison would say little.
struct Forms
{
    int simple = 0;
    int bit = 0;
    int range = 0;
    int none = 0;
};

struct Reading
{
    QString deviceOfBit;
    QString deviceOfWord;
    int bitNo = 16;
    int wordCount = -1;

    bool operator==(const Reading &other) const
    {
        return deviceOfBit == other.deviceOfBit && deviceOfWord == other.deviceOfWord
               && bitNo == other.bitNo && wordCount == other.wordCount;
    }
};

int expectedWordCount(const QString &address)
{
    const QRegularExpressionMatch match = wordCount.match(address);
    bool firstOk = false;
    bool secondOk = false;
    const uint first = match.captured(2).toUInt(&firstOk);
    const uint second = match.captured(3).toUInt(&secondOk);
    if (!firstOk || !secondOk || second == 0)
        return 0;
    return static_cast<int>(first < second ? second - first + 1 : second);
}

Reading expectedReading(const QString &address, Forms *forms)
{
    Reading result;
    if (bit.match(address).hasMatch()) {
        ++forms->bit;
        const QStringList parts = address.split(QLatin1Char('.'));
        result.deviceOfBit = parts.at(0);
        result.bitNo = parts.at(1).toInt();
    } else if (range.match(address).hasMatch()) {
        ++forms->range;
        result.deviceOfBit = result.deviceOfWord = address.section(QLatin1Char('-'), 0, 0);
        result.wordCount = expectedWordCount(address);
    } else if (simple.match(address).hasMatch()) {
        ++forms->simple;
        result.deviceOfBit = result.deviceOfWord = address;
    } else {
        ++forms->none;
    }
    return result;
}

Reading reading(const QString &address)
{
    return {ItemData::getDevice(address, QStringLiteral("0")),
            ItemData::getDevice(address, QStringLiteral("1")), ItemData::getBitNo(address),
            ItemData::addressWordCount(address)};
}

// What an address is made of, in its order, now and then spoiled.
QString someAddress(GeneratedTexts &texts)
{
    QString address = texts.pieces(2);
    if (texts.number(4) > 0) {
        address += QLatin1String(texts.number(2) == 0 ? "D" : "-M.");
        address += numbers.at(texts.number(numbers.size()));
        const int end = texts.number(8);
        if (end < 4)
            address
                += QLatin1String(end < 2 ? "." : "-") + numbers.at(texts.number(numbers.size()));
        else if (end == 4)
            address += QLatin1String("1Fa");
    }
    if (texts.number(8) == 0)
        address += QLatin1Char('\n');
    return texts.spoiled(address, 4);
}

// Names a text on which both do not agree, character by character.
QByteArray codes(const QString &text)
{
    QByteArray result = "they differ on";
    for (const QChar character : text)
        result += ' ' + QByteArray::number(character.unicode(), 16);
    return result;
}

bool isWithin(int dataType, qint64 number)
{
    using namespace DataTypes;
    switch (dataType) {
    case Short:
        return number == static_cast<qint16>(number);
    case Long:
        return number == static_cast<qint32>(number);
    case Word:
    case Hex16:
        return number == static_cast<quint16>(number);
    default:
        return number == static_cast<quint32>(number);
    }
}

Errors::Error expectedCheck(const QString &value, int dataType, const QRegularExpression &pattern,
                            int base)
{
    bool isNumber = false;
    const qint64 number = value.toLongLong(&isNumber, base);
    const bool isMinusZero = number == 0 && value.startsWith(QLatin1Char('-'));
    const bool isWhole = pattern.match(value).captured() == value;
    return isNumber && isWhole && !isMinusZero && isWithin(dataType, number)
               ? Errors::Ok
               : Errors::ValueOutOfRange;
}

} // namespace

class tst_Grammar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addresses();
    void wholeNumbers_data();
    void wholeNumbers();
    void bits();
};

void tst_Grammar::addresses()
{
    QVector<QString> pieces = strangeTexts + numbers;
    for (const char *letters : {"D", "DM", "f", "AB"})
        pieces.append(text(letters));
    GeneratedTexts texts(pieces);
    constexpr int count = 1000000;
    Forms forms;
    for (int i = 0; i < count; ++i) {
        const QString address = someAddress(texts);
        if (!(reading(address) == expectedReading(address, &forms)))
            QFAIL(codes(address).constData());
    }
    for (const int found : {forms.simple, forms.bit, forms.range, forms.none})
        QVERIFY2(found > count / 20, QByteArray::number(found).constData());
}

void tst_Grammar::wholeNumbers_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("base");

    QTest::newRow("short") << 1 << ItemData::integerPattern << 10;
    QTest::newRow("long") << 2 << ItemData::integerPattern << 10;
    QTest::newRow("word") << 3 << ItemData::unsignedIntegerPattern << 10;
    QTest::newRow("dword") << 4 << ItemData::unsignedIntegerPattern << 10;
    QTest::newRow("hex16") << 5 << ItemData::hexPattern << 16;
    QTest::newRow("hex32") << 6 << ItemData::hexPattern << 16;
}

void tst_Grammar::wholeNumbers()
{
    QFETCH(int, dataType);
    QFETCH(QString, pattern);
    QFETCH(int, base);
    const QRegularExpression expression(pattern);
    GeneratedTexts texts(strangeTexts + numbers + QVector<QString>{text("fF"), text("-")});
    constexpr int count = 50000;
    int accepted = 0;
    for (int i = 0; i < count; ++i) {
        const QString value = texts.spoiled(
            QLatin1String(i % 2 == 0 ? "-" : "") + numbers.at(texts.number(numbers.size())), 2);
        const Errors::Error expected = expectedCheck(value, dataType, expression, base);
        accepted += expected == Errors::Ok ? 1 : 0;
        if (ItemData::checkDataForItem(value, dataType, QString()) != expected)
            QFAIL(codes(value).constData());
    }
    QVERIFY2(accepted > count / 20, QByteArray::number(accepted).constData());
}

void tst_Grammar::bits()
{
    static const QRegularExpression expression(ItemData::bitPattern);
    GeneratedTexts texts(strangeTexts + QVector<QString>{text("0"), text("1"), text("2")});
    constexpr int count = 50000;
    int accepted = 0;
    for (int i = 0; i < count; ++i) {
        const QString value = QString::number(texts.number(3)) + texts.pieces(2);
        const bool fits = expression.match(value).hasMatch();
        accepted += fits ? 1 : 0;
        const Errors::Error code
            = ItemData::validateItemFields(text("DM100.3"), text("0"), value, QString());
        if (code != (fits ? Errors::Ok : Errors::DataTypeNotBoolean))
            QFAIL(codes(value).constData());
    }
    QVERIFY2(accepted > count / 20, QByteArray::number(accepted).constData());
}

QTEST_GUILESS_MAIN(tst_Grammar)
#include "tst_grammar.moc"
