#pragma once

#include "host.h"
#include "pluginfile.h"

#include <vel/hostbackend.h>

#include <QDateTime>
#include <QList>
#include <QString>

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
};

/// One device after a cycle.
struct DeviceReport
{
    int cycle = 1;
    QString device;
    /// Empty: no error.
    QString error;
    QList<ItemReport> values;
    /// An error that was printed earlier stands no more.
    bool errorEnded = false;

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

/// One log entry, in CSV as for a table.
QString logText(OutputFormat format, const LogEntry &entry);

/// ISO 8601 with milliseconds and the offset from UTC, in the time's own zone.
QString timeText(const QDateTime &time);

/// The text with its control characters, other invisible characters and backslashes written out
/// (`\r`, `\x00`, `\u2028`, `\\`), and a space at its end as `\x20`.
QString visible(const QString &text);
