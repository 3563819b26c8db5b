#include <latencies.h>
#include <textwidth.h>
#include <watchsummary.h>
#include <watchtable.h>

#include <QDateTime>
#include <QTest>

// What a watch is made of, without a process and without a terminal.

namespace {

QString utf8(const char *bytes)
{
    return QString::fromUtf8(bytes);
}

/// One item that holds a value, and behind it `more` that have none and an error.
std::vector<WatchedDevice> pressWith(int more)
{
    WatchedDevice press;
    press.name = utf8("Press");
    WatchedItem counter;
    counter.last = {QDateTime(QDate(2024, 2, 29), QTime(12, 34, 56, 7)),
                    utf8("Counter"),
                    utf8("-123456789"),
                    {},
                    false};
    counter.value = counter.last.value;
    counter.changes = 3;
    press.items.push_back(counter);
    for (int i = 0; i < more; ++i) {
        WatchedItem item;
        item.last.item = utf8("Item %1").arg(i);
        item.last.error = utf8("no such address\x1b[31m");
        item.errors = 1;
        press.items.push_back(item);
    }
    press.time = counter.last.time;
    press.goodMs = 0;
    return {press};
}

/// The screen's lines, of a picture 5 seconds after the values came.
QStringList screen(const std::vector<WatchedDevice> &devices, ScreenSize size, Marking marking,
                   const QList<CountedEntry> &log = {})
{
    return watchScreenText({utf8("title of the watch"), &devices, log, 5000, 1}, size, marking)
        .split(u'\n');
}

} // namespace

class tst_WatchParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noLatency();
    void latencies_data();
    void latencies();
    void percentiles();
    void width_data();
    void width();
    void cut_data();
    void cut();
    void age_data();
    void age();
    void wholeScreen();
    void screenRows_data();
    void screenRows();
    void screenColumns_data();
    void screenColumns();
    void errorTakesTheRest();
    void marks_data();
    void marks();
    void logBelow();
    void summary();
};

void tst_WatchParts::noLatency()
{
    const Latencies latencies;
    QCOMPARE(latencies.count(), 0);
    QCOMPARE(latencies.percentile(50), 0);
    QCOMPARE(latencies.longest(), 0);
}

void tst_WatchParts::latencies_data()
{
    QTest::addColumn<qint64>("microseconds");
    QTest::addColumn<qint64>("median");

    const auto row = [](const char *title, qint64 microseconds, qint64 median) {
        QTest::newRow(title) << microseconds << median;
    };
    row("negative", -1, 0);
    row("zero", 0, 0);
    row("one", 1, 1);
    row("below the first wide bucket", 127, 127);
    row("the first wide bucket", 128, 129);
    row("its end", 129, 129);
    row("the next one", 130, 131);
    row("below a doubling", 255, 255);
    row("at a doubling", 256, 258);
    row("a second", 1'000'000, 1'003'520);
    row("below the last bit", (Q_INT64_C(1) << 42) - 1, 4'380'866'641'920);
    row("more than there are buckets", Q_INT64_C(1) << 50, 4'380'866'641'920);
}

// Between a shorter and a longer one, so that nothing but the bucket decides.
void tst_WatchParts::latencies()
{
    QFETCH(qint64, microseconds);
    QFETCH(qint64, median);

    const qint64 longest = std::numeric_limits<qint64>::max();
    Latencies latencies;
    for (const qint64 time : {Q_INT64_C(0), microseconds, longest})
        latencies.add(time);
    QCOMPARE(latencies.percentile(50), median);
    QCOMPARE(latencies.longest(), longest);
    QCOMPARE(latencies.count(), 3);
}

void tst_WatchParts::percentiles()
{
    Latencies latencies;
    latencies.add(100'000);
    QCOMPARE(latencies.percentile(50), 100'000);
    QCOMPARE(latencies.percentile(99), 100'000);
    for (int i = 1; i < 100; ++i)
        latencies.add(i);
    QCOMPARE(latencies.percentile(1), 1);
    QCOMPARE(latencies.percentile(50), 50);
    QCOMPARE(latencies.percentile(99), 99);
    QCOMPARE(latencies.percentile(100), 99'840);
    latencies.add(1);
    QCOMPARE(latencies.percentile(99), 99);
    QCOMPARE(latencies.longest(), 100'000);
}

void tst_WatchParts::width_data()
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

void tst_WatchParts::width()
{
    QFETCH(QString, text);
    QFETCH(int, width);
    QCOMPARE(textWidth(text), width);
    QCOMPARE(paddedToWidth(text, 7), text + QString(7 - width, u' '));
}

void tst_WatchParts::cut_data()
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

void tst_WatchParts::cut()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    QFETCH(QString, result);
    QCOMPARE(cutToWidth(text, columns), result);
}

void tst_WatchParts::age_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *title, qint64 milliseconds, const char *text) {
        QTest::newRow(title) << milliseconds << utf8(text);
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

void tst_WatchParts::age()
{
    QFETCH(qint64, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(ageText(milliseconds), text);
}

// The error's own control characters are written out.
void tst_WatchParts::wholeScreen()
{
    const QStringList lines{
        utf8("title of the watch"),
        utf8("Device  Item     Value       Age  Error                    Changes  Errors  "
             "Last read     "),
        utf8("Press                        5 s                                    0       "
             "12:34:56.007  "),
        utf8("Press   Counter  -123456789  5 s                           3        0       "
             "12:34:56.007  "),
        utf8("Press   Item 0                    no such address\\x1b[31m  0        1       "
             "              ")};
    QCOMPARE(screen(pressWith(1), {200, 24}, Marking::None), lines);
}

void tst_WatchParts::screenRows_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("lines");
    QTest::addColumn<QString>("lastLine");

    QTest::newRow("room") << 8 << 7 << utf8("Press   Item 2");
    QTest::newRow("fits") << 7 << 7 << utf8("Press   Item 2");
    QTest::newRow("one too few") << 6 << 6 << utf8("… 2 more, 2 of them with an error");
    QTest::newRow("a row alone") << 3 << 3 << utf8("… 5 more, 3 of them with an error");
    QTest::newRow("none") << 2 << 2 << utf8("… 5 more, 3 of them with an error");
    QTest::newRow("the title alone") << 1 << 1 << utf8("title of the watch");
}

void tst_WatchParts::screenRows()
{
    QFETCH(int, rows);
    QFETCH(int, lines);
    QFETCH(QString, lastLine);

    const QStringList found = screen(pressWith(3), {200, rows}, Marking::None);
    QCOMPARE(found.size(), lines);
    QVERIFY2(found.last().startsWith(lastLine), qPrintable(found.last()));
}

void tst_WatchParts::screenColumns_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("line");

    QTest::newRow("no room for the age") << 26 << utf8("Press   Counter  -123456… ");
    QTest::newRow("the age is cut") << 29 << utf8("Press   Counter  -123456…  5…");
    QTest::newRow("a number never looks whole") << 20 << utf8("Press   Counter  -1…");
    QTest::newRow("one column") << 1 << utf8("…");
}

void tst_WatchParts::screenColumns()
{
    QFETCH(int, columns);
    QFETCH(QString, line);

    const QStringList lines = screen(pressWith(1), {columns, 24}, Marking::None);
    QCOMPARE(lines.at(3), line);
    for (const QString &any : lines)
        QVERIFY2(textWidth(any) <= columns, qPrintable(any));
}

// What stands behind it has its place as long as twenty columns are left for the error.
void tst_WatchParts::errorTakesTheRest()
{
    const QString whole = screen(pressWith(1), {88, 24}, Marking::None).at(4);
    QVERIFY2(whole.contains(utf8("  no such address\\x1b[31m  0 ")), qPrintable(whole));
    const QString shorter = screen(pressWith(1), {87, 24}, Marking::None).at(4);
    QVERIFY2(shorter.contains(utf8("  no such address\\x1b[3…  0 ")), qPrintable(shorter));
    const QString least = screen(pressWith(1), {70, 24}, Marking::None).at(4);
    QVERIFY2(least.contains(utf8("  no such address\\x1b…  0 ")), qPrintable(least));
}

void tst_WatchParts::marks_data()
{
    QTest::addColumn<int>("marking");
    QTest::addColumn<qint64>("changedCycle");
    QTest::addColumn<QString>("found");

    const int colour = static_cast<int>(Marking::Colour);
    const int star = static_cast<int>(Marking::Star);
    QTest::newRow("colour, changed before") << colour << qint64(1) << utf8("  -123456789  ");
    QTest::newRow("colour, changed")
        << colour << qint64(2) << utf8("  \x1b[30;43m-123456789\x1b[0m  ");
    QTest::newRow("star, changed before") << star << qint64(1) << utf8("   -123456789  ");
    QTest::newRow("star, changed") << star << qint64(2) << utf8("  *-123456789  ");
    QTest::newRow("none") << static_cast<int>(Marking::None) << qint64(2) << utf8("  -123456789  ");
}

void tst_WatchParts::marks()
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

// The latest three, above which the table makes room.
void tst_WatchParts::logBelow()
{
    QList<CountedEntry> log;
    for (int i = 1; i <= 4; ++i)
        log.append({{LogEntry::Level::Error, utf8("entry\r%1").arg(i)}, qint64(100) * i});
    const QStringList lines = screen(pressWith(4), {24, 10}, Marking::None, log);
    QCOMPARE(lines.mid(5), (QStringList{utf8("… 3 more, 3 of them with…").left(23) + u'…',
                                        {},
                                        utf8("log error: entry\\r2 (x …"),
                                        utf8("log error: entry\\r3 (x …"),
                                        utf8("log error: entry\\r4 (x …")}));
    QCOMPARE(countedText(log.at(3)), utf8("log error: entry\\r4 (x 400)\n"));
    QCOMPARE(countedText({log.at(3).entry, 1}), utf8("log error: entry\\r4\n"));
}

void tst_WatchParts::summary()
{
    std::vector<WatchedDevice> devices = pressWith(1);
    devices.at(0).failedCycles = 1;
    for (const qint64 time : {1500, 2500, 1'000'000})
        devices.at(0).latencies.add(time);
    for (WatchedItem &item : devices.at(0).items)
        item.reads = 3;
    devices.at(0).items.at(0).wrong = 2;
    QCOMPARE(summaryText(OutputFormat::Table, devices),
             utf8("Device  Cycles  Failed  Reads  Errors  Wrong  p50 ms  p99 ms   Max ms\n"
                  "Press   3       1       6      1       2      2.51    1000.00  1000.00\n"));
    QCOMPARE(summaryText(OutputFormat::Json, devices),
             utf8(R"({"type":"summary","device":"Press","cycles":3,"failed":1,"reads":6,)"
                  R"("errors":1,"wrong":2,"p50_ms":2.512,"p99_ms":1000,"max_ms":1000})"
                  "\n"));
}

QTEST_GUILESS_MAIN(tst_WatchParts)
#include "tst_watchparts.moc"
