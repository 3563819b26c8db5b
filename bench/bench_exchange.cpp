#include "loadedplugin.h"
#include "minimalserver.h"
#include "sidebyside.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QModbusReply>
#include <QModbusTcpClient>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include <modbus/modbus.h>
#include <unistd.h>

// How fast the plug-in reads words, against a bare loop of send, poll and read that exchanges the
// same bytes with the same server, and against two libraries that read one register a request.

namespace {

constexpr int exchangesARun = 2000;

modbus_t *modbusConnected(int port)
{
    modbus_t *modbus = modbus_new_tcp("127.0.0.1", port);
    if (modbus == nullptr || modbus_connect(modbus) != 0)
        qFatal("libmodbus: no connection");
    return modbus;
}

void exchangeModbus(modbus_t *modbus, int count)
{
    for (; count > 0; --count) {
        std::uint16_t word = 0;
        if (modbus_read_registers(modbus, 201, 1, &word) != 1 || word != 12345)
            qFatal("libmodbus: no answer");
    }
}

void connectSerialBus(QModbusTcpClient *client, int port)
{
    client->setConnectionParameter(QModbusDevice::NetworkAddressParameter,
                                   QStringLiteral("127.0.0.1"));
    client->setConnectionParameter(QModbusDevice::NetworkPortParameter, port);
    QEventLoop connecting;
    QObject::connect(client, &QModbusDevice::stateChanged, &connecting,
                     [&connecting](QModbusDevice::State state) {
                         if (state == QModbusDevice::ConnectedState)
                             connecting.quit();
                     });
    if (!client->connectDevice())
        qFatal("SerialBus: no connection");
    connecting.exec();
}

void exchangeSerialBus(QModbusTcpClient *client, int count)
{
    const QModbusDataUnit one(QModbusDataUnit::HoldingRegisters, 201, 1);
    for (; count > 0; --count) {
        QModbusReply *reply = client->sendReadRequest(one, 1);
        QEventLoop waiting;
        QObject::connect(reply, &QModbusReply::finished, &waiting, &QEventLoop::quit);
        waiting.exec();
        if (reply->result().valueCount() != 1 || reply->result().value(0) != 12345)
            qFatal("SerialBus: no answer");
        delete reply;
    }
}

// The same work as lists of so many items.
std::function<void()> lists(int items, const std::function<void()> &list)
{
    const int count = std::max(1, exchangesARun / items);
    return [count, list] {
        for (int i = 0; i < count; ++i)
            list();
    };
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    stayOnOneProcessor();
    const MinimalServer server;
    const DeviceInstancePlugin device = deviceRecord(1, QStringLiteral("bench"), server.port());
    LoadedPlugin plugin({device});
    const int bare = connectedTo(server.port());
    modbus_t *modbus = modbusConnected(server.port());
    QModbusTcpClient serialBus;
    connectSerialBus(&serialBus, server.port());

    printHeader();
    for (const int items : {1, 10, 100, 1000, 10000}) {
        LogList list = wordList(device, items);
        const std::vector<Variant> variants = {
            {"plug-in", lists(items, [&] { plugin->readData(&list); })},
            {"bare loop", lists(items, [=] { exchangeBare(bare, items); })},
            {"libmodbus", lists(items, [=] { exchangeModbus(modbus, items); })},
            {"Qt SerialBus", lists(items, [&] { exchangeSerialBus(&serialBus, items); })},
        };
        const std::vector<Times> times = inTurns(variants, std::max(items, exchangesARun));
        requireWords(list);
        for (std::size_t i = 0; i < variants.size(); ++i)
            printFigure(variants[i].name, items, times[i]);
        for (std::size_t i = 1; i < variants.size(); ++i)
            printFigure(variants[i].name + " / plug-in", items, ratios(times[i], times[0]));
    }
    modbus_close(modbus);
    modbus_free(modbus);
    return EXIT_SUCCESS;
}
