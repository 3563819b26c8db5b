#include <common/textwidth.h>

#include <QTest>

namespace {

QString utf8(const char *bytes)
{
    return QString::fromUtf8(bytes);
}

} // namespace

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
    QTest::newRow("Latin") << utf8("Zähler") << 6;
    QTest::newRow("ideographs") << utf8("温度1") << 5;
    QTest::newRow("half-width katakana") << utf8("ﾌﾟﾚｽ") << 4;
    QTest::newRow("combining mark") << utf8("e\u0301") << 1;
    QTest::newRow("beyond the basic plane") << utf8("𠮷") << 2;
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

    QTest::newRow("too short") << utf8("1234") << 3 << utf8("12…");
    QTest::newRow("fits") << utf8("1234") << 4 << utf8("1234");
    QTest::newRow("room") << utf8("1234") << 5 << utf8("1234");
    QTest::newRow("one column") << utf8("1234") << 1 << utf8("…");
    QTest::newRow("no column") << utf8("1234") << 0 << QString();
    QTest::newRow("less than none") << utf8("1234") << -1 << QString();
    QTest::newRow("within an ideograph") << utf8("温度計") << 4 << utf8("温…");
    QTest::newRow("behind an ideograph") << utf8("温度計") << 5 << utf8("温度…");
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
