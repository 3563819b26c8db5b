#include "text.h"

#include <watch/watchkeys.h>

#include <QTest>

// What the keys change, tested without a terminal.
class tst_WatchKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void moves_data();
    void moves();
    void filter_data();
    void filter();
    void others_data();
    void others();
};

void tst_WatchKeys::moves_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<int>("firstRow");

    QTest::newRow("up") << text("\x1b[A") << 99;
    QTest::newRow("up, application mode") << text("\x1bOA") << 99;
    QTest::newRow("down") << text("\x1b[B") << 101;
    QTest::newRow("down, application mode") << text("\x1bOB") << 101;
    QTest::newRow("page up") << text("\x1b[5~") << 90;
    QTest::newRow("page down") << text("\x1b[6~") << 110;
    QTest::newRow("several at once") << text("\x1b[B\x1b[B\x1b[6~\x1b[A") << 111;
    QTest::newRow("a letter") << text("A") << 100;
}

void tst_WatchKeys::moves()
{
    QFETCH(QString, keys);
    QFETCH(int, firstRow);

    WatchWish wish;
    wish.firstRow = 100;
    wish.page = 10;
    QVERIFY(!applyKeys(keys, &wish));
    QCOMPARE(wish.firstRow, firstRow);
}

void tst_WatchKeys::filter_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<bool>("isTyping");

    QTest::newRow("typed") << text("/oven") << text("oven") << true;
    QTest::newRow("keys of the table") << text("/oq/") << text("oq/") << true;
    QTest::newRow("Enter") << text("/oven\r") << text("oven") << false;
    QTest::newRow("backspace") << text("/oven\x7f\b") << text("ov") << true;
    QTest::newRow("backspace of nothing") << text("/\x7f") << QString() << true;
    QTest::newRow("another control key") << text("/o\x04n") << text("on") << true;
    QTest::newRow("Esc while typing") << text("/oven\x1b") << QString() << false;
    QTest::newRow("Esc later") << text("/oven\r\x1b") << QString() << false;
    QTest::newRow("moved while typing") << text("/ov\x1b[Ben") << text("oven") << true;
    QTest::newRow("longer") << text("/ov\r/en") << text("oven") << true;
}

void tst_WatchKeys::filter()
{
    QFETCH(QString, keys);
    QFETCH(QString, filter);
    QFETCH(bool, isTyping);

    WatchWish wish;
    QVERIFY(!applyKeys(keys, &wish));
    QCOMPARE(wish.filter, filter);
    QCOMPARE(wish.isTyping, isTyping);
}

void tst_WatchKeys::others_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<bool>("ends");
    QTest::addColumn<bool>("wantsOutages");

    QTest::newRow("q") << text("q") << true << false;
    QTest::newRow("o") << text("o") << false << true;
    QTest::newRow("o twice") << text("oo") << false << false;
    QTest::newRow("another letter") << text("x") << false << false;
    QTest::newRow("none") << QString() << false << false;
}

void tst_WatchKeys::others()
{
    QFETCH(QString, keys);
    QFETCH(bool, ends);
    QFETCH(bool, wantsOutages);

    WatchWish wish;
    QCOMPARE(applyKeys(keys, &wish), ends);
    QCOMPARE(wish.wantsOutages, wantsOutages);
}

QTEST_GUILESS_MAIN(tst_WatchKeys)
#include "tst_watchkeys.moc"
