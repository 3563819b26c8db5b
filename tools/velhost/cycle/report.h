#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

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
    bool hasMessage() const { return errorEnded || !error.isEmpty(); }

    /// Whether the device or one of its items has an error.
    bool hasError() const;
};

/// The value for people, what cannot be seen written out, marked where it is of an earlier cycle.
QString valueText(const ItemReport &item);

/// What there is to tell of the device itself: its error, or that one has ended.
QString deviceMessage(const DeviceReport &device);

/// What is wrong with an item that was read, for people: its error, or what was expected instead of
/// its value. Empty when nothing is.
QString itemProblem(const ItemReport &item);

/// ISO 8601 with milliseconds and the offset from UTC, in the time's own zone.
QString timeText(const QDateTime &time);
