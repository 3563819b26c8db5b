#pragma once

#include "cycle/report.h"
#include "plant/plant.h"
#include "plant/samevalue.h"
#include "watch/latencies.h"

#include <vel/hostbackend.h>
#include <vel/records.h>

#include <QList>
#include <QString>

#include <optional>
#include <vector>

/// One item since the watch began.
struct WatchedItem
{
    /// What its value should be, compared as this kind of value.
    std::optional<QString> expect;
    ValueKind kind = ValueKind::Number;
    /// As the last read left it.
    ItemReport last;
    /// The value that came last without an error, and when, in milliseconds of the watch's clock.
    std::optional<QString> value;
    qint64 valueMs = 0;
    /// How often a value came that was another than the one before.
    qint64 changes = 0;
    /// Reads, those that gave no value, and those whose value was not the expected one.
    qint64 reads = 0;
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
    /// When the last call returned.
    QDateTime time;
    /// When a call last ended without an error of the device, as WatchedItem::valueMs.
    std::optional<qint64> lastGoodMs;
    /// Calls that ended with an error of the device.
    qint64 failedCycles = 0;
    /// The cycle in which the error last changed; 0 for never.
    qint64 errorCycle = 0;
    /// What each call took; there are as many as calls.
    Latencies latencies;
    std::vector<WatchedItem> items;
};

/// The plant's devices before the first cycle. The records must be those of the plant.
std::vector<WatchedDevice> watchedDevices(const Plant &plant,
                                          const QList<DeviceInstancePlugin> &records,
                                          const QList<DatabaseColumnStructure> &itemColumns);

/// Takes what a cycle brought for this device, at `nowMs` of the watch's clock. Fills in which of
/// the report's values are not the expected ones.
void addReport(DeviceReport *report, qint64 nowMs, WatchedDevice *device);
