#include "itemdata.h"
#include "text.h"

#include <QTest>

// The bits of a word, and the conversions of the type Bit.
class tst_BitConversion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bitOperations_data();
    void bitOperations();
    void getUserData_data();
    void getUserData();
    void getPlcValue_data();
    void getPlcValue();
    void getBoolInt_data();
    void getBoolInt();
    void everyBitOfEveryWord();
};

void tst_BitConversion::bitOperations_data()
{
    QTest::addColumn<int>("word");
    QTest::addColumn<int>("bit");
    QTest::addColumn<int>("set");
    QTest::addColumn<int>("cleared");
    QTest::addColumn<bool>("checked");

    QTest::newRow("lowest, clear") << 0 << 0 << 1 << 0 << false;
    QTest::newRow("lowest, set") << 65535 << 0 << 65535 << 65534 << true;
    QTest::newRow("below the highest") << 0 << 14 << 16384 << 0 << false;
    QTest::newRow("highest, clear") << 0 << 15 << 32768 << 0 << false;
    QTest::newRow("highest, set") << 32768 << 15 << 32768 << 0 << true;
    QTest::newRow("above the highest") << 5 << 16 << 5 << 5 << false;
    QTest::newRow("above the highest, all set") << 65535 << 16 << 65535 << 65535 << false;
    QTest::newRow("31") << 5 << 31 << 5 << 5 << false;
    QTest::newRow("32") << 5 << 32 << 5 << 5 << false;
    QTest::newRow("33") << 5 << 33 << 5 << 5 << false;
    QTest::newRow("255") << 65535 << 255 << 65535 << 65535 << false;
    QTest::newRow("256 is 0") << 0 << 256 << 1 << 0 << false;
    QTest::newRow("271 is 15") << 65535 << 271 << 65535 << 32767 << true;
    QTest::newRow("272 is 16") << 5 << 272 << 5 << 5 << false;
    QTest::newRow("65535 is 255") << 5 << 65535 << 5 << 5 << false;
}

void tst_BitConversion::bitOperations()
{
    QFETCH(int, word);
    QFETCH(int, bit);
    const auto value = static_cast<unsigned short>(word);
    const auto number = static_cast<unsigned short>(bit);
    QTEST(int(ItemData::bitSet(value, number)), "set");
    QTEST(int(ItemData::bitClear(value, number)), "cleared");
    QTEST(ItemData::bitCheck(value, number), "checked");
}

void tst_BitConversion::getUserData_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("value");

    const auto row
        = [](const char *name, const char *data, const char *address, const char *value) {
              QTest::newRow(name) << text(data) << text(address) << QByteArray(value);
          };
    row("set", "8", "DM100.3", "1");
    row("clear", "8", "DM100.2", "0");
    row("highest", "32768", "DM100.15", "1");
    row("above the highest", "65535", "DM100.16", "0");
    row("three digits address no bit", "65535", "DM100.007", "0");
    row("271 addresses no bit", "65535", "DM100.271", "0");
    row("a number beyond 16 bits addresses no bit", "65535", "DM100.70000", "0");
    row("no bit in the address", "65535", "DM100", "0");
    row("answer beyond 16 bits", "65536", "DM100.0", "0");
    row("two words", "1 1", "DM100.0", "0");
}

void tst_BitConversion::getUserData()
{
    QFETCH(QString, data);
    QFETCH(QString, address);
    QTEST(ItemData::getUserData(data, 0, address), "value");
}

void tst_BitConversion::getPlcValue_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("bitValue");
    QTest::addColumn<QString>("result");

    const auto row = [](const char *name, const char *word, const char *address,
                        const char *bitValue, const char *result) {
        QTest::newRow(name) << text(word) << text(address) << text(bitValue) << text(result);
    };
    row("clear", "8", "DM100.3", "0", "0");
    row("set", "0", "DM100.3", "1", "8");
    row("set beside others", "40000", "DM100.3", "1", "40008");
    row("clear beside others", "65535", "DM100.15", "0", "32767");
    row("any other number sets", "0", "DM100.0", "65535", "1");
    row("beyond 16 bits clears", "1", "DM100.0", "65536", "0");
    row("negative clears", "1", "DM100.0", "-1", "0");
    row("no number clears", "1", "DM100.0", "x", "0");
    row("empty clears", "1", "DM100.0", "", "0");
    row("no bit in the address", "5", "DM100", "1", "5");
    row("above the highest", "5", "DM100.16", "1", "5");
    row("three digits", "0", "DM100.007", "1", "128");
    row("271 is 15, set", "0", "DM100.271", "1", "32768");
    row("271 is 15, clear", "65535", "DM100.271", "0", "32767");
    row("65551 is 15", "0", "DM100.65551", "1", "32768");
    row("70000 is 112", "4", "DM100.70000", "1", "4");
    row("word that is no number", "x", "DM100.0", "1", "1");
}

void tst_BitConversion::getPlcValue()
{
    QFETCH(QString, word);
    QFETCH(QString, address);
    QFETCH(QString, bitValue);
    QTEST(ItemData::getPlcValue(word, 0, address, bitValue), "result");
}

void tst_BitConversion::getBoolInt_data()
{
    QTest::addColumn<QString>("bitValue");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("result");

    QTest::newRow("set") << text("1") << text("0") << text("DM100.3") << text("8");
    QTest::newRow("clear") << text("0") << text("8") << text("DM100.3") << text("0");
    QTest::newRow("any other number sets")
        << text("7") << text("0") << text("DM100.15") << text("32768");
    QTest::newRow("no number clears") << text("x") << text("9") << text("DM100.3") << text("1");
    QTest::newRow("no bit in the address") << text("1") << text("5") << text("DM100") << text("5");
    QTest::newRow("three digits address no bit")
        << text("1") << text("5") << text("DM100.003") << text("5");
    QTest::newRow("271 addresses no bit")
        << text("1") << text("5") << text("DM100.271") << text("5");
    QTest::newRow("a number beyond 16 bits addresses no bit")
        << text("1") << text("4") << text("DM100.70000") << text("4");
    QTest::newRow("two digits") << text("1") << text("0") << text("DM100.03") << text("8");
    QTest::newRow("word that is no number")
        << text("1") << text("x") << text("DM100.0") << text("1");
}

void tst_BitConversion::getBoolInt()
{
    QFETCH(QString, bitValue);
    QFETCH(QString, word);
    QFETCH(QString, address);
    QTEST(ItemData::getBoolInt(bitValue, word, address), "result");
}

// A write of one bit does not change the other fifteen bits of the word.
void tst_BitConversion::everyBitOfEveryWord()
{
    for (int bit = 0; bit < 16; ++bit) {
        const QString address = text("DM100.") + QString::number(bit);
        for (int word = 0; word <= 65535; ++word) {
            const QString current = QString::number(word);
            const int set = ItemData::getPlcValue(current, 0, address, text("1")).toInt();
            const int cleared = ItemData::getPlcValue(current, 0, address, text("0")).toInt();
            if (set != (word | (1 << bit)) || cleared != (word & ~(1 << bit)))
                QFAIL(qPrintable(QStringLiteral("bit %1 of %2").arg(bit).arg(word)));
        }
    }
}

QTEST_GUILESS_MAIN(tst_BitConversion)
#include "tst_bitconversion.moc"
