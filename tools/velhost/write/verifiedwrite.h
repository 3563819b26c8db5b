#pragma once

#include "host/session.h"
#include "plant/assignment.h"

#include <QDateTime>
#include <QString>

#include <optional>

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

/// Reads the item, writes it and reads it back, each in a cycle of that item alone, so that an
/// error is surely this item's. An item that cannot be read is not written.
WriteReport writeVerified(const Session &session, const Assignment &assignment);
