#pragma once

#include "host/session.h"
#include "plant/assignment.h"

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

/// Reads the item, by its index in the device's record, in a cycle of its own.
ItemRead readItem(VELInterface *plugin, const DeviceInstancePlugin &device, int item);

/// Writes the item in a cycle of its own. Returns why that failed, the last entry in the error log
/// if there is one; empty when it did not fail.
QString writeError(const Session &session, const DeviceInstancePlugin &device,
                   const Assignment &assignment);
