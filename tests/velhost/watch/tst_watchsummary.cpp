#include "text.h"

#include <watch/watchsummary.h>

#include <QTest>

// The summary at the end of a watch.
class tst_WatchSummary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void summary();
};

void tst_WatchSummary::summary()
{
    WatchedItem counter;
    counter.wrong = 2;
    counter.suspects = 3;
    WatchedItem missing;
    missing.errors = 1;
    WatchedDevice press;
    press.name = text("Press");
    press.failedCycles = 1;
    for (const qint64 time : {1500, 2500, 1'000'000})
        press.latencies.add(time);
    press.items = {counter, missing};
    const std::vector<WatchedDevice> devices{press};
    QCOMPARE(
        summaryText(OutputFormat::Table, devices),
        text("Device  Cycles  Failed  Reads  Errors  Wrong  Suspect  p50 ms  p99 ms   Max ms\n"
             "Press   3       1       6      1       2      3        2.50    1000.00  1000.00\n"));
    QCOMPARE(summaryText(OutputFormat::Json, devices),
             text(R"({"type":"summary","device":"Press","cycles":3,"failed":1,"reads":6,)"
                  R"("errors":1,"wrong":2,"suspect":3,"p50_ms":2.5,"p99_ms":1000,"max_ms":1000})"
                  "\n"));
}

QTEST_GUILESS_MAIN(tst_WatchSummary)
#include "tst_watchsummary.moc"
