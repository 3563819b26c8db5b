#pragma once

#include "host/host.h"

/// A host that hands the plug-in every device at one port of 127.0.0.1 instead of its own address.
class PlanHost : public Host
{
public:
    PlanHost(Plant plant, quint16 port, std::function<void(const LogEntry &)> log)
        : Host(std::move(plant), std::move(log)), m_port(port)
    {
    }

    QList<DeviceInstancePlugin> devices() override;

private:
    quint16 m_port;
};

/// The device at that port of 127.0.0.1, its time-out, if it has one, 10 seconds.
DeviceInstancePlugin redirected(DeviceInstancePlugin device, quint16 port);

/// The device as the plug-in may judge its address and port without a connection to either: the
/// original address where it is not four numbers from 0 to 255, the original port where it holds no
/// digit, and those of redirected() otherwise.
DeviceInstancePlugin judgeable(const DeviceInstancePlugin &device, quint16 port);
