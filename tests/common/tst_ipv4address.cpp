#include <common/ipv4address.h>

#include "text.h"

#include <QTest>

// Texts that are IPv4 addresses, and those that only look so.
class tst_Ipv4Address : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dottedQuad_data();
    void dottedQuad();
    void loopback_data();
    void loopback();
};

void tst_Ipv4Address::dottedQuad_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isQuad");
    QTest::addColumn<qint64>("number");

    const auto row = [](const char *title, const char *address, bool isQuad, qint64 number) {
        QTest::newRow(title) << text(address) << isQuad << number;
    };
    // No number is written as -1.
    row("first", "0.0.0.0", true, 0x00000000);
    row("order of the numbers", "1.2.3.4", true, 0x01020304);
    row("one below the last", "255.255.255.254", true, 0xfffffffe);
    row("last", "255.255.255.255", true, 0xffffffff);
    row("254", "254.1.1.254", true, 0xfe0101fe);
    row("256 at the front", "256.1.1.1", false, -1);
    row("256 at the end", "1.1.1.256", false, -1);
    row("9, 99 and 199", "9.99.199.1", true, 0x0963c701);
    row("10, 100 and 200", "10.100.200.1", true, 0x0a64c801);
    row("249 and 250", "249.250.1.1", true, 0xf9fa0101);
    row("300", "1.300.1.1", false, -1);
    row("one leading zero", "1.2.3.04", true, -1);
    row("two leading zeros", "001.2.3.4", true, -1);
    row("three leading zeros", "0001.2.3.4", false, -1);
    row("leading zeros alone", "1.00.3.4", true, -1);
    row("leading zero before 99", "1.2.099.4", true, -1);
    row("three numbers", "1.2.3", false, -1);
    row("five numbers", "1.2.3.4.5", false, -1);
    row("number missing", "1..3.4", false, -1);
    row("dot in front", ".1.2.3.4", false, -1);
    row("dot behind", "1.2.3.4.", false, -1);
    row("blank in front", " 1.2.3.4", false, -1);
    row("blank behind", "1.2.3.4 ", false, -1);
    row("line feed behind", "1.2.3.4\n", false, -1);
    QTest::newRow("zero byte behind") << text("1.2.3.4") + QChar(0) << false << qint64{-1};
    row("sign", "+1.2.3.4", false, -1);
    row("hexadecimal", "0x1.2.3.4", false, -1);
    row("other digits", "١.2.3.4", false, -1);
    row("name", "localhost", false, -1);
    row("IPv6", "::1", false, -1);
    row("empty", "", false, -1);
}

void tst_Ipv4Address::dottedQuad()
{
    QFETCH(QString, address);
    QFETCH(bool, isQuad);
    QFETCH(qint64, number);

    const std::optional<quint32> result = ipv4Address(address);
    QCOMPARE(result ? qint64{*result} : qint64{-1}, number);
    QCOMPARE(isDottedQuad(address), isQuad);
}

void tst_Ipv4Address::loopback_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isIt");

    QTest::newRow("one below the first") << text("126.255.255.255") << false;
    QTest::newRow("first") << text("127.0.0.0") << true;
    QTest::newRow("usual") << text("127.0.0.1") << true;
    QTest::newRow("last") << text("127.255.255.255") << true;
    QTest::newRow("one above the last") << text("128.0.0.0") << false;
    QTest::newRow("every address") << text("0.0.0.0") << false;
    QTest::newRow("at the end") << text("1.0.0.127") << false;
}

void tst_Ipv4Address::loopback()
{
    QFETCH(QString, address);
    QFETCH(bool, isIt);

    QCOMPARE(isLoopback(address), isIt);
}

QTEST_GUILESS_MAIN(tst_Ipv4Address)
#include "tst_ipv4address.moc"
