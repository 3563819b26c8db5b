#pragma once

#include "plant/plant.h"

#include <vel/hostbackend.h>

#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

/// One log entry of the plug-in.
struct LogEntry
{
    enum class Level { Debug, Error };
    Level level = Level::Debug;
    QString text;
    /// The device whose call the plug-in was in, and the cycle of that call; empty and 0 outside of
    /// such a call, as during init().
    QString device = {};
    qint64 cycle = 0;
    QDateTime time = {};
};

/// Changes a device record before the plug-in gets it.
using Redirection = std::function<DeviceInstancePlugin(const DeviceInstancePlugin &)>;

/// The host that the plug-in sees: stores its registration, gives it the devices of the plant and
/// forwards its log entries. It is installed as the backend of libvel.so.1 for its lifetime.
class Host : public HostBackend
{
public:
    /// `log` is called for each entry, during the plug-in's own call. `redirection` is applied to
    /// each device that the plug-in gets.
    Host(Plant plant, std::function<void(const LogEntry &)> log, Redirection redirection = {});

    /// What the plug-in declared; nothing before it has registered.
    const std::optional<PluginRegistration> &registration() const { return m_registration; }

    /// The number of log entries of level error so far.
    int errorCount() const { return m_errorCount; }

    /// The text of the latest of them.
    const QString &lastError() const { return m_lastError; }

    /// Between the two, log entries are those of a call for that device in that cycle.
    void beginCall(const QString &device, qint64 cycle);
    void endCall() { beginCall({}, 0); }

    void registerPlugin(const PluginRegistration &registration) override;
    /// The devices of the plant. Empty when a parameter does not resolve: the plug-in must not
    /// connect with wrong parameters.
    QList<DeviceInstancePlugin> devices() override;
    QList<NetworkInterfaceInstance> networkInterfaces() override;
    void logDebug(const QString &message) override;
    void logError(const QString &message) override;

private:
    void log(LogEntry::Level level, const QString &message) const;

    Plant m_plant;
    std::function<void(const LogEntry &)> m_log;
    Redirection m_redirection;
    std::optional<PluginRegistration> m_registration;
    int m_errorCount = 0;
    QString m_lastError;
    QString m_calledDevice;
    qint64 m_calledCycle = 0;
};
