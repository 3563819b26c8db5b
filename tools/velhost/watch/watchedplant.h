#pragma once

#include "cycle/report.h"
#include "watch/latencies.h"

#include <vel/records.h>

#include <QList>
#include <QString>

#include <optional>
#include <vector>

/// One item since the watch began.
struct WatchedItem
{
    /// The result of the last read.
    ItemReport last;
    /// The last value that was read without an error, and the time of that read in milliseconds of
    /// the watch's clock.
    std::optional<QString> value;
    qint64 valueMs = 0;
    /// How often the value changed.
    qint64 changes = 0;
    /// The number of failed reads and of unexpected values.
    qint64 errors = 0;
    qint64 wrong = 0;
    /// The cycles in which the value and the problem last changed; 0 for never.
    qint64 valueCycle = 0;
    qint64 problemCycle = 0;
};

/// One device since the watch began.
struct WatchedDevice
{
    QString name;
    /// Its own error in the last cycle; empty for none.
    QString error;
    /// When the last read returned.
    QDateTime time;
    /// When the device was last read without an error of its own, as WatchedItem::valueMs.
    std::optional<qint64> lastGoodMs;
    /// The number of reads with an error of the device.
    qint64 failedCycles = 0;
    /// The cycle in which the error last changed; 0 for never.
    qint64 errorCycle = 0;
    /// The durations of all reads.
    Latencies latencies;
    std::vector<WatchedItem> items;
};

/// The devices before the first cycle.
std::vector<WatchedDevice> watchedDevices(const QList<DeviceInstancePlugin> &records);

/// Adds the report of a cycle, at `nowMs` of the watch's clock, to the device.
void addReport(const DeviceReport &report, qint64 nowMs, WatchedDevice *device);
