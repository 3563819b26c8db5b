#pragma once

#include <vel/hostbackend.h>

#include <QStringList>

/// A host that records the calls of the plug-in and returns what a test has prepared. It is
/// installed for its lifetime.
class RecordingBackend : public HostBackend
{
public:
    RecordingBackend() { install(this); }

    void registerPlugin(const PluginRegistration &registration) override
    {
        requests.append(QStringLiteral("initPlugin"));
        registrations.append(registration);
    }
    QList<DeviceInstancePlugin> devices() override
    {
        requests.append(QStringLiteral("getPluginDevices"));
        return configuredDevices;
    }
    QList<NetworkInterfaceInstance> networkInterfaces() override
    {
        requests.append(QStringLiteral("getNetworkInterfaces"));
        return interfaces;
    }
    void logDebug(const QString &message) override { debugLog.append(message); }
    void logError(const QString &message) override { errorLog.append(message); }

    QList<DeviceInstancePlugin> configuredDevices;
    QList<NetworkInterfaceInstance> interfaces;
    QList<PluginRegistration> registrations;
    /// The names of all calls but those to the logs, in order.
    QStringList requests;
    QStringList debugLog;
    QStringList errorLog;
};
