#pragma once

#include "cycle/report.h"
#include "host/logoutput.h"
#include "watch/latencies.h"
#include "watch/outages.h"

#include <vel/records.h>

#include <QElapsedTimer>
#include <QList>
#include <QString>

#include <atomic>
#include <mutex>
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
    /// The number of failed reads, of unexpected values and of suspect answers.
    qint64 errors = 0;
    qint64 wrong = 0;
    qint64 suspects = 0;
    /// The cycles in which the value and the problem last changed; 0 for never.
    qint64 valueCycle = 0;
    qint64 problemCycle = 0;
    /// The last read failed only because of an earlier item, see WatchedDevice::consequences.
    bool isConsequence = false;
};

/// One device since the watch began.
struct WatchedDevice
{
    QString name;
    /// Its address and port, as in "192.168.0.10:8501".
    QString address;
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
    /// A lost connection makes every later item of the cycle fail, too: what they say without their
    /// names, and how many they are.
    QString consequence;
    int consequences = 0;

    /// Whether the last read gave all values.
    bool isWell() const;

    /// The error for which the device is out: its own, which has no item, or the first one of an
    /// item that was read before, of one that has consequences, or of all items. No error when it
    /// is not out: an item that never gave a value tells nothing about the device.
    ItemReport outageCause() const;
};

/// The watch as far as its view shows it.
struct WatchState
{
    /// Whether it should be drawn soon.
    std::atomic<bool> hasUpdate = false;
    /// Must be held to change or to show what follows.
    std::mutex mutex;
    std::vector<WatchedDevice> devices;
    QList<Outage> outages;
    /// The latest entries of the plug-in's log.
    QList<CountedEntry> log;
    QElapsedTimer clock;
    qint64 intervalMs = 0;
    qint64 cycle = 0;
    /// The duration of the last whole cycle.
    qint64 cycleMs = 0;
    /// The device whose call runs, and since when.
    const WatchedDevice *called = nullptr;
    qint64 calledMs = 0;
};

/// The devices before the first cycle.
std::vector<WatchedDevice> watchedDevices(const QList<DeviceInstancePlugin> &records);

/// Adds the report of a cycle, at `nowMs` of the watch's clock, to the device.
void addReport(const DeviceReport &report, qint64 nowMs, WatchedDevice *device);
