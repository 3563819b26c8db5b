#include "host/host.h"

#include "plant/records.h"

Host::Host(Plant plant, std::function<void(const LogEntry &)> log, Redirection redirection)
    : m_plant(std::move(plant)), m_log(std::move(log)), m_redirection(std::move(redirection))
{
    install(this);
}

void Host::beginCall(const QString &device, qint64 cycle)
{
    m_calledDevice = device;
    m_calledCycle = cycle;
}

void Host::registerPlugin(const PluginRegistration &registration)
{
    m_registration = registration;
}

QList<DeviceInstancePlugin> Host::devices()
{
    QList<Problem> errors;
    QList<DeviceInstancePlugin> records
        = deviceRecords(m_plant, m_registration.value_or(PluginRegistration()), &errors);
    if (!errors.isEmpty())
        return {};
    if (m_redirection) {
        for (DeviceInstancePlugin &record : records)
            record = m_redirection(record);
    }
    return records;
}

QList<NetworkInterfaceInstance> Host::networkInterfaces()
{
    QList<NetworkInterfaceInstance> interfaces;
    for (const QString &name : std::as_const(m_plant.networkInterfaces))
        interfaces.append({name});
    return interfaces;
}

void Host::logDebug(const QString &message)
{
    log(LogEntry::Level::Debug, message);
}

void Host::logError(const QString &message)
{
    ++m_errorCount;
    m_lastError = message;
    log(LogEntry::Level::Error, message);
}

void Host::log(LogEntry::Level level, const QString &message) const
{
    m_log({level, message, m_calledDevice, m_calledCycle, QDateTime::currentDateTime()});
}
