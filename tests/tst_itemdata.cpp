#include "itemdata.h"
#include "text.h"

#include <QTest>

// The address grammar and the checks.
class tst_ItemData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void patterns();
    void getDevice_data();
    void getDevice();
    void getBitNo_data();
    void getBitNo();
    void getBitNumber_data();
    void getBitNumber();
    void addressWordCount_data();
    void addressWordCount();
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

void tst_ItemData::getDevice_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("dataType");
    QTest::addColumn<QString>("device");

    const auto row
        = [](const char *name, const char *address, const char *type, const char *device) {
              QTest::newRow(name) << text(address) << text(type) << text(device);
          };
    row("simple", "D201", "1", "D201");
    row("simple bit device", "R100", "3", "R100");
    row("simple hexadecimal", "W1F", "1", "W1F");
    row("simple of type bit", "DM100", "0", "DM100");
    row("bit of type bit", "DM100.3", "0", "DM100");
    row("bit of another type", "DM100.3", "1", "");
    row("bit of a type that is no number", "DM100.3", "BIT", "DM100");
    row("bit of a type beyond 16 bits", "DM100.3", "65536", "DM100");
    row("bit of a negative type", "DM100.3", "-1", "DM100");
    row("bit with two points", "DM.100.3", "0", "DM");
    row("bit without number", "DM100.", "0", "");
    row("count", "D200-10", "9", "D200");
    row("range", "D200-209", "9", "D200");
    row("range of type bit", "D200-209", "0", "D200");
    row("range with a minus in the device", "D-M200-209", "9", "D");
    row("range with a hexadecimal number", "W1F-2", "9", "");
    row("no device letters", "100", "1", "");
    row("no number", "DM", "1", "");
    row("letters that are hexadecimal digits", "DAB", "1", "DAB");
    row("empty", "", "1", "");
    row("blank behind", "D201 ", "1", "");
    row("line feed behind", "D201\n", "1", "D201\n");
}

void tst_ItemData::getDevice()
{
    QFETCH(QString, address);
    QFETCH(QString, dataType);
    QTEST(ItemData::getDevice(address, dataType), "device");
}

void tst_ItemData::getBitNo_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("bit");

    QTest::newRow("first") << text("DM100.0") << 0;
    QTest::newRow("one") << text("DM100.3") << 3;
    QTest::newRow("last") << text("DM100.15") << 15;
    QTest::newRow("above the last") << text("DM100.16") << 16;
    QTest::newRow("far above") << text("DM100.300") << 300;
    QTest::newRow("overlong") << text("DM100.99999999999") << 0;
    QTest::newRow("leading zeros") << text("DM100.007") << 7;
    QTest::newRow("simple address") << text("DM100") << 16;
    QTest::newRow("no number") << text("DM100.x") << 16;
    QTest::newRow("empty") << QString() << 16;
}

void tst_ItemData::getBitNo()
{
    QFETCH(QString, address);
    QTEST(ItemData::getBitNo(address), "bit");
}

void tst_ItemData::getBitNumber_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("bit");

    QTest::newRow("first") << text("DM100.0") << 0;
    QTest::newRow("below the last") << text("DM100.14") << 14;
    QTest::newRow("last") << text("DM100.15") << 15;
    QTest::newRow("above the last") << text("DM100.16") << -1;
    QTest::newRow("two digits") << text("DM100.07") << 7;
    QTest::newRow("three digits") << text("DM100.007") << -1;
    QTest::newRow("no number") << text("DM100.x") << 0;
    QTest::newRow("no number, two characters") << text("DM100.xy") << 0;
    QTest::newRow("no number, three characters") << text("DM100.xyz") << -1;
    QTest::newRow("nothing behind the point") << text("DM100.") << 0;
    QTest::newRow("negative") << text("DM100.-1") << 0;
    QTest::newRow("no point") << text("DM100") << -1;
    QTest::newRow("two points") << text("DM100.3.4") << -1;
    QTest::newRow("empty") << QString() << -1;
}

void tst_ItemData::getBitNumber()
{
    QFETCH(QString, address);
    QTEST(::getBitNumber(address), "bit");
}

void tst_ItemData::addressWordCount_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("words");
    QTest::addColumn<QString>("length");

    const auto row = [](const char *name, const char *address, int words, const char *length) {
        QTest::newRow(name) << text(address) << words << text(length);
    };
    row("count", "D200-10", 10, "10");
    row("count of one", "D200-1", 1, "1");
    row("count of none", "D200-0", 0, "");
    row("count below the first number", "D5-4", 4, "4");
    row("count equal to the first number", "D5-5", 5, "5");
    row("range above the first number", "D5-6", 2, "2");
    row("range", "D200-209", 10, "10");
    row("range from 0", "D0-10", 11, "11");
    row("range from 0 to 0", "D0-0", 0, "");
    row("first number beyond 32 bits", "D4294967296-5", 0, "");
    row("second number beyond 32 bits", "D5-4294967296", 0, "");
    row("range of 2147483647 words", "D1-2147483647", 2147483647, "2147483647");
    row("range of 2147483648 words", "D1-2147483648", -2147483647 - 1, "");
    row("count of 4294967295 words", "D4294967295-4294967295", -1, "");
    row("range of 4294967296 words", "D0-4294967295", 0, "");
    row("simple", "D201", -1, "");
    row("bit", "DM100.3", -1, "");
    row("hexadecimal range", "W1F-20", -1, "");
    row("two minus signs", "D5-6-7", -1, "");
    row("no device letters", "5-6", -1, "");
    row("empty", "", -1, "");
}

void tst_ItemData::addressWordCount()
{
    QFETCH(QString, address);
    QTEST(ItemData::addressWordCount(address), "words");
    QTEST(ItemData::effectiveDataLength(address), "length");
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
    row("a wrong value comes before a wrong bit", "DM100.16", "0", "2", DataTypeNotBoolean);
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
