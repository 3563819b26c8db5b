#include "text.h"

#include <common/textwidth.h>
#include <watch/watchtable.h>

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

// The table of a watch, tested without a process and a terminal.

namespace {

/// One item with a value, followed by `more` items with an error.
std::vector<WatchedDevice> pressWith(int more)
{
    WatchedDevice press;
    press.name = text("Press");
    WatchedItem counter;
    counter.last = {QDateTime(QDate(2024, 2, 29), QTime(12, 34, 56, 7)),
                    text("Counter"),
                    text("-123456789"),
                    {},
                    false};
    counter.value = counter.last.value;
    counter.changes = 3;
    press.items.push_back(counter);
    for (int i = 0; i < more; ++i) {
        WatchedItem item;
        item.last.item = text("Item %1").arg(i);
        item.last.error = text("no such address\x1b[31m");
        item.errors = 1;
        press.items.push_back(item);
    }
    press.time = counter.last.time;
    press.lastGoodMs = 0;
    return {press};
}

/// The lines of the screen, 5 seconds after the values were read.
QStringList colouredScreen(const std::vector<WatchedDevice> &devices, ScreenSize size,
                           bool hasColour, const QList<CountedEntry> &log = {}, WatchWish wish = {})
{
    WatchState state;
    state.devices = devices;
    state.log = log;
    return watchScreenText({{text("title of the watch")}, state, 5000, 1}, size, hasColour, &wish)
        .split(u'\n');
}

/// The same without the colours.
QStringList screen(const std::vector<WatchedDevice> &devices, ScreenSize size,
                   const QList<CountedEntry> &log = {}, const WatchWish &wish = {})
{
    static const QRegularExpression colours(text("\x1b\\[[0-9;]*m"));
    QStringList lines = colouredScreen(devices, size, true, log, wish);
    return lines.replaceInStrings(colours, QString());
}

} // namespace

class tst_WatchTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void age_data();
    void age();
    void wholeScreen();
    void suspect();
    void screenRows_data();
    void screenRows();
    void screenColumns_data();
    void screenColumns();
    void errorColumnWidth();
    void marks_data();
    void marks();
    void logBelow();
    void oldLogEntries_data();
    void oldLogEntries();
    void scrolling_data();
    void scrolling();
    void filter_data();
    void filter();
};

void tst_WatchTable::age_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *title, qint64 milliseconds, const char *shown) {
        QTest::newRow(title) << milliseconds << text(shown);
    };
    row("none", 0, "0 s");
    row("below a second", 999, "0 s");
    row("below a minute", 59'999, "59 s");
    row("a minute", 60'000, "1 min 00 s");
    row("below an hour", 3'599'999, "59 min 59 s");
    row("an hour", 3'600'000, "1 h 00 min");
    row("below a day", 86'399'999, "23 h 59 min");
    row("a day", 86'400'000, "1 d 00 h");
    row("years", Q_INT64_C(86'400'000) * 1000, "1000 d 00 h");
}

void tst_WatchTable::age()
{
    QFETCH(qint64, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(ageText(milliseconds), text);
}

// Control characters of the error are escaped.
void tst_WatchTable::wholeScreen()
{
    const QStringList lines{
        text("title of the watch"),
        text("Device  Item     Value       Age  Error                    Changes  Errors  "
             "Suspect  Last read     "),
        text("Press   Item 0                    no such address\\x1b[31m  0        1       "
             "0                      "),
        text("Press                        5 s                                    0       "
             "         12:34:56.007  "),
        text("Press   Counter  -123456789  5 s                           3        0       "
             "0        12:34:56.007  ")};
    QCOMPARE(screen(pressWith(1), {200, 24}), lines);
}

// It has a value, but stands among the errors. The count stays.
void tst_WatchTable::suspect()
{
    std::vector<WatchedDevice> devices = pressWith(0);
    WatchedItem &counter = devices.front().items.front();
    counter.suspects = 2;
    counter.last.suspect = text("no line end");
    const QString header = text("Device  Item     Value       Age  Error                 Changes  "
                                "Errors  Suspect  Last read     ");
    QCOMPARE(screen(devices, {200, 24}).mid(1),
             QStringList({header,
                          text("Press   Counter  -123456789  5 s  suspect: no line end  3        "
                               "0       2        12:34:56.007  "),
                          text("Press                        5 s                                 "
                               "0                12:34:56.007  ")}));
    counter.last.suspect.clear();
    QVERIFY(screen(devices, {200, 24}).at(3).contains(text("  2        12:34:56.007")));
}

void tst_WatchTable::screenRows_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("lines");
    QTest::addColumn<QString>("lastLine");

    QTest::newRow("room") << 8 << 7 << text("Press   Counter");
    QTest::newRow("fits") << 7 << 7 << text("Press   Counter");
    QTest::newRow("one too few") << 6 << 6 << text("… 2 more");
    QTest::newRow("a row alone") << 3 << 3 << text("… 5 more, 3 of them with an error");
    QTest::newRow("none") << 2 << 2 << text("… 5 more, 3 of them with an error");
    QTest::newRow("the title alone") << 1 << 1 << text("title of the watch");
}

void tst_WatchTable::screenRows()
{
    QFETCH(int, rows);
    QFETCH(int, lines);
    QFETCH(QString, lastLine);

    const QStringList found = screen(pressWith(3), {200, rows});
    QCOMPARE(found.size(), lines);
    QVERIFY2(found.last().startsWith(lastLine), qPrintable(found.last()));
}

void tst_WatchTable::screenColumns_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("line");

    QTest::newRow("no room for the age") << 26 << text("Press   Counter  -123456… ");
    QTest::newRow("the age is cut") << 29 << text("Press   Counter  -123456…  5…");
    QTest::newRow("a number never looks whole") << 20 << text("Press   Counter  -1…");
    QTest::newRow("one column") << 1 << text("…");
}

void tst_WatchTable::screenColumns()
{
    QFETCH(int, columns);
    QFETCH(QString, line);

    const QStringList lines = screen(pressWith(1), {columns, 24});
    QCOMPARE(lines.at(4), line);
    for (const QString &any : lines)
        QVERIFY2(textWidth(any) <= columns, qPrintable(any));
}

// The columns after it are shown as long as the error has twenty columns. An error that does not
// fit loses what stands before its reason.
void tst_WatchTable::errorColumnWidth()
{
    std::vector<WatchedDevice> devices = pressWith(1);
    const auto errorIn = [&devices](int columns) {
        return screen(devices, {columns, 24}).at(2).mid(34).section(text("  0 "), 0, 0);
    };
    QCOMPARE(errorIn(97), text("no such address\\x1b[31m"));
    QCOMPARE(errorIn(96), text("no such address\\x1b[3…"));
    QCOMPARE(errorIn(70), text("no such address\\x1b…"));
    devices.at(0).items.at(1).last.error
        = text("[RD DM1\r ] error from <Item 0> :Timeout (1000ms)");
    QCOMPARE(errorIn(123), text("[RD DM1\\r ] error from <Item 0> :Timeout (1000ms)"));
    QCOMPARE(errorIn(122), text("Timeout (1000ms)").leftJustified(48));
    QCOMPARE(errorIn(70), text("Timeout (1000ms)").leftJustified(20));
}

void tst_WatchTable::marks_data()
{
    QTest::addColumn<bool>("hasColour");
    QTest::addColumn<qint64>("changedCycle");
    QTest::addColumn<QString>("found");

    QTest::newRow("colour, changed before") << true << qint64(1) << text("  -123456789  ");
    QTest::newRow("colour, changed")
        << true << qint64(2) << text("  \x1b[30;43m-123456789\x1b[0m  ");
    QTest::newRow("star, changed before") << false << qint64(1) << text("   -123456789  ");
    QTest::newRow("star, changed") << false << qint64(2) << text("  *-123456789  ");
}

void tst_WatchTable::marks()
{
    QFETCH(bool, hasColour);
    QFETCH(qint64, changedCycle);
    QFETCH(QString, found);

    std::vector<WatchedDevice> devices = pressWith(0);
    devices.at(0).items.at(0).valueCycle = changedCycle;
    const QString line = colouredScreen(devices, {200, 24}, hasColour).at(3);
    QVERIFY2(line.contains(found), qPrintable(line));
    QCOMPARE(line.contains(u'\x1b'), found.contains(u'\x1b'));
}

// The latest three entries with their times; the table gets fewer rows.
void tst_WatchTable::logBelow()
{
    QList<CountedEntry> log;
    for (int i = 1; i <= 4; ++i)
        log.append({{LogEntry::Level::Error,
                     text("entry\r%1").arg(i),
                     {},
                     0,
                     QDateTime(QDate(2024, 2, 29), QTime(12, 34, i))},
                    qint64(100) * i});
    const QStringList lines = screen(pressWith(4), {60, 10}, log);
    QCOMPARE(lines.mid(5), (QStringList{text("… 3 more, 1 of them with an error"),
                                        {},
                                        text("12:34:02.000  log error: entry\\r2 (x 200)"),
                                        text("12:34:03.000  log error: entry\\r3 (x 300)"),
                                        text("12:34:04.000  log error: entry\\r4 (x 400)")}));
}

void tst_WatchTable::oldLogEntries_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("isShown");

    QTest::newRow("of a device with an error") << text("Press") << text("lost") << true;
    QTest::newRow("of a device that is well") << text("Oven") << text("lost") << false;
    QTest::newRow("of no device") << QString() << text("lost") << true;
    QTest::newRow("a consequence") << text("Press") << text("x :closed") << false;
}

void tst_WatchTable::oldLogEntries()
{
    QFETCH(QString, device);
    QFETCH(QString, entry);
    QFETCH(bool, isShown);

    std::vector<WatchedDevice> devices = pressWith(1);
    devices.at(0).consequence = text("closed");
    devices.at(0).consequences = 2;
    devices.emplace_back();
    devices.at(1).name = text("Oven");
    const QStringList lines
        = screen(devices, {100, 24}, {{{LogEntry::Level::Error, entry, device, 1}, 1}});
    QCOMPARE(lines.last().contains(text("log error: ")), isShown);
}

void tst_WatchTable::scrolling_data()
{
    QTest::addColumn<int>("wished");
    QTest::addColumn<int>("first");
    QTest::addColumn<QString>("lastLine");

    // Six rows, of which three fit between the header and the last line.
    QTest::newRow("top") << 0 << 0 << text("… 3 more, 1 of them with an error");
    QTest::newRow("above the top") << -1 << 0 << text("… 3 more, 1 of them with an error");
    QTest::newRow("one down") << 1 << 1 << text("… 1 above, 2 more");
    QTest::newRow("one before the end") << 2 << 2 << text("… 2 above, 1 more");
    QTest::newRow("end") << 3 << 3 << text("… 3 above");
    QTest::newRow("beyond the end") << 4 << 3 << text("… 3 above");
}

void tst_WatchTable::scrolling()
{
    QFETCH(int, wished);
    QFETCH(int, first);
    QFETCH(QString, lastLine);

    const std::vector<WatchedDevice> devices = pressWith(4);
    const QStringList all = colouredScreen(devices, {200, 24}, true);
    WatchState state;
    state.devices = devices;
    WatchWish wish;
    wish.firstRow = wished;
    const QStringList lines
        = watchScreenText({{text("title")}, state, 5000, 1}, {200, 6}, true, &wish).split(u'\n');
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines.at(1), all.at(1));
    QCOMPARE(lines.mid(2, 3), all.mid(2 + first, 3));
    QCOMPARE(lines.at(5), lastLine);
    QCOMPARE(wish.firstRow, first);
    QCOMPARE(wish.page, 3);
}

void tst_WatchTable::filter_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<int>("rows");

    QTest::newRow("none") << QString() << 5;
    QTest::newRow("device") << text("press") << 5;
    QTest::newRow("some items") << text("ITEM") << 3;
    QTest::newRow("one item") << text("counter") << 1;
    QTest::newRow("no row") << text("oven") << 0;
}

void tst_WatchTable::filter()
{
    QFETCH(QString, filter);
    QFETCH(int, rows);

    WatchWish wish;
    wish.filter = filter;
    QCOMPARE(screen(pressWith(3), {200, 24}, {}, wish).size(), 2 + rows);
}

QTEST_GUILESS_MAIN(tst_WatchTable)
#include "tst_watchtable.moc"
