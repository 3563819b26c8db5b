#pragma once

#include "host/host.h"
#include "host/pluginfile.h"

#include <vel/hostbackend.h>

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

/// How the program prints.
enum class OutputFormat {
    Table, ///< aligned columns for people
    Json,  ///< one JSON object a line
    Csv    ///< comma-separated values; cycles only
};

/// One item after a cycle.
struct ItemReport
{
    QDateTime time;
    QString item;
    QString value;
    /// Empty: no error.
    QString error;
    /// The read of the item or of its device failed, and the value is what an earlier cycle left.
    bool isOld = false;
    /// What the plant file expects where the value is another; set by `watch` alone.
    std::optional<QString> expected = {};
};

/// One device after a cycle.
struct DeviceReport
{
    qint64 cycle = 1;
    QString device;
    /// Empty: no error.
    QString error;
    QList<ItemReport> values;
    /// An error that was printed earlier stands no more.
    bool errorEnded = false;
    /// When the plug-in's call for the device returned.
    QDateTime time = {};
    /// How long that call took.
    qint64 microseconds = 0;

    /// Whether there is something to tell of the device itself.
    bool hasOwnLine() const { return errorEnded || !error.isEmpty(); }

    /// Whether the device or one of its items has an error.
    bool hasError() const;
};

/// What the plug-in declares, as table or JSON: itself, then its columns (plug-in, item, device,
/// file). Each text ends with a line feed.
QString columnsText(OutputFormat format, const LoadedPlugin &plugin,
                    const PluginRegistration &registration);

/// The devices of one cycle with their items, without a header in CSV; a device's own error stands
/// before its items. Empty when there is nothing to tell.
QString cycleText(OutputFormat format, const QList<DeviceReport> &devices);

/// The value for people, what cannot be seen written out, marked where it is of an earlier cycle.
QString valueText(const ItemReport &item);

/// What there is to tell of the device itself: its error, or that one has ended.
QString deviceNews(const DeviceReport &device);

/// One log entry, in CSV as for a table.
QString logText(OutputFormat format, const LogEntry &entry);

/// ISO 8601 with milliseconds and the offset from UTC, in the time's own zone.
QString timeText(const QDateTime &time);
