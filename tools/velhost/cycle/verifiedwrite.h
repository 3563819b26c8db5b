#pragma once

#include "host/host.h"
#include "plant/assignment.h"

#include <vel/records.h>
#include <vel/velinterface.h>

#include <QDateTime>
#include <QString>

#include <optional>

/// What one read of one item gave: a value or an error.
struct ItemRead
{
    QDateTime time;
    std::optional<QString> value;
    QString error;
};

/// One item written between two reads.
struct WriteReport
{
    /// When the value was read back, or when the attempt ended.
    QDateTime time;
    QString device;
    QString item;
    /// The value before the write; nothing when it could not be read.
    std::optional<QString> oldValue;
    QString newValue;
    /// The value after the write; nothing when it could not be read or nothing was written.
    std::optional<QString> readBack;
    /// Empty only when the value was written and read back as it was written.
    QString error;
};

/// Reads the item, by its index in the device's record, in a cycle of its own.
ItemRead readItem(VELInterface *plugin, const DeviceInstancePlugin &device, int item);

/// Writes the item in a cycle of its own. Returns why that failed, the last entry in the error log
/// if there is one; empty when it did not fail.
QString writeError(VELInterface *plugin, const DeviceInstancePlugin &device,
                   const Assignment &assignment, const Host &host);

/// Reads the item, writes it and reads it back, each in a cycle of that item alone, so that an
/// error is surely this item's. An item that cannot be read is not written. The assignment's
/// indexes must be those of the host's records.
WriteReport writeVerified(VELInterface *plugin, const DeviceInstancePlugin &device,
                          const Assignment &assignment, const Host &host);
