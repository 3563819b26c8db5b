#pragma once

#include <vel/databasecolumnstructure.h>
#include <vel/global.h>
#include <vel/plugininitoptions.h>
#include <vel/records.h>

#include <QList>
#include <QString>

/// Everything that a plug-in said of itself when it registered.
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

/// What stands behind `PluginInterface` in the development stand-in. A program that plays the host
/// derives from it and installs its object; without one installed, the plug-in's calls do nothing
/// and its lists are empty. The real host library has nothing of the kind.
class VEL_EXPORT HostBackend
{
public:
    HostBackend() = default;
    virtual ~HostBackend();
    HostBackend(const HostBackend &) = delete;
    HostBackend &operator=(const HostBackend &) = delete;

    /// Installs `backend` for the whole process, or none with a null pointer. The caller keeps
    /// ownership; a backend that is destroyed while it is installed takes itself out.
    static void install(HostBackend *backend);

    virtual void registerPlugin(const PluginRegistration &registration) = 0;
    virtual QList<DeviceInstancePlugin> devices() = 0;
    virtual QList<NetworkInterfaceInstance> networkInterfaces() = 0;
    virtual void logDebug(const QString &message) = 0;
    virtual void logError(const QString &message) = 0;
};
