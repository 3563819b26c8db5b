#pragma once

#include "host/host.h"

/// The device with the address 127.0.0.1 and that port. Its time-out, if it has one, becomes 10
/// seconds.
DeviceInstancePlugin redirected(DeviceInstancePlugin device, quint16 port);

/// redirected() to that port, for a session.
Redirection redirectionTo(quint16 port);

/// As redirected(), but keeps an address that is not four numbers from 0 to 255 and a port that
/// holds no digit. So the plug-in can refuse these without any connection to the plant.
DeviceInstancePlugin redirectedWhereValid(const DeviceInstancePlugin &device, quint16 port);
