#include "scriptedplugin.h"

#include <QStringList>

#include <algorithm>
#include <csignal>

namespace {

using Column = DatabaseColumnStructure;

bool hasWord(const DeviceInstancePlugin &device, const QString &word)
{
    return device.parameters.value(QStringLiteral("script")).split(u',').contains(word);
}

void raiseSignals(const DeviceInstancePlugin &device)
{
    if (hasWord(device, QStringLiteral("raise-int")))
        ::raise(SIGINT);
    if (hasWord(device, QStringLiteral("raise-term")))
        ::raise(SIGTERM);
    if (hasWord(device, QStringLiteral("raise-hup")))
        ::raise(SIGHUP);
}

QString parametersText(const QMap<QString, QString> &parameters)
{
    QStringList texts;
    for (auto entry = parameters.begin(); entry != parameters.end(); ++entry)
        texts.append(entry.key() + u'=' + entry.value());
    return u'{' + texts.join(u' ') + u'}';
}

Column text(const QString &name, const QString &defaultValue)
{
    return {name, Column::Type0, 64, defaultValue, QStringLiteral("The %1.").arg(name)};
}

} // namespace

void ScriptedPlugin::registerColumns()
{
    Column memoryType(QStringLiteral("memory_type"), Column::Type2, 3, QStringLiteral("0"),
                      QStringLiteral("Kind of memory."));
    memoryType.insertSelectionValues(QStringLiteral("Bit device"), QStringLiteral("0"));
    memoryType.insertSelectionValues(QStringLiteral("Word device"), QStringLiteral("1"));
    Column flagged(QStringLiteral("flagged"), Column::Type2, 0, {}, {});
    flagged.insertSelectionValues(QStringLiteral("__vel_hidden"), QStringLiteral("1"));
    Column editable(QStringLiteral("editable"), Column::Type2, 0, {}, {});
    editable.insertSelectionValues(QStringLiteral("__vel_discovery_editable"), QStringLiteral("1"));
    editable.insertSelectionValues(QStringLiteral("First"), QStringLiteral("D0"));
    const Column port(QStringLiteral("port"), Column::Type8, 256, QStringLiteral("8501"),
                      QStringLiteral("TCP port."));
    PluginInitOptions options;
    options.flag6 = true;
    options.unused11.insert(QStringLiteral("depth"), 2);
    m_host.initPlugin(
        QStringLiteral("scripted"), 104, {text(QStringLiteral("note"), {})},
        {text(QStringLiteral("answers"), QStringLiteral("0")), memoryType, flagged, editable},
        {port, text(QStringLiteral("script"), {}), text(QStringLiteral("time_stamp"), {})},
        {text(QStringLiteral("path"), QStringLiteral("/"))}, options);
}

bool ScriptedPlugin::init()
{
    registerColumns();
    QStringList interfaces;
    const QList<NetworkInterfaceInstance> networkInterfaces = m_host.getNetworkInterfaces();
    for (const NetworkInterfaceInstance &networkInterface : networkInterfaces)
        interfaces.append(networkInterface.name);
    m_devices = m_host.getPluginDevices();
    bool done = true;
    for (const DeviceInstancePlugin &device : std::as_const(m_devices)) {
        done = done && !hasWord(device, QStringLiteral("init-false"));
        if (!hasWord(device, QStringLiteral("trace")))
            continue;
        m_host.logDebug(QStringLiteral("init: %1 %2 %3 %4 interfaces %5")
                            .arg(QString::number(device.id), device.name, device.ipAddress,
                                 parametersText(device.parameters), interfaces.join(u',')));
        for (const ItemInstancePlugin &item : device.items)
            m_host.logDebug(
                QStringLiteral("init: %1 %2").arg(item.name, parametersText(item.parameters)));
    }
    return done;
}

void ScriptedPlugin::trace(const QString &operation, const LogList &list)
{
    if (!hasWord(list, QStringLiteral("trace")))
        return;
    QStringList items;
    for (const DataItem &dataItem : list.dataItems) {
        items.append(QStringLiteral("%1/%2=\"%3\" error \"%4\"")
                         .arg(dataItem.device.name, dataItem.item.name,
                              dataItem.values.value(QStringLiteral("value")),
                              dataItem.item.lastError));
    }
    m_host.logDebug(QStringLiteral("%1: %2 error \"%3\" of %4 items: %5")
                        .arg(operation, list.name, list.lastError,
                             QString::number(list.items.size()), items.join(QStringLiteral(", "))));
}

bool ScriptedPlugin::readData(LogList *list)
{
    trace(QStringLiteral("read"), *list);
    raiseSignals(*list);
    if (hasWord(*list, QStringLiteral("read-error")))
        list->setLastError(QStringLiteral("no answer from %1").arg(list->ipAddress));
    const QString timeStamp = list->parameters.value(QStringLiteral("time_stamp"));
    for (DataItem &dataItem : list->dataItems) {
        const QStringList answers
            = dataItem.item.parameters.value(QStringLiteral("answers")).split(u'|');
        int &reads = m_reads[{list->name, dataItem.item.name}];
        const QString answer = answers.at(std::min(reads++, answers.size() - 1));
        if (answer.startsWith(u'!'))
            dataItem.item.setLastError(answer.mid(1));
        else
            dataItem.values[QStringLiteral("value")] = answer;
        dataItem.timestamp = QDateTime::fromString(timeStamp, Qt::ISODateWithMs);
    }
    return !hasWord(*list, QStringLiteral("read-false"));
}

bool ScriptedPlugin::writeData(LogList *list)
{
    trace(QStringLiteral("write"), *list);
    raiseSignals(*list);
    for (DataItem &dataItem : list->dataItems) {
        if (dataItem.values.value(QStringLiteral("value")) == u"refused")
            m_host.logError(QStringLiteral("%1: value refused").arg(dataItem.item.name));
        dataItem.timestamp = QDateTime::fromString(
            list->parameters.value(QStringLiteral("time_stamp")), Qt::ISODateWithMs);
    }
    return !hasWord(*list, QStringLiteral("write-false"));
}

bool ScriptedPlugin::stopPlugin()
{
    bool done = true;
    for (const DeviceInstancePlugin &device : std::as_const(m_devices)) {
        if (hasWord(device, QStringLiteral("trace")))
            m_host.logDebug(QStringLiteral("stop: %1").arg(device.name));
        done = done && !hasWord(device, QStringLiteral("stop-false"));
    }
    return done;
}
