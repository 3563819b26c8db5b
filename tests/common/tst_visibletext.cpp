#include <common/visibletext.h>

#include <QTest>

class tst_VisibleText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void visibleText_data();
    void visibleText();
};

void tst_VisibleText::visibleText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *title, const QString &text, const char *expected) {
        QTest::newRow(title) << text << QString::fromUtf8(expected);
    };
    row("empty", QString(), "");
    row("plain", QStringLiteral("Press 1"), "Press 1");
    row("carriage return, line feed, tabulator", QStringLiteral("a\r\n\tb"), R"(a\r\n\tb)");
    row("zero", QString(QChar(0)), "\\x00");
    row("0x1f", QString(QChar(0x1f)), "\\x1f");
    row("0x20 inside", QStringLiteral("a b"), "a b");
    row("0x21", QString(QChar(0x21)), "!");
    row("0x7e", QString(QChar(0x7e)), "~");
    row("0x7f", QString(QChar(0x7f)), "\\x7f");
    row("0x80", QString(QChar(0x80)), "\\x80");
    row("space at the end", QStringLiteral("AB  "), "AB \\x20");
    row("space alone", QStringLiteral(" "), "\\x20");
    row("space at the beginning", QStringLiteral(" A"), " A");
    row("backslash", QStringLiteral("\\r"), R"(\\r)");
    row("letter beyond ASCII", QStringLiteral(u"ä値"), "ä値");
    row("beyond 16 bits", QStringLiteral(u"\U0001f600"), "\xf0\x9f\x98\x80");
    row("line separator", QString(QChar(0x2028)), "\\u2028");
    row("writing direction", QString(QChar(0x202e)), "\\u202e");
    row("paragraph separator", QString(QChar(0x2029)), "\\u2029");
    row("half a character", QString(QChar(0xd800)), "\xef\xbf\xbd");
}

void tst_VisibleText::visibleText()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(visible(text), expected);
}

QTEST_GUILESS_MAIN(tst_VisibleText)
#include "tst_visibletext.moc"
