#include "keyence.h"

#include <QVarLengthArray>

#include <algorithm>
#include <utility>

namespace {

using Column = DatabaseColumnStructure;

const QString addressKey = QStringLiteral("memory_address");
const QString memoryTypeKey = QStringLiteral("memory_type");
const QString dataTypeKey = QStringLiteral("data_type");
const QString portKey = QStringLiteral("port");
const QString valueKey = QStringLiteral("value");

// Empty, but not null: the host may keep the text in a database, where null is something else.
const QLatin1String emptyText("");

// Reserved selection entries by which the host knows a column of its device search: it may be
// edited there and is a parameter of the search only.
void addDiscoveryFlags(Column &column)
{
    column.insertSelectionValues(QStringLiteral("__vel_discovery_editable"), QStringLiteral("1"));
    column.insertSelectionValues(QStringLiteral("__vel_discovery_parameter_only"),
                                 QStringLiteral("1"));
}

QList<Column> itemColumns()
{
    const Column address(
        addressKey, Column::Type2, 3, emptyText,
        QStringLiteral(
            "Device address, for example D201 or DM100.3. ASCII length goes in the address: "
            "D200-10 reads 10 words (20 characters). D200-209 reads D200 through D209."));

    Column memoryType(memoryTypeKey, Column::Type0, 3, emptyText, emptyText);
    memoryType.insertSelectionValues(QStringLiteral("Bit device"), QStringLiteral("0"));
    memoryType.insertSelectionValues(QStringLiteral("Word device"), QStringLiteral("1"));

    Column dataType(dataTypeKey, Column::Type0, 3, emptyText, emptyText);
    for (const int type : DataTypes::types)
        dataType.insertSelectionValues(DataTypes::typeToString(type), QString::number(type));

    return {address, memoryType, dataType};
}

QList<Column> deviceColumns(const QList<NetworkInterfaceInstance> &networkInterfaces)
{
    const Column port(portKey, Column::Type0, 3, QStringLiteral("8501"),
                      QStringLiteral("TCP Host Link port (default 8501)"));
    const Column timeout(QStringLiteral("timeout"), Column::Type0, 0, QStringLiteral("2000"),
                         QStringLiteral("Connection timeout"));

    Column searchTime(
        QStringLiteral("timeout_ms"), Column::Type0, 0, QStringLiteral("60000"),
        QStringLiteral(
            "Overall discovery window in milliseconds (UDP Host Link search then TCP subnet "
            "probe). Default 60000 is 60 seconds."));
    addDiscoveryFlags(searchTime);

    Column networkInterface(
        QStringLiteral("network_interface"), Column::Type8, 64, QStringLiteral("eth0"),
        QStringLiteral(
            "Ethernet interface used for Host Link UDP broadcast. Default is eth0. Choose All "
            "IPv4 interfaces to broadcast on every NIC."));
    networkInterface.insertSelectionValues(QStringLiteral("All IPv4 interfaces"), emptyText);
    for (const NetworkInterfaceInstance &candidate : networkInterfaces) {
        if (!candidate.name.isEmpty())
            networkInterface.insertSelectionValues(candidate.name, candidate.name);
    }
    addDiscoveryFlags(networkInterface);

    Column udpPorts(
        QStringLiteral("udp_ports"), Column::Type8, 256, QStringLiteral("8500-8510"),
        QStringLiteral(
            "UDP ports for Host Link ?K broadcast. Use commas and ranges, for example "
            "8501,8500 or 8500-8510. Default 8500-8510 (Host Link 8501, KV STUDIO 8500, and "
            "nearby ports)."));
    addDiscoveryFlags(udpPorts);

    Column tcpPorts(
        QStringLiteral("tcp_ports"), Column::Type8, 256, QStringLiteral("8500-8510"),
        QStringLiteral(
            "TCP ports for Host Link identify. Use commas and ranges, for example 8501,8500 "
            "or 8500-8510. Default 8500-8510. A very wide range is truncated (max 64 "
            "ports)."));
    addDiscoveryFlags(tcpPorts);

    return {port, timeout, searchTime, networkInterface, udpPorts, tcpPorts};
}

PluginInitOptions initOptions()
{
    PluginInitOptions options;
    options.flag2 = false;
    options.flag3 = false;
    options.flag6 = true;
    options.flag7 = false;
    options.text10 = QStringLiteral("discover");
    return options;
}

// Sends a line in the encoding of the locale. ASCII, which nearly every line is, has the same bytes
// in all of them.
bool send(Socket &socket, const QString &line)
{
    const auto isAscii = [](QChar character) { return character.unicode() < 0x80; };
    if (!std::all_of(line.cbegin(), line.cend(), isAscii))
        return socket.write(line.toLocal8Bit());
    QVarLengthArray<char, 256> bytes(line.size());
    std::transform(line.cbegin(), line.cend(), bytes.begin(),
                   [](QChar character) { return character.toLatin1(); });
    return socket.write(bytes.constData(), bytes.size());
}

} // namespace

// What one item asks for, taken out of its record.
struct Keyence::ItemRequest
{
    const QString &label;
    ItemAddress address;
    QString length;
    // Empty for a read, so that a value of the last cycle cannot spoil it.
    QString value;
    QString device;
    // The type as the item declares it, and as the item is served.
    int declaredType = DataTypes::Bit;
    int type = DataTypes::Bit;
    bool bitDevice = false;
};

bool Keyence::init()
{
    const QList<Column> devices = deviceColumns(m_host.getNetworkInterfaces());
    m_host.initPlugin(QStringLiteral("keyence"), 4, {}, itemColumns(), devices, {}, initOptions());

    const QList<DeviceInstancePlugin> configured = m_host.getPluginDevices();
    for (const DeviceInstancePlugin &device : configured) {
        const int port = device.parameters.value(portKey).toInt();
        const int timeout = device.parameters.value(QStringLiteral("timeout")).toInt();
        m_connections.insert({device.id, Socket(device.ipAddress, port, timeout)});
    }
    return true;
}

bool Keyence::stopPlugin()
{
    m_connections.clear();
    return true;
}

bool Keyence::readData(LogList *list)
{
    Socket *socket = connectedSocket(list);
    if (socket == nullptr)
        return true;
    for (DataItem &item : list->dataItems) {
        const QString error = manageDataItem(item, m_readKey, *socket);
        if (!error.isEmpty())
            item.item.setLastError(error);
    }
    return true;
}

bool Keyence::writeData(LogList *list)
{
    Socket *socket = connectedSocket(list);
    if (socket == nullptr)
        return true;
    // The item's last error belongs to its reads; a failed write is in the error log.
    for (DataItem &item : list->dataItems)
        manageDataItem(item, m_writeKey, *socket);
    return true;
}

bool Keyence::logCallback(LogList * /*list*/)
{
    return true;
}

bool Keyence::getEventData(LogList * /*list*/)
{
    return true;
}

bool Keyence::initDeviceData(LogList *list)
{
    // A device without a port gets an empty one in its record. The record of any other is only
    // looked at: what the host shares with it stays shared.
    if (!list->parameters.contains(portKey))
        list->parameters.insert(portKey, emptyText);
    const Errors::Error result
        = ethernetPLC::validate(list->ipAddress, list->parameters.value(portKey));
    if (result == Errors::Ok)
        return true;
    const QString text = Errors::errorToString(result);
    writeErrorLog(QStringLiteral("Error on device <") + list->name + QStringLiteral(">: ") + text);
    list->setLastError(text);
    return false;
}

bool Keyence::connectDevice(DeviceInstancePlugin *device)
{
    return m_connections[device->id].reConnect();
}

// The socket that serves the list's device, or none, with the device's last error set.
Socket *Keyence::connectedSocket(LogList *list)
{
    if (!initDeviceData(list))
        return nullptr;
    Socket &socket = m_connections[list->id];
    if (socket.isConnected() || connectDevice(list))
        return &socket;
    const QString text = QString::fromLatin1(m_notConnected);
    list->setLastError(text);
    writeErrorLog(text);
    return nullptr;
}

Keyence::ItemRequest Keyence::itemRequest(const DataItem &item, bool isWrite)
{
    const QMap<QString, QString> &parameters = item.item.parameters;
    ItemRequest request{item.item.name, readItemAddress(parameters.value(addressKey)), {}, {}, {}};
    request.length = ItemData::effectiveDataLength(request.address);
    request.declaredType = DataTypes::typeFromString(parameters.value(dataTypeKey));
    request.bitDevice = parameters.value(memoryTypeKey) == QLatin1String("0");
    if (isWrite)
        request.value = item.values.value(valueKey);
    // A bit device is transferred like a word that is 0 or 1.
    request.type = request.bitDevice ? DataTypes::Word : request.declaredType;
    if (request.bitDevice && isWrite)
        request.value = request.value.toInt() != 0 ? QStringLiteral("1") : QStringLiteral("0");
    request.device = ItemData::getDevice(request.address, request.type);
    return request;
}

QString Keyence::manageDataItem(DataItem &item, QString command, Socket &socket)
{
    const bool isWrite = command == m_writeKey;
    const ItemRequest request = itemRequest(item, isWrite);
    const Errors::Error result = ItemData::validateItemFields(request.address, request.type,
                                                              request.value, request.length);
    if (result != Errors::Ok) {
        const QString text = Errors::errorToString(result);
        writeErrorLog(QLatin1Char('[') + command + QStringLiteral(" data] item error from <")
                      + request.label + QStringLiteral("> :") + text);
        return text;
    }

    QString data;
    if (isWrite) {
        data = ItemData::getPlcValue(request.value, request.type, request.address.text, QString());
        if (request.declaredType == DataTypes::Bit) {
            const QString error = mergeBit(socket, request, &data);
            if (!error.isEmpty())
                return error;
        }
    }

    const QString count = ItemData::getDataLength(request.value, request.type, request.length);
    QByteArray answer;
    const QString error = exchange(socket, Frame::getCommand(command, request.device, count, data),
                                   request.label, &answer);
    if (error.isEmpty() && command == m_readKey)
        item.values[valueKey] = ItemData::getUserText(answer, request.type, request.address.text);
    return error;
}

// Fetches the word that holds the item's bit and puts the item's new bit into it: `data` becomes
// the word to write. For a bit device the fetch is made too, but its answer changes nothing.
QString Keyence::mergeBit(Socket &socket, const ItemRequest &request, QString *data)
{
    const QString count = ItemData::getDataLength(request.value, DataTypes::Short, request.length);
    QByteArray answer;
    const QString error
        = exchange(socket, Frame::getCommand(m_readKey, request.device, count, QString()),
                   request.label, &answer);
    if (!error.isEmpty() || request.bitDevice)
        return error;
    // Read as an unsigned word: a signed one would not read back above 32767 and cost the other
    // bits.
    const QString current = ItemData::getUserText(answer, DataTypes::Word, request.address.text);
    *data = ItemData::getPlcValue(current, DataTypes::Bit, request.address.text, request.value);
    return {};
}

// One exchange whose failure goes to the error log.
QString Keyence::exchange(Socket &socket, const QString &line, const QString &label,
                          QByteArray *answer)
{
    const QString error = sendCommand(socket, line, label, answer);
    if (!error.isEmpty())
        writeErrorLog(error);
    return error;
}

QString Keyence::sendCommand(Socket &socket, QString command, QString source, QByteArray *response)
{
    if (command.isEmpty())
        return QLatin1Char('[') + command + QStringLiteral(" ] not sent: ")
               + Errors::errorToString(Errors::DataItemParametersInvalid);
    if (!send(socket, command))
        return QLatin1Char('[') + command + QStringLiteral(" ] socket write data error from <")
               + source + QStringLiteral("> :") + socket.getError();
    if (!socket.read(response))
        return QLatin1Char('[') + command + QStringLiteral(" ] socket read data error from <")
               + source + QStringLiteral("> :") + socket.getError();
    if (response->startsWith('E'))
        return QLatin1Char('[') + command + QStringLiteral("] <") + source + QStringLiteral("> :")
               + Errors::errorToString(Errors::InvalidAddress);
    return {};
}

void Keyence::writeDebugLog(QString text)
{
    m_host.logDebug(text);
}

void Keyence::writeErrorLog(QString text)
{
    m_host.logError(text);
}
