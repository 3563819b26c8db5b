#pragma once

#include <vel/interfaceid.h>
#include <vel/records.h>

#include <QtPlugin>

/// What the host calls on a plug-in, one call at a time. The order of the operations is the order
/// of the slots that the host calls and must not change. Every operation returns true for "done".
class VELInterface
{
public:
    VELInterface() = default;
    virtual ~VELInterface() = default;
    VELInterface(const VELInterface &) = delete;
    VELInterface &operator=(const VELInterface &) = delete;

    /// Called once, first: the plug-in registers itself.
    virtual bool init() = 0;
    /// Fetches the values of the list's items into the list.
    virtual bool readData(LogList *list) = 0;
    /// Asks for events of the device.
    virtual bool getEventData(LogList *list) = 0;
    /// Called after the host has logged the list.
    virtual bool logCallback(LogList *list) = 0;
    /// Sends the values of the list's items to the device.
    virtual bool writeData(LogList *list) = 0;
    /// Called last: the plug-in closes its connections.
    virtual bool stopPlugin() = 0;
};

Q_DECLARE_INTERFACE(VELInterface, VELInterface_iid)
