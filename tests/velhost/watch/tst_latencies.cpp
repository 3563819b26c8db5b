#include <watch/latencies.h>

#include <QTest>

#include <limits>

class tst_Latencies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noLatency();
    void latencies_data();
    void latencies();
    void percentiles();
};

void tst_Latencies::noLatency()
{
    const Latencies latencies;
    QCOMPARE(latencies.count(), 0);
    QCOMPARE(latencies.percentile(50), 0);
    QCOMPARE(latencies.longest(), 0);
}

void tst_Latencies::latencies_data()
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

// The time stands between a shorter and a longer one, so that the result is not limited by the
// extremes.
void tst_Latencies::latencies()
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

void tst_Latencies::percentiles()
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

QTEST_GUILESS_MAIN(tst_Latencies)
#include "tst_latencies.moc"
