#include "generatedtexts.h"
#include "hostlink.h"
#include "text.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>

// Numbers and end points are read by hand: Qt's own conversions and the patterns say the same of
// every text.
class tst_Digits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void digitValues();
    void numbersOfAllTypes();
    void textsOfNumbers_data();
    void textsOfNumbers();
    void endPoints();
};

void tst_Digits::digitValues()
{
    for (int code = 0; code <= 0xFFFF; ++code) {
        bool isDigit = false;
        const int expected = code < 0x80 ? QString(QChar(code)).toInt(&isDigit, 16) : 0;
        QCOMPARE(digitValue(QChar(code)), isDigit ? expected : 16);
    }
}

void tst_Digits::numbersOfAllTypes()
{
    GeneratedTexts texts(strangeTexts + numbers);
    int read = 0;
    for (int i = 0; i < 200000; ++i) {
        const QString number = texts.spoiled(texts.pieces(2), 4);
        read += number.toInt() != 0 ? 1 : 0;
        QCOMPARE(decimalNumber<qint16>(number), number.toShort());
        QCOMPARE(decimalNumber<quint16>(number), number.toUShort());
        QCOMPARE(decimalNumber<qint32>(number), number.toInt());
        QCOMPARE(decimalNumber<quint32>(number), number.toUInt());
    }
    QVERIFY2(read > 20000, QByteArray::number(read).constData());
}

void tst_Digits::textsOfNumbers_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("digits");

    QTest::newRow("zero") << qint64(0) << text("0");
    QTest::newRow("one digit") << qint64(7) << text("7");
    QTest::newRow("negative") << qint64(-1) << text("-1");
    QTest::newRow("greatest word") << qint64(65535) << text("65535");
    QTest::newRow("least") << std::numeric_limits<qint64>::min() << text("-9223372036854775808");
    QTest::newRow("greatest") << std::numeric_limits<qint64>::max() << text("9223372036854775807");
}

void tst_Digits::textsOfNumbers()
{
    QFETCH(qint64, number);
    QTEST(decimalText(number), "digits");
}

void tst_Digits::endPoints()
{
    const QRegularExpression address(
        QStringLiteral("^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                       "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$"));
    const QRegularExpression port(QStringLiteral("\\d+"));
    GeneratedTexts texts(strangeTexts + QVector<QString>{text("1"), text("025"), text(".")});
    int valid = 0;
    for (int i = 0; i < 100000; ++i) {
        QString ip = QString::number(texts.number(300));
        for (int part = 1; part < 4; ++part)
            ip += QLatin1Char('.')
                  + QString::number(texts.number(270))
                        .rightJustified(texts.number(5), QLatin1Char('0'));
        ip = texts.spoiled(ip, 3);
        const QString portText = texts.pieces(3);
        Errors::Error expected = Errors::Ok;
        if (!port.match(portText).hasMatch())
            expected = Errors::InvalidPort;
        else if (!address.match(ip).hasMatch())
            expected = Errors::InvalidAddress;
        valid += expected == Errors::Ok ? 1 : 0;
        QCOMPARE(int(ethernetPLC::validate(ip, portText)), int(expected));
    }
    QVERIFY2(valid > 5000, QByteArray::number(valid).constData());
}

QTEST_GUILESS_MAIN(tst_Digits)
#include "tst_digits.moc"
