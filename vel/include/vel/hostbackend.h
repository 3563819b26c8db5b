#pragma once

#include <vel/databasecolumnstructure.h>
#include <vel/global.h>
#include <vel/plugininitoptions.h>
#include <vel/records.h>

#include <QList>
#include <QString>

/// Everything that a plug-in declared when it registered.
struct PluginRegistration
{
    QString name;
    unsigned int version = 0;
    QList<DatabaseColumnStructure> pluginColumns;
    QList<DatabaseColumnStructure> itemColumns;
    QList<DatabaseColumnStructure> deviceColumns;
    QList<DatabaseColumnStructure> fileColumns;
    PluginInitOptions options;
};

/// Receives the calls that a plug-in makes through `PluginInterface`. A program that acts as the
/// host derives from it and installs an object; while none is installed, the calls do nothing and
/// return empty lists. Only this stand-in library has it, the real host library does not.
class VEL_EXPORT HostBackend
{
public:
    HostBackend() = default;
    virtual ~HostBackend();
    HostBackend(const HostBackend &) = delete;
    HostBackend &operator=(const HostBackend &) = delete;

    /// Installs `backend` for the whole process; a null pointer installs none. The caller keeps
    /// ownership. The destructor of an installed backend uninstalls it.
    static void install(HostBackend *backend);

    virtual void registerPlugin(const PluginRegistration &registration) = 0;
    virtual QList<DeviceInstancePlugin> devices() = 0;
    virtual QList<NetworkInterfaceInstance> networkInterfaces() = 0;
    virtual void logDebug(const QString &message) = 0;
    virtual void logError(const QString &message) = 0;
};
