#pragma once

#include "plant/plant.h"

#include <vel/hostbackend.h>

#include <QList>
#include <QString>

#include <functional>
#include <optional>

/// One entry of the plug-in in the host's logs.
struct LogEntry
{
    enum class Level { Debug, Error };
    Level level = Level::Debug;
    QString text;
};

/// What makes another record of a device before the plug-in gets it.
using Redirection = std::function<DeviceInstancePlugin(const DeviceInstancePlugin &)>;

/// The host as the plug-in sees it: takes its registration, hands it the plant's devices and passes
/// its log entries on as they come. It is installed behind libvel.so.1 as long as it lives.
class Host : public HostBackend
{
public:
    /// `log` is called for each entry, from the plug-in's own call. With a redirection the plug-in
    /// gets what that makes of the plant's devices.
    Host(Plant plant, std::function<void(const LogEntry &)> log, Redirection redirection = {});

    /// What the plug-in declared; nothing before it registered.
    const std::optional<PluginRegistration> &registration() const { return m_registration; }

    /// Log entries of level error so far.
    int errorCount() const { return m_errorCount; }

    /// The text of the latest of them.
    const QString &lastError() const { return m_lastError; }

    void registerPlugin(const PluginRegistration &registration) override;
    /// The plant's devices; empty when a parameter does not resolve, because no connection must be
    /// opened with parameters that nobody meant.
    QList<DeviceInstancePlugin> devices() override;
    QList<NetworkInterfaceInstance> networkInterfaces() override;
    void logDebug(const QString &message) override;
    void logError(const QString &message) override;

private:
    Plant m_plant;
    std::function<void(const LogEntry &)> m_log;
    Redirection m_redirection;
    std::optional<PluginRegistration> m_registration;
    int m_errorCount = 0;
    QString m_lastError;
};
