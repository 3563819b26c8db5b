#include "itemdata.h"
#include "text.h"

#include <QTest>

// The parts of an address in all its forms.
class tst_ItemAddress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void getDevice_data();
    void getDevice();
    void getBitNo_data();
    void getBitNo();
    void getBitNumber_data();
    void getBitNumber();
    void addressWordCount_data();
    void addressWordCount();
};

void tst_ItemAddress::getDevice_data()
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
    row("bit with nothing before the first point", ".1.2", "0", "");
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

    // Only 0 to 9 count as digits; other digits count as letters.
    QTest::newRow("digit of another script")
        << QStringLiteral("D\u06615") << text("1") << QStringLiteral("D\u06615");
    QTest::newRow("digit of another script, last")
        << QStringLiteral("D\u0661") << text("1") << QString();
    QTest::newRow("digit of another script, bit")
        << QStringLiteral("D\u06615.3") << text("0") << QStringLiteral("D\u06615");
    QTest::newRow("digit of another script, range")
        << QStringLiteral("D\u06615-3") << text("9") << QStringLiteral("D\u06615");
}

void tst_ItemAddress::getDevice()
{
    QFETCH(QString, address);
    QFETCH(QString, dataType);
    QTEST(ItemData::getDevice(address, dataType), "device");
}

void tst_ItemAddress::getBitNo_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("bit");

    QTest::newRow("first") << text("DM100.0") << 0;
    QTest::newRow("one") << text("DM100.3") << 3;
    QTest::newRow("last") << text("DM100.15") << 15;
    QTest::newRow("above the last") << text("DM100.16") << 16;
    QTest::newRow("far above") << text("DM100.300") << 300;
    QTest::newRow("beyond 16 bits") << text("DM100.70000") << 70000;
    QTest::newRow("overlong") << text("DM100.99999999999") << 0;
    QTest::newRow("leading zeros") << text("DM100.007") << 7;
    QTest::newRow("simple address") << text("DM100") << 16;
    QTest::newRow("no number") << text("DM100.x") << 16;
    QTest::newRow("digit of another script") << QStringLiteral("DM100.\u0661") << 16;
    QTest::newRow("empty") << QString() << 16;
}

void tst_ItemAddress::getBitNo()
{
    QFETCH(QString, address);
    QTEST(ItemData::getBitNo(address), "bit");
}

void tst_ItemAddress::getBitNumber_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("bit");

    QTest::newRow("first") << text("DM100.0") << 0;
    QTest::newRow("below the last") << text("DM100.14") << 14;
    QTest::newRow("last") << text("DM100.15") << 15;
    QTest::newRow("above the last") << text("DM100.16") << -1;
    QTest::newRow("two digits") << text("DM100.07") << 7;
    QTest::newRow("three digits") << text("DM100.007") << -1;
    QTest::newRow("beyond 16 bits") << text("DM100.70000") << -1;
    QTest::newRow("no number") << text("DM100.x") << 0;
    QTest::newRow("no number, two characters") << text("DM100.xy") << 0;
    QTest::newRow("no number, three characters") << text("DM100.xyz") << -1;
    QTest::newRow("nothing behind the point") << text("DM100.") << 0;
    QTest::newRow("negative") << text("DM100.-1") << 0;
    QTest::newRow("no point") << text("DM100") << -1;
    QTest::newRow("two points") << text("DM100.3.4") << -1;
    QTest::newRow("empty") << QString() << -1;
}

void tst_ItemAddress::getBitNumber()
{
    QFETCH(QString, address);
    QTEST(::getBitNumber(address), "bit");
}

void tst_ItemAddress::addressWordCount_data()
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

    QTest::newRow("digit of another script before the number")
        << QStringLiteral("D\u06615-3") << 3 << text("3");
    QTest::newRow("digit of another script as the second number")
        << QStringLiteral("D200-\u0661") << -1 << QString();
}

void tst_ItemAddress::addressWordCount()
{
    QFETCH(QString, address);
    QTEST(ItemData::addressWordCount(address), "words");
    QTEST(ItemData::effectiveDataLength(address), "length");
}

QTEST_GUILESS_MAIN(tst_ItemAddress)
#include "tst_itemaddress.moc"
