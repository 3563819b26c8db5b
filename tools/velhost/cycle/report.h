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
    /// The read of the item or of its device failed, and the value is of an earlier cycle.
    bool isOld = false;
    /// The expected value of the plant file, set when the value differs. Only readPlantDevice()
    /// sets it.
    std::optional<QString> expected = {};
    /// Why the answer that gave the value cannot be trusted; empty when it can, or when nobody
    /// looked.
    QString suspect = {};
};

/// One device after a cycle.
struct DeviceReport
{
    qint64 cycle = 1;
    QString device;
    /// Empty: no error.
    QString error;
    QList<ItemReport> values;
    /// An error that was printed before has ended.
    bool errorEnded = false;
    /// When the plug-in's call for the device returned.
    QDateTime time = {};
    /// The duration of that call.
    qint64 microseconds = 0;

    /// Whether the device or one of its items has an error, or a value is not the expected one.
    bool hasError() const;
};

/// The value as visible() makes it, marked when it is of an earlier cycle.
QString valueText(const ItemReport &item);

/// What is wrong with an item that was read, as visible() makes it: its error, a suspect answer or
/// the expected value. Empty when nothing is wrong.
QString itemProblem(const ItemReport &item);

/// The item's error without what stands before the reason: the command and the item's name.
QString reasonOf(const ItemReport &item);

/// What has changed in a cycle since the one before; that one is empty for the first. All devices,
/// but only the items whose value or error has changed, or whose value is fresh again after it was
/// old. A device has its error only where the error is new; in the first cycle without it,
/// `errorEnded` is set: otherwise nobody could see whether the error still persists.
QList<DeviceReport> changesOf(const QList<DeviceReport> &before,
                              const QList<DeviceReport> &devices);
