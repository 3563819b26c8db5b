#pragma once

#include "host/session.h"
#include "plant/assignment.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// The result of writing one item between two reads.
struct WriteReport
{
    /// When the value was read back or the attempt failed.
    QDateTime time;
    QString device;
    QString item;
    /// The value before the write; nothing when it could not be read.
    std::optional<QString> oldValue;
    QString newValue;
    /// The value after the write; nothing when it could not be read or nothing was written.
    std::optional<QString> readBack;
    /// Empty if the value that was read back is the one that was written.
    QString error;
};

/// The report of an item before it is read and written.
WriteReport unwritten(const Session &session, const Assignment &assignment);

/// Reads the item, writes it and reads it back. Each is a cycle with that item only, so that an
/// error belongs to this item. An item that cannot be read is not written.
WriteReport writeVerified(const Session &session, const Assignment &assignment);
