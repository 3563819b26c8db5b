#pragma once

#include <vel/hostbackend.h>

#include <QStringList>

/// A host that keeps all that the plug-in says and hands out what a test has prepared. It is
/// installed for as long as it lives.
class RecordingBackend : public HostBackend
{
public:
    RecordingBackend() { install(this); }

    void registerPlugin(const PluginRegistration &registration) override
    {
        registrations.append(registration);
    }
    QList<DeviceInstancePlugin> devices() override { return configuredDevices; }
    QList<NetworkInterfaceInstance> networkInterfaces() override { return interfaces; }
    void logDebug(const QString &message) override { debugLog.append(message); }
    void logError(const QString &message) override { errorLog.append(message); }

    QList<DeviceInstancePlugin> configuredDevices;
    QList<NetworkInterfaceInstance> interfaces;
    QList<PluginRegistration> registrations;
    QStringList debugLog;
    QStringList errorLog;
};
