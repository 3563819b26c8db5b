#pragma once

#include "plant/plant.h"

#include <QString>

#include <optional>

/// One value to write. `device` and `item` are indexes in the plant.
struct Assignment
{
    int device = 0;
    int item = 0;
    QString value;
};

/// Reads DEVICE/ITEM=VALUE. Any of the three may contain "/" and "=": of all matching items the one
/// with the longest DEVICE/ITEM is taken. Returns nothing when none matches or two of the same
/// length do; `error` then says what to change.
std::optional<Assignment> parseAssignment(const QString &argument, const Plant &plant,
                                          QString *error);
