#include "watch/watchsummary.h"

#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

namespace {

qint64 sumOf(const WatchedDevice &device, qint64 WatchedItem::*count)
{
    qint64 sum = 0;
    for (const WatchedItem &item : device.items)
        sum += item.*count;
    return sum;
}

} // namespace

QString summaryText(OutputFormat format, const std::vector<WatchedDevice> &devices)
{
    const QString header
        = QStringLiteral("Device,Cycles,Failed,Reads,Errors,Wrong,Suspect,p50 ms,p99 ms,Max ms");
    QString lines;
    QList<QStringList> rows{header.split(u',')};
    for (const WatchedDevice &device : devices) {
        QList<JsonMember> members{{"device", device.name}};
        QStringList row{visible(device.name)};
        const auto addCount = [&](const char *key, qint64 count) {
            members.append({key, count});
            row.append(QString::number(count));
        };
        const auto addTime = [&](const char *key, qint64 microseconds) {
            const double milliseconds = static_cast<double>(microseconds) / 1000;
            members.append({key, milliseconds});
            row.append(QString::number(milliseconds, 'f', 2));
        };
        const Latencies &latencies = device.latencies;
        addCount("cycles", latencies.count());
        addCount("failed", device.failedCycles);
        // Each cycle reads every item.
        addCount("reads", latencies.count() * static_cast<qint64>(device.items.size()));
        addCount("errors", sumOf(device, &WatchedItem::errors));
        addCount("wrong", sumOf(device, &WatchedItem::wrong));
        addCount("suspect", sumOf(device, &WatchedItem::suspects));
        addTime("p50_ms", latencies.percentile(50));
        addTime("p99_ms", latencies.percentile(99));
        addTime("max_ms", latencies.longest());
        lines += jsonLine("summary", members);
        rows.append(row);
    }
    return format == OutputFormat::Json ? lines : tableText(rows);
}
