#pragma once

#include "hostrecords.h"
#include "recordingbackend.h"

#include <vel/velinterface.h>

#include <QPluginLoader>

/// The plug-in, loaded as a host does it, with its devices initialised; stopped at the end.
class LoadedPlugin
{
public:
    explicit LoadedPlugin(const QList<DeviceInstancePlugin> &devices)
    {
        m_host.configuredDevices = devices;
        if (m_plugin == nullptr || !m_plugin->init())
            qFatal("%s", qPrintable(m_loader.errorString()));
    }
    ~LoadedPlugin() { m_plugin->stopPlugin(); }
    LoadedPlugin(const LoadedPlugin &) = delete;
    LoadedPlugin &operator=(const LoadedPlugin &) = delete;

    VELInterface *operator->() const { return m_plugin; }

private:
    RecordingBackend m_host;
    QPluginLoader m_loader{QStringLiteral(KEYENCE_PLUGIN_FILE)};
    VELInterface *m_plugin = qobject_cast<VELInterface *>(m_loader.instance());
};

/// A list that reads so many words.
inline LogList wordList(const DeviceInstancePlugin &device, int items)
{
    LogList list = logList(device, {});
    for (int i = 0; i < items; ++i)
        list.dataItems.append(dataItem(QStringLiteral("item"), QStringLiteral("D201"),
                                       QStringLiteral("1"), QStringLiteral("1")));
    return list;
}

/// Ends the program unless all items hold what the server answers.
inline void requireWords(const LogList &list)
{
    for (const DataItem &item : list.dataItems) {
        if (valueOf(item) != QLatin1String("12345"))
            qFatal("an item holds \"%s\"", qPrintable(valueOf(item)));
    }
}
