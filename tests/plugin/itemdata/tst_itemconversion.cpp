#include "itemdata.h"
#include "text.h"

#include <QTest>

// The conversions between data words and user values of every type but Bit.
class tst_ItemConversion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arrayToHex_data();
    void arrayToHex();
    void decimalToArray_data();
    void decimalToArray();
    void getUserData_data();
    void getUserData();
    void getPlcValue_data();
    void getPlcValue();
    void numbersComeBack_data();
    void numbersComeBack();
    void charactersComeBack();
};

void tst_ItemConversion::arrayToHex_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("hex");

    QTest::newRow("one word") << text("65535") << text("FFFF");
    QTest::newRow("padded") << text("10") << text("000A");
    QTest::newRow("two words") << text("1 2") << text("00020001");
    QTest::newRow("upper case") << text("4660 43981") << text("ABCD1234");
    QTest::newRow("more than a word") << text("70000") << text("11170");
    QTest::newRow("greatest") << text("4294967295") << text("FFFFFFFF");
    QTest::newRow("beyond 32 bits") << text("4294967296") << text("0000");
    QTest::newRow("negative") << text("-1") << text("0000");
    QTest::newRow("no number") << text("abc") << text("0000");
    QTest::newRow("two blanks") << text("1  2") << text("000200000001");
    QTest::newRow("blank behind") << text("1 ") << text("00000001");
    QTest::newRow("empty") << QString() << text("0000");
}

void tst_ItemConversion::arrayToHex()
{
    QFETCH(QString, data);
    QTEST(ItemData::arrayToHex(data), "hex");
}

void tst_ItemConversion::decimalToArray_data()
{
    QTest::addColumn<QString>("decimal");
    QTest::addColumn<QString>("words");

    QTest::newRow("zero") << text("0") << text("0");
    QTest::newRow("one word") << text("5") << text("5");
    QTest::newRow("padded") << text("00000005") << text("5");
    QTest::newRow("below two words") << text("65535") << text("65535");
    QTest::newRow("two words") << text("65536") << text("0 1");
    QTest::newRow("greatest of two words") << text("4294967295") << text("65535 65535");
    QTest::newRow("three words") << text("4294967296") << text("0 0 1");
    QTest::newRow("a zero word between") << text("281474976710657") << text("1 0 0 1");
    QTest::newRow("greatest") << text("18446744073709551615") << text("65535 65535 65535 65535");
    QTest::newRow("beyond 64 bits") << text("18446744073709551616") << text("0");
    QTest::newRow("negative") << text("-1") << text("0");
    QTest::newRow("no number") << text("abc") << text("0");
    QTest::newRow("empty") << QString() << text("0");
}

void tst_ItemConversion::decimalToArray()
{
    QFETCH(QString, decimal);
    QTEST(ItemData::decimalToArray(decimal), "words");
}

void tst_ItemConversion::getUserData_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("data");
    QTest::addColumn<QByteArray>("value");

    const auto row = [](const char *name, int type, const char *data, const QByteArray &value) {
        QTest::newRow(name) << type << text(data) << value;
    };
    row("short: greatest", 1, "32767", "32767");
    row("short: least", 1, "32768", "-32768");
    row("short: above the least", 1, "32769", "-32767");
    row("short: minus one", 1, "65535", "-1");
    row("short: beyond 16 bits", 1, "65536", "0");
    row("short: two words", 1, "1 2", "0");
    row("short: signed answer", 1, "-1", "0");
    row("short: padded", 1, "00012", "12");
    row("short: empty", 1, "", "0");
    row("short: no number", 1, "OK", "0");
    row("long: minus one", 2, "65535 65535", "-1");
    row("long: least", 2, "0 32768", "-2147483648");
    row("long: greatest", 2, "65535 32767", "2147483647");
    row("long: one word", 2, "5", "5");
    row("long: three words", 2, "1 2 3", "0");
    row("word: padded", 3, "00012", "12");
    row("word: greatest", 3, "65535", "65535");
    row("word: above the greatest", 3, "65536", "0");
    row("dword: second word", 4, "0 1", "65536");
    row("dword: the long's least", 4, "0 32768", "2147483648");
    row("dword: greatest", 4, "65535 65535", "4294967295");
    row("hex16: one byte", 5, "255", "FF");
    row("hex16: zero", 5, "0", "0");
    row("hex16: greatest", 5, "65535", "FFFF");
    row("hex16: two words that fit", 5, "255 0", "FF");
    row("hex16: two words", 5, "1 2", "0");
    row("hex32: two words", 6, "4660 43981", "ABCD1234");
    row("hex32: not padded", 6, "10 0", "A");
    row("float: zero", 7, "0 0", "0");
    row("float: one", 7, "0 16256", "1");
    row("float: five digits", 7, "4059 16457", "3.1416");
    row("float: negative", 7, "0 48896", "-0.5");
    row("float: exponent", 7, "9216 18804", "1e+06");
    row("float: greatest", 7, "65535 32639", "3.4028e+38");
    row("float: infinite", 7, "0 32640", "inf");
    row("float: not a number", 7, "0 32704", "nan");
    row("float: denormal", 7, "1 0", "1.4013e-45");
    row("double: one", 8, "0 0 0 16368", "1");
    row("double: seven digits", 8, "11544 21572 8699 16393", "3.141593");
    row("double: below the exponent", 8, "0 0 33920 16686", "1000000");
    row("double: exponent", 8, "0 0 4816 16739", "1e+07");
    row("double: zero", 8, "0 0 0 0", "0");
    row("double: minus infinite", 8, "0 0 0 65520", "-inf");
    row("ascii: two words", 9, "16961 17475", "ABCD");
    row("ascii: zero byte behind", 9, "16961 67", QByteArray("ABC\0", 4));
    row("ascii: zero word", 9, "0", QByteArray("\0\0", 2));
    row("ascii: zero word between", 9, "16961 0 17475", QByteArray("AB\0\0CD", 6));
    row("ascii: high bytes", 9, "65535", QByteArray("\xFF\xFF", 2));
    row("ascii: more than a word", 9, "70000", QByteArray("\0\x17\x11", 3));
    row("ascii: more than a word, ending in a digit", 9, "69905", QByteArray("\0\x11\x11", 3));
    row("ascii: empty", 9, "", QByteArray("\0\0", 2));
    row("unknown type", 10, "5", "");
    row("above the list", 11, "5", "");
    row("negative type", -1, "5", "");
    row("end: CR LF", 1, "00005\r\n", "5");
    row("end: CR", 1, "00005\r", "5");
    row("end: LF", 1, "00005\n", "5");
    row("end: several", 1, "00005\n\r\r\n", "5");
    row("end: nothing else", 1, "\r\n", "0");
    row("end: ascii", 9, "16961\r\n", "AB");
    row("end: a blank stays", 9, "16961 \r\n", QByteArray("AB\0\0", 4));
    row("end: blank and tab stay", 9, "16961 \t\r\n", QByteArray("AB\0\0", 4));
    row("end: blank behind a number", 2, "5 ", "5");
    row("end: another control character stays", 1, "5\x03\r\n", "0");
    row("beginning: a blank stays", 2, " 5", "327680");
}

void tst_ItemConversion::getUserData()
{
    QFETCH(int, dataType);
    QFETCH(QString, data);
    QTEST(ItemData::getUserData(data, dataType, text("D201")), "value");
}

void tst_ItemConversion::getPlcValue_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("words");

    const auto row = [](const char *name, int type, const QString &value, const char *words) {
        QTest::newRow(name) << type << value << text(words);
    };
    row("short: padded", 1, text("5"), "0005");
    row("short: negative", 1, text("-5"), "00-5");
    row("short: least that is padded by two", 1, text("-9"), "00-9");
    row("short: greatest that is padded by one", 1, text("-10"), "0-10");
    row("short: least that is padded", 1, text("-99"), "0-99");
    row("short: negative of four characters", 1, text("-100"), "-100");
    row("short: negative of more", 1, text("-1000"), "-1000");
    row("short: least", 1, text("-32768"), "-32768");
    row("short: greatest", 1, text("32767"), "32767");
    row("short: beyond", 1, text("32768"), "0000");
    row("short: no number", 1, text("abc"), "0000");
    row("short: empty", 1, QString(), "0000");
    row("long: zero", 2, text("0"), "0");
    row("long: one word", 2, text("5"), "5");
    row("long: greatest word", 2, text("65535"), "65535");
    row("long: two words", 2, text("65536"), "0 1");
    row("long: minus one", 2, text("-1"), "65535 65535");
    row("long: least", 2, text("-2147483648"), "0 32768");
    row("long: no number", 2, text("abc"), "0");
    row("word: padded", 3, text("5"), "0005");
    row("word: not padded", 3, text("65535"), "65535");
    row("word: beyond", 3, text("65536"), "0000");
    row("word: negative", 3, text("-1"), "0000");
    row("dword: two words", 4, text("65536"), "0 1");
    row("dword: greatest", 4, text("4294967295"), "65535 65535");
    row("dword: zero", 4, text("0"), "0");
    row("hex16: zero", 5, text("0"), "0000");
    row("hex16: padded", 5, text("FF"), "0255");
    row("hex16: greatest", 5, text("ffff"), "65535");
    row("hex16: no number", 5, text("G"), "0000");
    row("hex32: two words", 6, text("10000"), "0 1");
    row("hex32: greatest", 6, text("FFFFFFFF"), "65535 65535");
    row("float: one", 7, text("1"), "0 16256");
    row("float: zero", 7, text("0"), "0");
    row("float: pi", 7, text("3.14159265"), "4059 16457");
    row("float: too great is infinite", 7, QString(60, u'9'), "0 32640");
    row("float: far too great is infinite", 7, QString(400, u'9'), "0 32640");
    row("float: too small is minus infinite", 7, QString(u'-' + QString(400, u'9')), "0 65408");
    row("float: no number", 7, text("abc"), "0");
    row("double: one", 8, text("1"), "0 0 0 16368");
    row("double: pi", 8, text("3.141592653589793"), "11544 21572 8699 16393");
    row("double: too great is infinite", 8, QString(400, u'9'), "0 0 0 32752");
    row("ascii: one character", 9, text("A"), " 65");
    row("ascii: two", 9, text("AB"), " 16961");
    row("ascii: three", 9, text("ABC"), " 16961 67");
    row("ascii: four", 9, text("ABCD"), " 16961 17475");
    row("ascii: greatest code", 9, text("\u00FF\u00FF"), " 65535");
    row("ascii: first code below 16", 9,
        text("\x05"
             "A"),
        " 1045");
    row("ascii: code 16", 9,
        text("\x10"
             "A"),
        " 16656");
    row("ascii: second code below 16", 9, text("A\x05"), " 1345");
    row("ascii: outside Latin-1", 9, QString(QChar(0x20AC)), " 0");
    row("ascii: outside Latin-1 before another", 9, QString(QChar(0x100) + text("A")), " 1040");
    row("ascii: empty", 9, QString(), "");
    row("unknown type", 10, text("5"), "");
    row("above the list", 11, text("5"), "");
    row("negative type", -1, text("5"), "");
}

void tst_ItemConversion::getPlcValue()
{
    QFETCH(int, dataType);
    QFETCH(QString, value);
    QTEST(ItemData::getPlcValue(value, dataType, text("D201"), QString()), "words");
}

void tst_ItemConversion::numbersComeBack_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("value");

    for (const char *value : {"-32768", "-1", "0", "1", "32767"})
        QTest::addRow("short %s", value) << 1 << text(value);
    for (const char *value : {"-2147483648", "-65536", "-1", "0", "65535", "65536", "2147483647"})
        QTest::addRow("long %s", value) << 2 << text(value);
    for (const char *value : {"0", "1", "65535"})
        QTest::addRow("word %s", value) << 3 << text(value);
    for (const char *value : {"0", "65535", "65536", "4294967295"})
        QTest::addRow("dword %s", value) << 4 << text(value);
    for (const char *value : {"0", "FF", "FFFF"})
        QTest::addRow("hex16 %s", value) << 5 << text(value);
    for (const char *value : {"0", "10000", "FFFFFFFF"})
        QTest::addRow("hex32 %s", value) << 6 << text(value);
    for (const char *value : {"0", "-0.5", "3.1416", "1e+06"})
        QTest::addRow("float %s", value) << 7 << text(value);
    for (const char *value : {"0", "-0.5", "3.141593", "1e+100"})
        QTest::addRow("double %s", value) << 8 << text(value);
}

void tst_ItemConversion::numbersComeBack()
{
    QFETCH(int, dataType);
    QFETCH(QString, value);
    QString words = ItemData::getPlcValue(value, dataType, text("D201"), QString());
    // A controller keeps a negative short as its unsigned word.
    if (dataType == DataTypes::Short)
        words = QString::number(static_cast<quint16>(value.toShort()));
    QCOMPARE(QString::fromUtf8(ItemData::getUserData(words, dataType, text("D201"))), value);
}

void tst_ItemConversion::charactersComeBack()
{
    QByteArray all;
    for (int code = 16; code < 256; ++code)
        all += static_cast<char>(code);
    const QString words
        = ItemData::getPlcValue(QString::fromLatin1(all), 9, text("D200-120"), QString());
    QCOMPARE(ItemData::getUserData(words.mid(1), 9, text("D200-120")), all);
}

QTEST_GUILESS_MAIN(tst_ItemConversion)
#include "tst_itemconversion.moc"
