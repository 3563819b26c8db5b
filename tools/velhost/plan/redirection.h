#pragma once

#include <vel/records.h>

/// The device at that port of 127.0.0.1, its time-out, if it has one, 10 seconds.
DeviceInstancePlugin redirected(DeviceInstancePlugin device, quint16 port);

/// The device as the plug-in may judge its address and port without a connection to either: the
/// original address where it is not four numbers from 0 to 255, the original port where it holds no
/// digit, and those of redirected() otherwise.
DeviceInstancePlugin redirectedWhereValid(const DeviceInstancePlugin &device, quint16 port);
