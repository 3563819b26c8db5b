#pragma once

#include "plant/plant.h"

#include <QString>

#include <optional>

/// One value to write: indexes into the plant's devices and the device's items, and the value.
struct Assignment
{
    int device = 0;
    int item = 0;
    QString value;
};

/// Reads DEVICE/ITEM=VALUE. Any of the three may contain "/" and "=": of all devices and items that
/// fit, the longest DEVICE/ITEM counts. Returns nothing when none fits or two of the same length
/// do; `error` then says what to change.
std::optional<Assignment> parseAssignment(const QString &argument, const Plant &plant,
                                          QString *error);
