#pragma once

#include "plant/plant.h"

#include <vel/hostbackend.h>
#include <vel/records.h>

#include <QList>

/// The plant's devices as records, their parameters resolved against the registered columns. Adds
/// to `errors` what does not resolve, by its place in the plant file.
QList<DeviceInstancePlugin>
deviceRecords(const Plant &plant, const PluginRegistration &registration, QList<Problem> *errors);
