#pragma once

#include "plant/plant.h"

#include <vel/hostbackend.h>
#include <vel/records.h>

#include <QList>

/// The plant's devices as records, their parameters resolved with the registered columns. Adds an
/// error with its place in the plant file for each parameter that does not resolve.
QList<DeviceInstancePlugin>
deviceRecords(const Plant &plant, const PluginRegistration &registration, QList<Problem> *errors);
