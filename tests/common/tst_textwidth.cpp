#include "text.h"

#include <common/textwidth.h>

#include <QTest>

// Texts in columns of a terminal.
class tst_TextWidth : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void width_data();
    void width();
    void cut_data();
    void cut();
};

void tst_TextWidth::width_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");

    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("Latin") << text("Zähler") << 6;
    QTest::newRow("ideographs") << text("温度1") << 5;
    QTest::newRow("half-width katakana") << text("ﾌﾟﾚｽ") << 4;
    QTest::newRow("combining mark") << text("e\u0301") << 1;
    QTest::newRow("beyond the basic plane") << text("𠮷") << 2;
}

void tst_TextWidth::width()
{
    QFETCH(QString, text);
    QFETCH(int, width);
    QCOMPARE(textWidth(text), width);
    QCOMPARE(paddedToWidth(text, 7), text + QString(7 - width, u' '));
}

void tst_TextWidth::cut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("result");

    QTest::newRow("too short") << text("1234") << 3 << text("12…");
    QTest::newRow("fits") << text("1234") << 4 << text("1234");
    QTest::newRow("room") << text("1234") << 5 << text("1234");
    QTest::newRow("one column") << text("1234") << 1 << text("…");
    QTest::newRow("no column") << text("1234") << 0 << QString();
    QTest::newRow("less than none") << text("1234") << -1 << QString();
    QTest::newRow("within an ideograph") << text("温度計") << 4 << text("温…");
    QTest::newRow("behind an ideograph") << text("温度計") << 5 << text("温度…");
}

void tst_TextWidth::cut()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    QFETCH(QString, result);
    QCOMPARE(cutToWidth(text, columns), result);
}

QTEST_GUILESS_MAIN(tst_TextWidth)
#include "tst_textwidth.moc"
