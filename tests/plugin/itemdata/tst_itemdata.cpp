#include "itemdata.h"
#include "text.h"

#include <QTest>

// The patterns, and the checks of values and items.
class tst_ItemData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void patterns();
    void getDataLength_data();
    void getDataLength();
    void checkDataForItem_data();
    void checkDataForItem();
    void validateItemFields_data();
    void validateItemFields();
};

void tst_ItemData::patterns()
{
    QCOMPARE(ItemData::lettersPattern, text("(\\D)+"));
    QCOMPARE(ItemData::hexPattern, text("^[0-9a-fA-F]+$"));
    QCOMPARE(ItemData::floatPattern, text("^[-+]?[0-9]*\\.?[0-9]+$"));
    QCOMPARE(ItemData::integerPattern, text("-?\\d+"));
    QCOMPARE(ItemData::unsignedIntegerPattern, text("\\d+"));
    QCOMPARE(ItemData::simpleAddressPattern, text("^\\D+[0-9a-fA-F]+$"));
    QCOMPARE(ItemData::dotAddessPattern, text("^\\D+[0-9]+\\.[0-9]+$"));
    QCOMPARE(ItemData::rangeAddressPattern, text("^\\D+[0-9]+-[0-9]+$"));
    QCOMPARE(ItemData::bitPattern, text("^[0-1]$"));
    QCOMPARE(ItemData::stringPattern, text(".*"));
}

void tst_ItemData::getDataLength_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("length");
    QTest::addColumn<QString>("words");

    const auto row
        = [](const char *name, const char *value, int type, const char *length, const char *words) {
              QTest::newRow(name) << text(value) << type << text(length) << text(words);
          };
    row("bit", "1", 0, "", "0");
    row("short", "5", 1, "", "1");
    row("long", "5", 2, "", "2");
    row("word", "5", 3, "", "1");
    row("dword", "5", 4, "", "2");
    row("hex16", "5", 5, "", "1");
    row("hex32", "5", 6, "", "2");
    row("float", "5", 7, "", "2");
    row("double", "5", 8, "", "4");
    row("the length is not the type's", "5", 2, "10", "2");
    row("ascii, room to spare", "ABC", 9, "2", "2");
    row("ascii, just fits", "ABCD", 9, "2", "2");
    row("ascii, one too many", "ABCDE", 9, "2", "");
    row("ascii, no value", "", 9, "2", "2");
    row("ascii, neither value nor length", "", 9, "", "");
    row("ascii, no length", "A", 9, "", "");
    row("ascii, length is no number", "A", 9, "x", "");
    row("ascii, the length is returned as it is", "A", 9, "02", "02");
    row("unknown type", "5", 10, "1", "");
    row("above the list", "5", 11, "1", "");
    row("negative", "5", -1, "1", "");
}

void tst_ItemData::getDataLength()
{
    QFETCH(QString, value);
    QFETCH(int, dataType);
    QFETCH(QString, length);
    QTEST(ItemData::getDataLength(value, dataType, length), "words");
}

void tst_ItemData::checkDataForItem_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("length");
    QTest::addColumn<int>("code");

    using namespace Errors;
    const auto rowOfLength
        = [](const char *name, int type, const char *value, const char *length, Error code) {
              QTest::newRow(name) << type << text(value) << text(length) << int(code);
          };
    const auto row = [&](const char *name, int type, const char *value, Error code) {
        rowOfLength(name, type, value, "", code);
    };
    row("short: below the least", 1, "-32769", ValueOutOfRange);
    row("short: least", 1, "-32768", Ok);
    row("short: above the least", 1, "-32767", Ok);
    row("short: below the greatest", 1, "32766", Ok);
    row("short: greatest", 1, "32767", Ok);
    row("short: above the greatest", 1, "32768", ValueOutOfRange);
    row("short: zero", 1, "0", Ok);
    row("short: minus zero", 1, "-0", ValueOutOfRange);
    row("short: plus sign", 1, "+1", ValueOutOfRange);
    row("short: plus sign, other", 1, "+5", ValueOutOfRange);
    row("short: blank before", 1, " 1", ValueOutOfRange);
    row("short: blank behind", 1, "1 ", ValueOutOfRange);
    row("short: letter behind", 1, "1a", ValueOutOfRange);
    row("short: no number", 1, "abc", ValueOutOfRange);
    row("short: minus alone", 1, "-", ValueOutOfRange);
    row("short: empty", 1, "", ValueOutOfRange);
    row("short: leading zeros", 1, "0005", Ok);
    row("short: negative with leading zeros", 1, "-0005", Ok);
    row("short: only zeros", 1, "000", Ok);
    row("short: fraction", 1, "1.5", ValueOutOfRange);
    row("short: beyond 64 bits", 1, "99999999999999999999", ValueOutOfRange);
    row("long: below the least", 2, "-2147483649", ValueOutOfRange);
    row("long: least", 2, "-2147483648", Ok);
    row("long: above the least", 2, "-2147483647", Ok);
    row("long: below the greatest", 2, "2147483646", Ok);
    row("long: greatest", 2, "2147483647", Ok);
    row("long: above the greatest", 2, "2147483648", ValueOutOfRange);
    row("word: below the least", 3, "-1", ValueOutOfRange);
    row("word: least", 3, "0", Ok);
    row("word: above the least", 3, "1", Ok);
    row("word: below the greatest", 3, "65534", Ok);
    row("word: greatest", 3, "65535", Ok);
    row("word: above the greatest", 3, "65536", ValueOutOfRange);
    row("word: leading zeros", 3, "007", Ok);
    row("dword: below the least", 4, "-1", ValueOutOfRange);
    row("dword: least", 4, "0", Ok);
    row("dword: below the greatest", 4, "4294967294", Ok);
    row("dword: greatest", 4, "4294967295", Ok);
    row("dword: above the greatest", 4, "4294967296", ValueOutOfRange);
    row("hex16: least", 5, "0", Ok);
    row("hex16: below the least", 5, "-1", ValueOutOfRange);
    row("hex16: below the greatest", 5, "FFFE", Ok);
    row("hex16: greatest", 5, "FFFF", Ok);
    row("hex16: lower case", 5, "ffff", Ok);
    row("hex16: above the greatest", 5, "10000", ValueOutOfRange);
    row("hex16: leading zeros", 5, "00FF", Ok);
    row("hex16: prefix", 5, "0x10", ValueOutOfRange);
    row("hex16: no digit", 5, "FG", ValueOutOfRange);
    row("hex32: below the greatest", 6, "FFFFFFFE", Ok);
    row("hex32: greatest", 6, "FFFFFFFF", Ok);
    row("hex32: above the greatest", 6, "100000000", ValueOutOfRange);
    row("float: fraction", 7, "1.5", Ok);
    row("float: no whole part", 7, "-.5", Ok);
    row("float: plus sign", 7, "+3", Ok);
    row("float: nothing behind the point", 7, "1.", InvalidFormatForDataType);
    row("float: exponent", 7, "1e3", InvalidFormatForDataType);
    row("float: fraction and exponent", 7, "1.5e3", InvalidFormatForDataType);
    row("float: no number", 7, "abc", InvalidFormatForDataType);
    row("float: comma", 7, "1,5", InvalidFormatForDataType);
    row("float: line feed behind", 7, "1.5\n", InvalidFormatForDataType);
    row("double: fraction", 8, "1.5", Ok);
    row("double: exponent", 8, "1e3", InvalidFormatForDataType);
    rowOfLength("ascii: fits", 9, "ABCD", "2", Ok);
    rowOfLength("ascii: too long", 9, "ABCDE", "2", DataLengthInvalid);
    rowOfLength("ascii: two lines", 9, "A\nB", "2", InvalidFormatForDataType);
    rowOfLength("ascii: empty without length", 9, "", "", DataLengthInvalid);
    row("bit: any value", 0, "1", InvalidFormatForDataType);
    row("bit: empty", 0, "", Ok);
    row("unknown type", 10, "1", DataLengthInvalid);
    row("above the list", 11, "1", DataLengthInvalid);
    row("negative type", -1, "1", DataLengthInvalid);
    QTest::newRow("float: digit of another script")
        << 7 << QStringLiteral("\u0661") << QString() << int(InvalidFormatForDataType);
}

void tst_ItemData::checkDataForItem()
{
    QFETCH(QString, value);
    QFETCH(int, dataType);
    QFETCH(QString, length);
    QTEST(int(ItemData::checkDataForItem(value, dataType, length)), "code");
}

void tst_ItemData::validateItemFields_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("dataType");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("code");

    using namespace Errors;
    const auto row = [](const char *name, const char *address, const char *type, const char *value,
                        Error code) {
        QTest::newRow(name) << text(address) << text(type) << text(value) << int(code);
    };
    row("bit read", "DM100.3", "0", "", Ok);
    row("bit set", "DM100.15", "0", "1", Ok);
    row("bit cleared", "DM100.15", "0", "0", Ok);
    row("bit with another value", "DM100.3", "0", "2", DataTypeNotBoolean);
    row("bit with two digits", "DM100.3", "0", "01", DataTypeNotBoolean);
    row("bit with a word", "DM100.3", "0", "true", DataTypeNotBoolean);
    row("bit 14", "DM100.14", "0", "1", Ok);
    row("bit 16", "DM100.16", "0", "1", BitNumberInvalid);
    row("bit 16, read", "DM100.16", "0", "", BitNumberInvalid);
    row("bit 007", "DM100.007", "0", "1", BitNumberInvalid);
    row("bit 07", "DM100.07", "0", "1", Ok);
    row("bit beyond 16 bits", "DM100.70000", "0", "1", BitNumberInvalid);
    row("bit beyond 16 bits, read", "DM100.70000", "0", "", BitNumberInvalid);
    row("bit beyond 16 bits of a short", "DM100.70000", "1", "5", BitNumberInvalid);
    row("a wrong value comes before a wrong bit", "DM100.16", "0", "2", DataTypeNotBoolean);
    row("bit of no device", ".1.2", "0", "1", DataTypeNotBoolean);
    row("bit of no device, read", ".1.2", "0", "", DataTypeNotBoolean);
    row("bit address with two points", "DM.100.3", "0", "1", BitNumberInvalid);
    row("bit address of a short", "DM100.3", "1", "5", Ok);
    row("bit address of a short, any value", "DM100.3", "1", "abc", Ok);
    row("bit 16 of a short", "DM100.16", "1", "5", BitNumberInvalid);
    row("bit address of ascii", "DM100.3", "9", "", DataLengthInvalid);
    row("simple read", "D201", "1", "", Ok);
    row("simple write", "D201", "1", "5", Ok);
    row("simple write out of range", "D201", "1", "32768", ValueOutOfRange);
    row("simple write of a word", "W1F", "3", "65535", Ok);
    row("simple write of a float", "D201", "7", "1.", InvalidFormatForDataType);
    row("simple write of type bit", "D201", "0", "1", InvalidFormatForDataType);
    row("simple read of type bit", "D201", "0", "", Ok);
    row("type that is no number is bit", "D201", "Short", "1", InvalidFormatForDataType);
    row("type beyond 16 bits is bit", "D201", "65537", "1", InvalidFormatForDataType);
    row("unknown type, read", "D201", "10", "", Ok);
    row("unknown type, write", "D201", "10", "1", DataLengthInvalid);
    row("ascii without length", "D200", "9", "", DataLengthInvalid);
    row("ascii without length, write", "D200", "9", "A", DataLengthInvalid);
    row("ascii count", "D200-10", "9", "", Ok);
    row("ascii range", "D200-209", "9", "", Ok);
    row("ascii just fits", "D200-2", "9", "ABCD", Ok);
    row("ascii one too many", "D200-2", "9", "ABCDE", DataLengthInvalid);
    row("ascii two lines", "D200-2", "9", "A\nB", InvalidFormatForDataType);
    row("ascii of no words", "D200-0", "9", "", DataLengthInvalid);
    row("count of a short", "D200-10", "1", "", InvalidAddress);
    row("count of no words of a short", "D200-0", "1", "", InvalidAddress);
    row("range of type bit", "D200-209", "0", "", InvalidAddress);
    row("word count of -1 is neither form", "D4294967295-4294967295", "1", "", Ok);
    row("word count below -1 is neither form", "D1-2147483648", "1", "", Ok);
    row("word count below -1, write", "D1-2147483648", "1", "99999", Ok);
    row("word count below -1 of ascii", "D1-2147483648", "9", "", DataLengthInvalid);
    row("no device letters", "100", "1", "", Ok);
    row("no device letters, write", "100", "1", "99999", Ok);
    row("malformed", "DM100.x", "1", "5", Ok);
    row("empty", "", "1", "", Ok);
    row("empty of ascii", "", "9", "", DataLengthInvalid);
}

void tst_ItemData::validateItemFields()
{
    QFETCH(QString, address);
    QFETCH(QString, dataType);
    QFETCH(QString, value);
    QTEST(int(ItemData::validateItemFields(address, dataType, value,
                                           ItemData::effectiveDataLength(address))),
          "code");
}

QTEST_GUILESS_MAIN(tst_ItemData)
#include "tst_itemdata.moc"
