#include "expectedgrammar.h"
#include "generatedtexts.h"
#include "itemdata.h"
#include "text.h"

#include <QMap>
#include <QRegularExpression>
#include <QTest>

// The patterns state the grammar of addresses and values, the code reads them by hand: both must
// say the same of every text.

namespace {

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
    // How often the texts had each form: without enough of each this would say little.
    QMap<ItemAddress::Form, int> forms{{ItemAddress::Form::None, 0},
                                       {ItemAddress::Form::Simple, 0},
                                       {ItemAddress::Form::Bit, 0},
                                       {ItemAddress::Form::Words, 0}};
    for (int i = 0; i < count; ++i) {
        const QString address = someAddress(texts);
        const AddressReading expected = expectedReading(address);
        ++forms[expected.form];
        if (!(addressReading(address) == expected))
            QFAIL(codes(address).constData());
    }
    for (const int found : qAsConst(forms))
        QVERIFY2(found > count / 20, QByteArray::number(found).constData());
}

void tst_Grammar::wholeNumbers_data()
{
    QTest::addColumn<int>("dataType");

    QTest::newRow("short") << 1;
    QTest::newRow("long") << 2;
    QTest::newRow("word") << 3;
    QTest::newRow("dword") << 4;
    QTest::newRow("hex16") << 5;
    QTest::newRow("hex32") << 6;
}

void tst_Grammar::wholeNumbers()
{
    QFETCH(int, dataType);
    GeneratedTexts texts(strangeTexts + numbers + QVector<QString>{text("fF"), text("-")});
    constexpr int count = 50000;
    int accepted = 0;
    for (int i = 0; i < count; ++i) {
        const QString value = texts.spoiled(
            QLatin1String(i % 2 == 0 ? "-" : "") + numbers.at(texts.number(numbers.size())), 2);
        const Errors::Error expected = expectedCheck(value, dataType, QString());
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
