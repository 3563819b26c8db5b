#pragma once

#include <vel/plugininterface.h>
#include <vel/velinterface.h>

#include <QMap>
#include <QObject>
#include <QPair>

/// Does what the parameters of its devices and items say.
///
/// Item, parameter "answers": what the reads give one after the other, separated by "|", the last
/// one for ever; "!TEXT" is the item error TEXT and leaves the value alone. A write of the value
/// "refused" goes to the error log and nowhere else.
///
/// Device, parameter "script": words separated by commas. "init-false", "read-false", "write-false"
/// and "stop-false" let that operation return false, "read-error" sets the device's last error on a
/// read, "trace" tells the debug log what each operation was given, "raise-int", "raise-term" and
/// "raise-hup" send the process that signal in the middle of a read or a write. Parameter
/// "time_stamp": the time stamp of all items read, ISO 8601; empty for none.
class ScriptedPlugin : public QObject, public VELInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VELInterface_iid)
    Q_INTERFACES(VELInterface)

public:
    bool init() override;
    bool readData(LogList *list) override;
    bool getEventData(LogList *) override { return true; }
    bool logCallback(LogList *) override { return true; }
    bool writeData(LogList *list) override;
    bool stopPlugin() override;

private:
    void registerColumns();
    void trace(const QString &operation, const LogList &list);

    PluginInterface m_host;
    QList<DeviceInstancePlugin> m_devices;
    QMap<QPair<QString, QString>, int> m_reads;
};
