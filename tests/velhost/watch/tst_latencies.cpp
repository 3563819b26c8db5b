#include <watch/latencies.h>

#include <QTest>

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
    row("zero", 0, 0);
    row("one", 1, 1);
    row("below the first that is rounded", 999, 999);
    row("three digits and a zero", 1000, 1000);
    row("rounded down", 1004, 1000);
    row("rounded up", 1005, 1010);
    row("rounded up to another digit", 9995, 10'000);
    row("a second", 1'003'520, 1'000'000);
    row("fifty days", 4'320'000'000'001, 4'320'000'000'000);
}

// The time stands between a shorter and a longer one, so that the result is not limited by the
// extremes.
void tst_Latencies::latencies()
{
    QFETCH(qint64, microseconds);
    QFETCH(qint64, median);

    const qint64 longest = 8'640'000'000'001;
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
    latencies.add(99'999);
    QCOMPARE(latencies.percentile(50), 99'999);
    QCOMPARE(latencies.percentile(99), 99'999);
    for (int i = 1; i < 100; ++i)
        latencies.add(i);
    QCOMPARE(latencies.percentile(1), 1);
    QCOMPARE(latencies.percentile(50), 50);
    QCOMPARE(latencies.percentile(99), 99);
    QCOMPARE(latencies.percentile(100), 99'999);
    latencies.add(1);
    QCOMPARE(latencies.percentile(99), 99);
    QCOMPARE(latencies.longest(), 99'999);
}

QTEST_GUILESS_MAIN(tst_Latencies)
#include "tst_latencies.moc"
