#include "text.h"

#include <common/textwidth.h>
#include <watch/watchtable.h>

#include <QDateTime>
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
QStringList screen(const std::vector<WatchedDevice> &devices, ScreenSize size, Marking marking,
                   const QList<CountedEntry> &log = {})
{
    return watchScreenText({text("title of the watch"), &devices, log, 5000, 1}, size, marking)
        .split(u'\n');
}

} // namespace

class tst_WatchTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void age_data();
    void age();
    void wholeScreen();
    void screenRows_data();
    void screenRows();
    void screenColumns_data();
    void screenColumns();
    void errorColumnWidth();
    void marks_data();
    void marks();
    void logBelow();
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
             "Last read     "),
        text("Press                        5 s                                    0       "
             "12:34:56.007  "),
        text("Press   Counter  -123456789  5 s                           3        0       "
             "12:34:56.007  "),
        text("Press   Item 0                    no such address\\x1b[31m  0        1       "
             "              ")};
    QCOMPARE(screen(pressWith(1), {200, 24}, Marking::None), lines);
}

void tst_WatchTable::screenRows_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("lines");
    QTest::addColumn<QString>("lastLine");

    QTest::newRow("room") << 8 << 7 << text("Press   Item 2");
    QTest::newRow("fits") << 7 << 7 << text("Press   Item 2");
    QTest::newRow("one too few") << 6 << 6 << text("… 2 more, 2 of them with an error");
    QTest::newRow("a row alone") << 3 << 3 << text("… 5 more, 3 of them with an error");
    QTest::newRow("none") << 2 << 2 << text("… 5 more, 3 of them with an error");
    QTest::newRow("the title alone") << 1 << 1 << text("title of the watch");
}

void tst_WatchTable::screenRows()
{
    QFETCH(int, rows);
    QFETCH(int, lines);
    QFETCH(QString, lastLine);

    const QStringList found = screen(pressWith(3), {200, rows}, Marking::None);
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

    const QStringList lines = screen(pressWith(1), {columns, 24}, Marking::None);
    QCOMPARE(lines.at(3), line);
    for (const QString &any : lines)
        QVERIFY2(textWidth(any) <= columns, qPrintable(any));
}

// The columns after it are shown as long as the error has twenty columns.
void tst_WatchTable::errorColumnWidth()
{
    const QString whole = screen(pressWith(1), {88, 24}, Marking::None).at(4);
    QVERIFY2(whole.contains(text("  no such address\\x1b[31m  0 ")), qPrintable(whole));
    const QString shorter = screen(pressWith(1), {87, 24}, Marking::None).at(4);
    QVERIFY2(shorter.contains(text("  no such address\\x1b[3…  0 ")), qPrintable(shorter));
    const QString least = screen(pressWith(1), {70, 24}, Marking::None).at(4);
    QVERIFY2(least.contains(text("  no such address\\x1b…  0 ")), qPrintable(least));
}

void tst_WatchTable::marks_data()
{
    QTest::addColumn<int>("marking");
    QTest::addColumn<qint64>("changedCycle");
    QTest::addColumn<QString>("found");

    const int colour = static_cast<int>(Marking::Colour);
    const int star = static_cast<int>(Marking::Star);
    QTest::newRow("colour, changed before") << colour << qint64(1) << text("  -123456789  ");
    QTest::newRow("colour, changed")
        << colour << qint64(2) << text("  \x1b[30;43m-123456789\x1b[0m  ");
    QTest::newRow("star, changed before") << star << qint64(1) << text("   -123456789  ");
    QTest::newRow("star, changed") << star << qint64(2) << text("  *-123456789  ");
    QTest::newRow("none") << static_cast<int>(Marking::None) << qint64(2) << text("  -123456789  ");
}

void tst_WatchTable::marks()
{
    QFETCH(int, marking);
    QFETCH(qint64, changedCycle);
    QFETCH(QString, found);

    std::vector<WatchedDevice> devices = pressWith(0);
    devices.at(0).items.at(0).valueCycle = changedCycle;
    const QString line = screen(devices, {200, 24}, static_cast<Marking>(marking)).at(3);
    QVERIFY2(line.contains(found), qPrintable(line));
    QCOMPARE(line.contains(u'\x1b'), found.contains(u'\x1b'));
}

// The latest three entries; the table gets fewer rows.
void tst_WatchTable::logBelow()
{
    QList<CountedEntry> log;
    for (int i = 1; i <= 4; ++i)
        log.append({{LogEntry::Level::Error, text("entry\r%1").arg(i)}, qint64(100) * i});
    const QStringList lines = screen(pressWith(4), {24, 10}, Marking::None, log);
    QCOMPARE(lines.mid(5), (QStringList{text("… 3 more, 3 of them with…").left(23) + u'…',
                                        {},
                                        text("log error: entry\\r2 (x …"),
                                        text("log error: entry\\r3 (x …"),
                                        text("log error: entry\\r4 (x …")}));
    QCOMPARE(countedText(log.at(3)), text("log error: entry\\r4 (x 400)\n"));
    QCOMPARE(countedText({log.at(3).entry, 1}), text("log error: entry\\r4\n"));
}

QTEST_GUILESS_MAIN(tst_WatchTable)
#include "tst_watchtable.moc"
