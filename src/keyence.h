#pragma once

#include "hostlink.h"
#include "itemdata.h"
#include "socket.h"

#include <vel/plugininterface.h>
#include <vel/velinterface.h>

#include <QByteArray>
#include <QObject>
#include <QString>

#include <unordered_map>

/// The plug-in: declares its parameters to the host and serves its devices cycle by cycle.
///
/// The host calls one operation at a time. Every operation that the host calls returns true; what
/// went wrong stands in the records' last errors and in the host's error log.
class Keyence : public QObject, public VELInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VELInterface_iid)
    Q_INTERFACES(VELInterface)

public:
    Keyence() = default;

    /// Declares the columns, registers the plug-in and connects to every configured device, waiting
    /// for each for at most its time-out. A device that the connection map already holds keeps its
    /// connection.
    bool init() override;

    /// Closes every connection.
    bool stopPlugin() override;

    /// Reads the list's items, in order, into their value entry "value". A failed item gets its
    /// error as last error and does not stop the others; an invalid or unreachable device gets a
    /// last error and no item is touched.
    bool readData(LogList *list) override;

    /// Writes the list's items, in order. A failed item is only reported in the error log.
    bool writeData(LogList *list) override;

    /// Nothing to do.
    bool logCallback(LogList *list) override;

    /// Nothing to do.
    bool getEventData(LogList *list) override;

    /// Checks the device's address and port; false, with the device's last error set and an entry
    /// in the error log, when it may not be served.
    bool initDeviceData(LogList *list);

    /// Connects the device's socket again; an unknown device gets one without an address, which
    /// cannot connect.
    bool connectDevice(DeviceInstancePlugin *device);

    /// Serves one item: `command` is "read" or "write". The result is empty on success and
    /// otherwise the item's error, which has been logged. Only a successful read changes `item`.
    QString manageDataItem(DataItem &item, QString command, Socket &socket);

    /// Sends one complete command line and takes what one receive delivers as its answer. `source`
    /// names the item in messages. The result is empty on success and otherwise the complete
    /// message; an answer that begins with "E" is the controller's refusal.
    QString sendCommand(Socket &socket, QString command, QString source, QByteArray *response);

    /// Writes one entry to the host's debug log.
    void writeDebugLog(QString text);

    /// Writes one entry to the host's error log.
    void writeErrorLog(QString text);

private:
    struct ItemRequest;

    static ItemRequest itemRequest(const DataItem &item, bool isWrite);
    Socket *connectedSocket(LogList *list);
    QString mergeBit(Socket &socket, const ItemRequest &request, QString *data);
    QString exchange(Socket &socket, const QString &line, const QString &label, QByteArray *answer);

    PluginInterface m_host;
    QString m_readKey = QStringLiteral("read");
    QString m_writeKey = QStringLiteral("write");
    // Read by nothing; it keeps its place in the object.
    [[maybe_unused]] int m_unused = 1;
    std::unordered_map<int, Socket> m_connections;
    const char *m_notConnected = "Not connected to PLC";
};
