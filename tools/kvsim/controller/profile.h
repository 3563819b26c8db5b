#pragma once

#include "memory/devicetable.h"

#include <QVector>

/// What makes a controller differ from the one of the device table.
struct Profile
{
    /// The answer to "?K"; 55 is a KV-7500.
    QByteArray model = "55";
    /// Written to by the controller alone, beside the read-only devices.
    QVector<Range> readOnly;
    /// As if they did not exist.
    QVector<Range> missing;
};
