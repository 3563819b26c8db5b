#include "watch/watchsummary.h"

#include <common/table.h>

#include <common/json/json.h>
#include <common/visibletext.h>

namespace {

/// Each cycle reads every item.
qint64 readsOf(const WatchedDevice &device)
{
    return device.latencies.count() * static_cast<qint64>(device.items.size());
}

qint64 sumOf(const WatchedDevice &device, qint64 WatchedItem::*count)
{
    qint64 sum = 0;
    for (const WatchedItem &item : device.items)
        sum += item.*count;
    return sum;
}

double inMilliseconds(qint64 microseconds)
{
    return static_cast<double>(microseconds) / 1000;
}

QString summaryJson(const WatchedDevice &device)
{
    const Latencies &latencies = device.latencies;
    return jsonLine("summary", {{"device", device.name},
                                {"cycles", latencies.count()},
                                {"failed", device.failedCycles},
                                {"reads", readsOf(device)},
                                {"errors", sumOf(device, &WatchedItem::errors)},
                                {"wrong", sumOf(device, &WatchedItem::wrong)},
                                {"suspect", sumOf(device, &WatchedItem::suspects)},
                                {"p50_ms", inMilliseconds(latencies.percentile(50))},
                                {"p99_ms", inMilliseconds(latencies.percentile(99))},
                                {"max_ms", inMilliseconds(latencies.longest())}});
}

QStringList summaryRow(const WatchedDevice &device)
{
    QStringList row{visible(device.name), QString::number(device.latencies.count()),
                    QString::number(device.failedCycles)};
    for (const qint64 count :
         {readsOf(device), sumOf(device, &WatchedItem::errors), sumOf(device, &WatchedItem::wrong),
          sumOf(device, &WatchedItem::suspects)})
        row.append(QString::number(count));
    for (const qint64 time : {device.latencies.percentile(50), device.latencies.percentile(99),
                              device.latencies.longest()})
        row.append(QString::number(inMilliseconds(time), 'f', 2));
    return row;
}

} // namespace

QString summaryText(OutputFormat format, const std::vector<WatchedDevice> &devices)
{
    QString lines;
    QList<QStringList> rows{{QStringLiteral("Device"), QStringLiteral("Cycles"),
                             QStringLiteral("Failed"), QStringLiteral("Reads"),
                             QStringLiteral("Errors"), QStringLiteral("Wrong"),
                             QStringLiteral("Suspect"), QStringLiteral("p50 ms"),
                             QStringLiteral("p99 ms"), QStringLiteral("Max ms")}};
    for (const WatchedDevice &device : devices) {
        lines += summaryJson(device);
        rows.append(summaryRow(device));
    }
    return format == OutputFormat::Json ? lines : tableText(rows);
}
