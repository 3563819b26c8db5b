#pragma once

#include "host/session.h"
#include "plant/assignment.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// The result of reading one item: a value or an error.
struct ItemRead
{
    QDateTime time;
    std::optional<QString> value;
    QString error;
};

/// Reads the item with that index in the device's record, in a cycle of its own.
ItemRead readItem(VELInterface *plugin, const DeviceInstancePlugin &device, int item);

/// Writes the item in a cycle of its own. Returns the error, if possible the last entry in the
/// error log; empty on success.
QString writeError(const Session &session, const DeviceInstancePlugin &device,
                   const Assignment &assignment);
