#include <vel/hostbackend.h>
#include <vel/plugininterface.h>

#include <utility>

namespace {
HostBackend *installedBackend = nullptr;
}

HostBackend::~HostBackend()
{
    if (installedBackend == this)
        installedBackend = nullptr;
}

void HostBackend::install(HostBackend *backend)
{
    installedBackend = backend;
}

PluginInterface::PluginInterface() = default;

PluginInterface::~PluginInterface() = default;

void PluginInterface::initPlugin(QString name, unsigned int version,
                                 QList<DatabaseColumnStructure> pluginColumns,
                                 QList<DatabaseColumnStructure> itemColumns,
                                 QList<DatabaseColumnStructure> deviceColumns,
                                 QList<DatabaseColumnStructure> fileColumns,
                                 const PluginInitOptions &options)
{
    if (installedBackend == nullptr)
        return;
    installedBackend->registerPlugin({std::move(name), version, std::move(pluginColumns),
                                      std::move(itemColumns), std::move(deviceColumns),
                                      std::move(fileColumns), options});
}

QList<DeviceInstancePlugin> PluginInterface::getPluginDevices()
{
    return installedBackend != nullptr ? installedBackend->devices()
                                       : QList<DeviceInstancePlugin>();
}

QList<NetworkInterfaceInstance> PluginInterface::getNetworkInterfaces()
{
    return installedBackend != nullptr ? installedBackend->networkInterfaces()
                                       : QList<NetworkInterfaceInstance>();
}

void PluginInterface::logDebug(QString message)
{
    if (installedBackend != nullptr)
        installedBackend->logDebug(message);
}

void PluginInterface::logError(QString message)
{
    if (installedBackend != nullptr)
        installedBackend->logError(message);
}
