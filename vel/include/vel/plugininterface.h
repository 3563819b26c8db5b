#pragma once

#include <vel/databasecolumnstructure.h>
#include <vel/global.h>
#include <vel/plugininitoptions.h>
#include <vel/records.h>

#include <QList>
#include <QString>

/// The host's services for a plug-in. A plug-in holds one and makes all its calls through it.
class VEL_EXPORT PluginInterface
{
public:
    PluginInterface();
    // Not inline: the destructor of the host's own library must run.
    ~PluginInterface(); // NOLINT(performance-trivially-destructible)
    PluginInterface(const PluginInterface &) = delete;
    PluginInterface &operator=(const PluginInterface &) = delete;

    /// Registers the plug-in: its name, its version number, its columns (for the plug-in itself,
    /// its items, its devices and its files) and its options.
    void initPlugin(QString name, unsigned int version,
                    QList<DatabaseColumnStructure> pluginColumns,
                    QList<DatabaseColumnStructure> itemColumns,
                    QList<DatabaseColumnStructure> deviceColumns,
                    QList<DatabaseColumnStructure> fileColumns, const PluginInitOptions &options);

    /// The devices that are configured for the plug-in.
    QList<DeviceInstancePlugin> getPluginDevices();

    /// The network interfaces of the machine.
    QList<NetworkInterfaceInstance> getNetworkInterfaces();

    /// Writes one entry to the host's debug log.
    void logDebug(QString message);

    /// Writes one entry to the host's error log.
    void logError(QString message);
};
